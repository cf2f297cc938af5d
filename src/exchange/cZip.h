#pragma once

#include "exchange/archive_reader.h"
#include "store/list1.h"

#include <QString>

#include <cstdint>

namespace varnholt {

class MessageBoxes;
class ProgressLabel;

/// Packs files into one zip archive, or unpacks one. An object serves one archive.
class cZip
{
public:
    explicit cZip(MessageBoxes& messages);

    /// Full path of the archive.
    [[nodiscard]] const QString& ZipFileName() const { return ZipFileName_; }
    void setZipFileName(const QString& path) { ZipFileName_ = path; }

    /// The archive's comment: what `AddFilesToZip` writes, and what `UnzipToFolder` found.
    [[nodiscard]] const QString& comment() const { return comment_; }
    void setComment(const QString& comment) { comment_ = comment; }

    /// Makes the archive and adds the files in their order, each under its plain name; text
    /// files are deflated, everything else is stored. The bar advances once a file. True on
    /// success; on failure the user has been told, and what stood under the archive's name
    /// is as it was. The archive appears under its name when it is complete and on the disk.
    bool AddFilesToZip(const List1<QString>& files, ProgressLabel& back, ProgressLabel& face);

    /// Why the last `AddFilesToZip` failed, a sentence.
    [[nodiscard]] const QString& reason() const { return reason_; }

    /// Called while unpacking.
    UnpackProgress unzipProgress;

    /// What `UnzipToFolder` takes, and how many more bytes it would have unpacked.
    Members members = Members::AtRoot;
    std::int64_t bytesLeft = 0;

    /// Unpacks the members of the archive into an existing folder (see
    /// `UnpackArchive` for which) before it returns. Throws `Error`. The result is always
    /// false and says nothing.
    bool UnzipToFolder(const QString& sFolderName);

    /// Writes an archive without members, 22 bytes. Throws `Error`.
    static void CreateEmptyZip(const QString& path);

    void InitProgress(std::int32_t first, std::int32_t last, ProgressLabel& back,
                      ProgressLabel& face);
    void UpdateProgress(std::int32_t current, ProgressLabel& back, ProgressLabel& face);

private:
    /// Empty when done, else why not.
    QString pack(class ArchiveFile& target, const List1<QString>& files, ProgressLabel& back,
                 ProgressLabel& face);

    MessageBoxes& messages_;
    QString ZipFileName_;
    QString comment_;
    QString reason_;
    std::int32_t ProgressFirst_ = 0;
    std::int32_t ProgressCurrent_ = 0;
    std::int32_t ProgressTotal_ = 0;
    float ProgressWidth_ = 0;
};

} // namespace varnholt
