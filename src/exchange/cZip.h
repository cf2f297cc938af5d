#pragma once

#include "exchange/archive_reader.h"
#include "exchange/exchange_progress.h"
#include "store/list1.h"

#include <QString>

#include <cstdint>

namespace varnholt {

/// Why an archive could not be made.
struct ZipFailure
{
    /// The file could not even be begun: the number of that error and its words.
    bool notOpened = false;
    int error = 0;
    QString description;
    /// The whole reason, a sentence.
    QString reason;
};

/// Packs files into one zip archive, or unpacks one. An object serves one archive.
class cZip
{
public:
    /// Full path of the archive.
    [[nodiscard]] const QString& ZipFileName() const { return ZipFileName_; }
    void setZipFileName(const QString& path) { ZipFileName_ = path; }

    /// The archive's comment: what `AddFilesToZip` writes, and what `UnzipToFolder` found.
    [[nodiscard]] const QString& comment() const { return comment_; }
    void setComment(const QString& comment) { comment_ = comment; }

    /// Makes the archive and adds the files in their order, each under its plain name; text
    /// files are deflated, everything else is stored. Progress advances once a file. True on
    /// success; else `failure()` says why, and what stood under the archive's name is as it
    /// was. The archive appears under its name when it is complete and on the disk.
    [[nodiscard]] bool AddFilesToZip(const List1<QString>& files);

    /// Of the last `AddFilesToZip` that failed.
    [[nodiscard]] const ZipFailure& failure() const { return failure_; }

    /// Called while packing and unpacking; may be empty.
    ExchangeProgress progress;

    /// What `UnzipToFolder` takes, and how many more bytes it would have unpacked.
    Members members = Members::AtRoot;
    std::int64_t bytesLeft = 0;

    /// Unpacks the members of the archive into an existing folder (see
    /// `UnpackArchive` for which) before it returns. Throws `Error`. The result is always
    /// false and says nothing.
    bool UnzipToFolder(const QString& sFolderName);

    /// Writes an archive without members, 22 bytes. Throws `Error`.
    static void CreateEmptyZip(const QString& path);

    void InitProgress(std::int32_t first, std::int32_t last);
    void UpdateProgress(std::int32_t current);

private:
    /// Empty when done, else why not.
    QString pack(class ArchiveFile& target, const List1<QString>& files);
    void showProgress() const;

    QString ZipFileName_;
    QString comment_;
    ZipFailure failure_;
    std::int32_t ProgressFirst_ = 0;
    std::int32_t ProgressCurrent_ = 0;
    std::int32_t ProgressTotal_ = 0;
};

} // namespace varnholt
