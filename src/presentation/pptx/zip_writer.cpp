#include "presentation/pptx/zip_writer.h"

#include "files/sync.h"
#include "store/errors.h"
#include "store/save_file.h"

#include <QCoreApplication>
#include <QDir>
#include <QtEndian>

#ifdef VARNHOLT_LIBDEFLATE
#include <libdeflate.h>
#else
#include <zlib.h>
#endif

#include <algorithm>
#include <limits>

namespace varnholt {

namespace {

/// For the translator.
class Words
{
    Q_DECLARE_TR_FUNCTIONS(Presentation)
};

QString native(const QString& path)
{
    return QDir::toNativeSeparators(path);
}

quint32 checkSum(quint32 before, const char* bytes, qint64 size)
{
#ifdef VARNHOLT_LIBDEFLATE
    return libdeflate_crc32(before, bytes, size_t(size));
#else
    return quint32(crc32_z(before, reinterpret_cast<const Bytef*>(bytes), z_size_t(size)));
#endif
}

constexpr qsizetype pieceSize = 256 * 1024;
constexpr quint16 versionNeeded = 20;
constexpr quint16 deflated = 8;
constexpr qsizetype localHeaderSize = 30;
constexpr qsizetype centralHeaderSize = 46;
constexpr qsizetype tailSize = 22;
constexpr quint32 localMark = 0x04034B50;
constexpr quint32 centralMark = 0x02014B50;
constexpr quint32 tailMark = 0x06054B50;
// With all bits set a field means "see zip64", so the largest values are not to be had.
constexpr qint64 largestNumber = std::numeric_limits<quint32>::max();
constexpr size_t mostEntries = std::numeric_limits<quint16>::max() - 1;

/// Where the next field goes.
template <typename Number>
char* put(char* to, Number number)
{
    qToLittleEndian(number, to);
    return to + sizeof number;
}

} // namespace

ZipWriter::ZipWriter(const QString& path, const QDateTime& now)
    : file_(path)
    , time_(quint16(now.time().hour() << 11 | now.time().minute() << 5 | now.time().second() / 2))
    , date_(quint16((now.date().year() - 1980) << 9 | now.date().month() << 5 | now.date().day()))
{
    if (!file_.open(QIODevice::WriteOnly | QIODevice::NewOnly | QIODevice::Unbuffered)) {
        fail(file_.errorString());
    }
    pending_.reserve(2 * pieceSize);
}

ZipWriter::~ZipWriter()
{
    if (!finished_) {
        file_.remove();
    }
}

void ZipWriter::fail(const QString& why) const
{
    throw Error(Words::tr("The presentation could not be written to \"%1\": %2.")
                    .arg(native(file_.fileName()), why));
}

void ZipWriter::failTooLarge() const
{
    throw Error(Words::tr("The presentation could not be written to \"%1\": it has too many "
                          "pictures for one file.")
                    .arg(native(file_.fileName())));
}

void ZipWriter::writeAt(qint64 offset, const QByteArray& bytes)
{
    if (!file_.seek(offset) || !WriteAll(file_, bytes)) {
        fail(file_.errorString());
    }
}

void ZipWriter::flush()
{
    writeAt(flushed_, pending_);
    flushed_ += pending_.size();
    pending_.resize(0);
}

void ZipWriter::flushWhenFull()
{
    if (pending_.size() >= pieceSize) {
        flush();
    }
}

char* ZipWriter::extend(qsizetype size)
{
    const qsizetype end = pending_.size();
    pending_.resize(end + size);
    return pending_.data() + end;
}

void ZipWriter::append(QByteArrayView bytes)
{
    pending_.append(bytes);
    flushWhenFull();
}

/// What local and central header have in common, from the version on (APPNOTE 4.3.7).
char* ZipWriter::putHeader(char* to, const Entry& entry) const
{
    constexpr quint16 noFlags = 0;
    constexpr quint16 noExtraField = 0;
    to = put(to, versionNeeded);
    to = put(to, noFlags);
    to = put(to, entry.method);
    to = put(to, time_);
    to = put(to, date_);
    to = put(to, entry.crc);
    to = put(to, entry.packedSize);
    to = put(to, entry.size);
    to = put(to, quint16(entry.name.size()));
    return put(to, noExtraField);
}

void ZipWriter::putLocal(char* to, const Entry& entry) const
{
    putHeader(put(to, localMark), entry);
}

void ZipWriter::begin(const QByteArray& name)
{
    if (position() >= largestNumber || entries_.size() >= mostEntries) {
        failTooLarge();
    }
    Entry& entry = entries_.emplace_back();
    entry.name = name;
    entry.offset = quint32(position());
    // Only a place for it; what belongs there is known after the last byte.
    extend(localHeaderSize);
    append(name);
}

void ZipWriter::end(quint32 crc, qint64 size, qint64 packedSize)
{
    Entry& entry = entries_.back();
    entry.crc = crc;
    entry.size = quint32(size);
    entry.packedSize = quint32(packedSize);
    if (entry.offset < flushed_) {
        flush();
        QByteArray local(localHeaderSize, '\0');
        putLocal(local.data(), entry);
        writeAt(entry.offset, local);
    } else {
        putLocal(pending_.data() + (entry.offset - flushed_), entry);
    }
}

void ZipWriter::add(const QByteArray& name, QByteArrayView bytes, QuickDeflate* deflate)
{
    begin(name);
    const qsizetype start = pending_.size();
    if (deflate) {
        char* const to = extend(QuickDeflate::mostFor(bytes.size()));
        pending_.resize(start + (deflate->deflate(bytes, to) - to));
    }
    qsizetype packedSize = pending_.size() - start;
    if (deflate && packedSize < bytes.size()) {
        entries_.back().method = deflated;
    } else {
        pending_.resize(start);
        pending_.append(bytes);
        packedSize = bytes.size();
    }
    end(checkSum(0, bytes.data(), bytes.size()), bytes.size(), packedSize);
    flushWhenFull();
}

void ZipWriter::addFile(const QByteArray& name, const QString& path)
{
    begin(name);
    QFile source(path);
    bool readable = source.open(QIODevice::ReadOnly | QIODevice::Unbuffered);
    qint64 size = 0;
    quint32 crc = 0;
    while (readable) {
        const qsizetype start = pending_.size();
        pending_.resize(start + pieceSize);
        const qint64 count = source.read(pending_.data() + start, pieceSize);
        pending_.resize(start + std::max<qint64>(count, 0));
        readable = count >= 0;
        if (count <= 0) {
            break;
        }
        crc = checkSum(crc, pending_.constData() + start, count);
        size += count;
        flushWhenFull();
    }
    if (!readable || size >= largestNumber) {
        throw Error(Words::tr("The presentation could not be written to \"%1\": the picture "
                              "\"%2\" cannot be read.")
                        .arg(native(file_.fileName()), native(path)));
    }
    end(crc, size, size);
}

void ZipWriter::finish()
{
    const qint64 directory = position();
    for (const Entry& entry : entries_) {
        char* to = extend(centralHeaderSize);
        to = putHeader(put(put(to, centralMark), versionNeeded), entry);
        // No comment, disk 0, no attributes.
        to = std::fill_n(to, 2 + 2 + 2 + 4, '\0');
        put(to, entry.offset);
        append(entry.name);
    }
    const qint64 directorySize = position() - directory;
    if (position() >= largestNumber) {
        failTooLarge();
    }
    char* to = put(extend(tailSize), tailMark);
    to = std::fill_n(to, 2 + 2, '\0'); // disk 0
    to = put(to, quint16(entries_.size()));
    to = put(to, quint16(entries_.size()));
    to = put(to, quint32(directorySize));
    to = put(to, quint32(directory));
    put(to, quint16(0));
    flush();
    // A final name must not outlive a power cut without its bytes.
    if (const std::error_code error = SyncFile(file_.handle())) {
        fail(QString::fromStdString(error.message()));
    }
    file_.close();
    finished_ = true;
}

} // namespace varnholt
