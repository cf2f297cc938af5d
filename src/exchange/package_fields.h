#pragma once

#include "exchange/text_encoding.h"

#include <QByteArray>
#include <QFile>
#include <QString>

#include <cstdint>
#include <initializer_list>
#include <variant>

/// The text files of an exchange package: one record a line, fields separated by commas,
/// numbers in plain decimal, texts between double quotes exactly as stored. There is no
/// escape: a text that itself holds a double quote is read back only up to it.
namespace varnholt {

// Names of the members of a package. Pictures are named by their key.
inline const QString topicsFile = QStringLiteral("topics.txt");
inline const QString subTopicsFile = QStringLiteral("subtopics.txt");
inline const QString questionsFile = QStringLiteral("questions.txt");
inline const QString assessmentInfoFile = QStringLiteral("AssessmentInfo.txt");
/// "1043.jpg"
[[nodiscard]] QString pictureMember(std::int32_t solIndex);

/// The proper name of a package's member that comes in any case; empty when a package holds
/// no file of that name.
[[nodiscard]] QString packageMember(const QString& name);

/// The longest text that is read, in bytes: far beyond any name or answer.
inline constexpr std::int64_t longestField = 1024 * 1024;

/// Writes one text file. Lines end with CR LF; a file without records is empty. UTF-8 is
/// marked by a byte-order mark, which outlives a package's being unzipped and zipped again.
class FieldWriter
{
public:
    using Field = std::variant<std::int32_t, QString>;

    /// Makes the file anew; a file of that name goes first, so that nothing else that shares
    /// its bytes is touched. Throws `Error`.
    FieldWriter(const QString& path, TextEncoding encoding);

    /// Throws `Error` when the disk takes no more.
    void writeRecord(std::initializer_list<Field> fields);

    /// Must be called at the end. Throws `Error`.
    void close();

private:
    void flush();

    QFile file_;
    TextEncoding encoding_;
    QByteArray buffer_;
    bool marked_ = false;
};

/// Reads a text file as a stream of fields; line ends (CR LF, LF or CR) separate fields just
/// as commas do, and blank lines are skipped. A byte-order mark of UTF-8 overrules the
/// encoding. Memory does not grow with the file. The content is not trusted: whatever does
/// not read as described throws `Error`.
class FieldReader
{
public:
    /// Throws `Error` when the file cannot be opened.
    FieldReader(const QString& path, TextEncoding encoding);
    /// Reads from an open device, which must outlive the reader.
    FieldReader(QIODevice& device, TextEncoding encoding);

    /// True when nothing but blanks and line ends is left.
    [[nodiscard]] bool atEnd();

    /// A field that begins with a double quote runs to the next one, and the rest up to the
    /// separator is skipped; any other runs to the separator, trailing blanks removed.
    [[nodiscard]] QString text();

    /// A whole number of 32 bits; an empty field is 0.
    [[nodiscard]] std::int32_t number();

    /// Bytes read so far and in all.
    [[nodiscard]] std::int64_t position() const { return blockStart_ + next_; }
    [[nodiscard]] std::int64_t size() const { return size_; }

private:
    static constexpr int endOfFile = -1;

    void start();
    /// The next byte, or `endOfFile`; stays where it is.
    [[nodiscard]] int peek();
    void step() { ++next_; }
    void skipBlanks();
    /// Goes to the first byte of a field; throws at the end of the file.
    void startField();
    /// Steps over the separator that ends a field.
    void endField();
    /// What is left of the field, without trailing blanks.
    [[nodiscard]] QByteArray restOfField();
    void append(QByteArray& bytes, int byte) const;
    [[noreturn]] void fail(const QString& sentence) const;

    QFile file_;
    QIODevice& device_;
    TextEncoding encoding_;
    QByteArray block_;
    qsizetype next_ = 0;
    std::int64_t size_ = 0;
    std::int64_t blockStart_ = 0;
    /// Between fields: what came before was a line end, so a line end now makes a blank line.
    bool lineStart_ = true;
};

} // namespace varnholt
