#include "exchange/package_fields.h"

#include "store/errors.h"
#include "store/save_file.h"

#include <QCoreApplication>
#include <QDir>
#include <QFileInfo>

#include <algorithm>
#include <charconv>

namespace varnholt {

namespace {

/// For the translator.
class Words
{
    Q_DECLARE_TR_FUNCTIONS(Package)
};

constexpr qsizetype blockSize = 64 * 1024;
constexpr const char* byteOrderMark = "\xef\xbb\xbf";

bool isBlank(int byte)
{
    return byte == ' ' || byte == '\t';
}

bool isLineEnd(int byte)
{
    return byte == '\r' || byte == '\n';
}

Error fileError(const QFile& file)
{
    return Error(QStringLiteral("%1: %2").arg(QDir::toNativeSeparators(file.fileName()),
                                              file.errorString()));
}

} // namespace

QString pictureMember(std::int32_t solIndex)
{
    return QString::number(solIndex) + QStringLiteral(".jpg");
}

QString packageMember(const QString& name)
{
    for (const QString& text : {topicsFile, subTopicsFile, questionsFile, assessmentInfoFile}) {
        if (name.compare(text, Qt::CaseInsensitive) == 0) {
            return text;
        }
    }
    bool isKey = false;
    const QString picture =
        pictureMember(QStringView(name).chopped(std::min<qsizetype>(name.size(), 4)).toInt(&isKey));
    return isKey && name.compare(picture, Qt::CaseInsensitive) == 0 ? picture : QString();
}

FieldWriter::FieldWriter(const QString& path, TextEncoding encoding)
    : file_(path)
    , encoding_(encoding)
{
    QFile::remove(path);
    if (!file_.open(QIODevice::WriteOnly | QIODevice::NewOnly | QIODevice::Unbuffered)) {
        throw fileError(file_);
    }
    buffer_.reserve(blockSize + 1024);
}

void FieldWriter::writeRecord(std::initializer_list<Field> fields)
{
    if (encoding_ == TextEncoding::Utf8 && !marked_) {
        buffer_ += byteOrderMark;
    }
    marked_ = true;
    const char* separator = "";
    for (const Field& field : fields) {
        buffer_ += separator;
        if (const auto* value = std::get_if<std::int32_t>(&field)) {
            buffer_ += QByteArray::number(*value);
        } else {
            buffer_ += '"';
            buffer_ += encodeText(std::get<QString>(field), encoding_);
            buffer_ += '"';
        }
        separator = ",";
    }
    buffer_ += "\r\n";
    if (buffer_.size() >= blockSize) {
        flush();
    }
}

void FieldWriter::close()
{
    flush();
    file_.close();
    if (file_.error() != QFileDevice::NoError) {
        throw fileError(file_);
    }
}

void FieldWriter::flush()
{
    if (!WriteAll(file_, buffer_)) {
        throw fileError(file_);
    }
    buffer_.resize(0);
}

FieldReader::FieldReader(const QString& path, TextEncoding encoding)
    : file_(path)
    , device_(file_)
    , encoding_(encoding)
{
    if (!file_.open(QIODevice::ReadOnly | QIODevice::Unbuffered)) {
        throw fileError(file_);
    }
    start();
}

FieldReader::FieldReader(QIODevice& device, TextEncoding encoding)
    : device_(device)
    , encoding_(encoding)
{
    start();
}

void FieldReader::start()
{
    size_ = device_.size();
    static_cast<void>(peek());
    if (block_.startsWith(byteOrderMark)) {
        encoding_ = TextEncoding::Utf8;
        next_ = 3;
    }
}

int FieldReader::peek()
{
    if (next_ == block_.size()) {
        blockStart_ += next_;
        next_ = 0;
        block_.resize(blockSize);
        const qint64 got = device_.read(block_.data(), blockSize);
        block_.resize(static_cast<qsizetype>(std::max<qint64>(got, 0)));
        if (got < 0) {
            fail(Words::tr("A list of the package cannot be read (at byte %1)."));
        }
        if (got == 0) {
            return endOfFile;
        }
    }
    return static_cast<unsigned char>(block_.at(next_));
}

void FieldReader::skipBlanks()
{
    while (isBlank(peek())) {
        step();
    }
}

bool FieldReader::atEnd()
{
    skipBlanks();
    while (lineStart_ && isLineEnd(peek())) {
        step();
        skipBlanks();
    }
    return peek() == endOfFile;
}

void FieldReader::startField()
{
    if (atEnd()) {
        fail(Words::tr("A list of the package ends in the middle of a record (at byte %1)."));
    }
}

void FieldReader::endField()
{
    const int separator = peek();
    if (separator == endOfFile) {
        return;
    }
    step();
    if (separator == '\r' && peek() == '\n') {
        step();
    }
    lineStart_ = separator != ',';
}

QByteArray FieldReader::restOfField()
{
    QByteArray bytes;
    for (int byte = peek(); byte != endOfFile && byte != ',' && !isLineEnd(byte); byte = peek()) {
        append(bytes, byte);
        step();
    }
    while (!bytes.isEmpty() && isBlank(bytes.back())) {
        bytes.chop(1);
    }
    return bytes;
}

void FieldReader::append(QByteArray& bytes, int byte) const
{
    if (bytes.size() >= longestField) {
        fail(Words::tr("A list of the package holds a field that is far too long (at byte %1)."));
    }
    bytes += static_cast<char>(byte);
}

QString FieldReader::text()
{
    startField();
    QByteArray bytes;
    if (peek() == '"') {
        step();
        while (peek() != '"') {
            if (peek() == endOfFile) {
                fail(Words::tr("A list of the package lacks a closing double quote (at byte %1)."));
            }
            append(bytes, peek());
            step();
        }
        static_cast<void>(restOfField());
    } else {
        bytes = restOfField();
    }
    endField();
    return decodeText(bytes, encoding_);
}

std::int32_t FieldReader::number()
{
    startField();
    const QByteArray digits = restOfField();
    endField();
    std::int32_t value = 0;
    const char* end = digits.constData() + digits.size();
    const auto [stop, result] = std::from_chars(digits.constData(), end, value);
    if (!digits.isEmpty() && (result != std::errc() || stop != end)) {
        fail(Words::tr(
            "A list of the package holds something else where a number should be (at byte %1)."));
    }
    return value;
}

void FieldReader::fail(const QString& sentence) const
{
    throw Error(sentence.arg(position()));
}

} // namespace varnholt
