#pragma once

#include "presentation/pptx/quick_deflate.h"

#include <QByteArray>
#include <QByteArrayView>
#include <QDateTime>
#include <QFile>
#include <QString>

#include <vector>

namespace varnholt {

/// Writes a zip archive (APPNOTE 6.3 without zip64) from front to back, files as they are, in
/// the memory of one piece of a file whatever the archive holds. Not a case for libzip, which
/// moves 4 kB at a time: writing a presentation with it took nearly twice the CPU time.
///
/// Throws `Error` when something cannot be read or written, and when the archive would outgrow
/// 4 GB or 65,534 entries. Until `finish` has returned the file is removed at the end.
class ZipWriter
{
public:
    /// There must be no file at `path` yet. All entries bear the time `now`.
    ZipWriter(const QString& path, const QDateTime& now);
    ~ZipWriter();
    ZipWriter(const ZipWriter&) = delete;
    ZipWriter& operator=(const ZipWriter&) = delete;

    /// Names are ASCII, so that no reader has to guess their encoding. With `deflate`, which is
    /// that of all texts of the kind, the entry is deflated if that makes it smaller.
    void add(const QByteArray& name, QByteArrayView bytes, QuickDeflate* deflate = nullptr);
    void addFile(const QByteArray& name, const QString& path);

    /// Writes the directory and sees to it that everything is on the disk.
    void finish();

private:
    struct Entry
    {
        QByteArray name;
        quint16 method = 0;
        quint32 crc = 0;
        /// In the archive and by itself.
        quint32 packedSize = 0;
        quint32 size = 0;
        quint32 offset = 0;
    };

    [[nodiscard]] qint64 position() const { return flushed_ + pending_.size(); }
    char* putHeader(char* to, const Entry& entry) const;
    void putLocal(char* to, const Entry& entry) const;
    /// Room for so many bytes at the end of the archive.
    char* extend(qsizetype size);
    void begin(const QByteArray& name);
    void append(QByteArrayView bytes);
    void end(quint32 crc, qint64 size, qint64 packedSize);
    void flush();
    void flushWhenFull();
    void writeAt(qint64 offset, const QByteArray& bytes);
    [[noreturn]] void fail(const QString& why) const;
    [[noreturn]] void failTooLarge() const;

    QFile file_;
    quint16 time_ = 0;
    quint16 date_ = 0;
    /// Bytes of the archive that are in the file; those in `pending_` follow.
    qint64 flushed_ = 0;
    QByteArray pending_;
    std::vector<Entry> entries_;
    bool finished_ = false;
};

} // namespace varnholt
