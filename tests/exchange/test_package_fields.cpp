#include "exchange/exchange_world.h"
#include "exchange/package_fields.h"
#include "store/errors.h"

#include <QBuffer>

#include <filesystem>

namespace varnholt {
namespace {

using test::readFile;

/// Reads records of the kinds in `pattern` (n a number, t a text) to the end; the fields
/// joined with '|', records with '/'; "error" in place of what cannot be read.
std::string readAll(QByteArray bytes, const char* pattern,
                    TextEncoding encoding = TextEncoding::Windows1252)
{
    QBuffer buffer(&bytes);
    buffer.open(QIODevice::ReadOnly);
    QStringList records;
    try {
        FieldReader reader(buffer, encoding);
        while (!reader.atEnd()) {
            QStringList fields;
            records.append(QStringLiteral("error"));
            for (const char* kind = pattern; *kind; ++kind) {
                fields.append(*kind == 'n' ? QString::number(reader.number()) : reader.text());
            }
            records.back() = fields.join(u'|');
        }
    } catch (const Error& error) {
        EXPECT_FALSE(error.message().isEmpty());
    }
    return records.join(u'/').toStdString();
}

TEST(PackageFields, WriterLaysOutLinesAsTheFormatSays)
{
    const QTemporaryDir folder;
    const QString path = folder.filePath(QStringLiteral("f.txt"));
    FieldWriter writer(path, TextEncoding::Windows1252);
    writer.writeRecord({12, QStringLiteral("Adding, subtracting"), 40});
    writer.writeRecord({-7, QStringLiteral("5\" – é€"), 0});
    writer.close();
    EXPECT_EQ(readFile(path), QByteArray("12,\"Adding, subtracting\",40\r\n"
                                         "-7,\"5\" \x96 \xe9\x80\",0\r\n"));
    // A link to the old file keeps its bytes when the file is made anew.
    const QString link = folder.filePath(QStringLiteral("link"));
    std::filesystem::create_hard_link(path.toStdU16String(), link.toStdU16String());
    FieldWriter(path, TextEncoding::Utf8).close();
    EXPECT_EQ(readFile(path), QByteArray());
    EXPECT_FALSE(readFile(link).isEmpty());
}

struct ReadingCase
{
    const char* name;
    QByteArray bytes;
    const char* pattern;
    const char* expected;
};

class Reading : public testing::TestWithParam<ReadingCase>
{};

TEST_P(Reading, GivesTheFields)
{
    EXPECT_EQ(readAll(GetParam().bytes, GetParam().pattern), GetParam().expected);
}

INSTANTIATE_TEST_SUITE_P(
    All, Reading,
    testing::Values(
        ReadingCase{"Plain", "12,\"a, b\",-40\r\n3,\" c \",4\r\n", "ntn", "12|a, b|-40/3| c |4"},
        ReadingCase{"SpansLines", "12\r\n\"a\"\r\n4\r\n", "ntn", "12|a|4"},
        ReadingCase{"BlankLines", "\r\n \t\r\n1,\"a\"\r\n\r\n2,\"b\"\r\n\r\n", "nt", "1|a/2|b"},
        ReadingCase{"OtherLineEnds", "1,\"a\"\r2,\"b\"\n3,\"c\"", "nt", "1|a/2|b/3|c"},
        ReadingCase{"BlanksBeforeFields", "\t 1 , \t\"a\" x ,2 \r\n", "ntn", "1|a|2"},
        ReadingCase{"Unquoted", "1, a b \t,2\r\n", "ntn", "1|a b|2"},
        ReadingCase{"EmptyFields", ",,\r\n1,\"\",\r\n", "ntn", "0||0/1||0"},
        ReadingCase{"LineBreakInText", "1,\"a\r\nb\",2\r\n", "ntn", "1|a\r\nb|2"},
        ReadingCase{"QuoteInText", "1,\"5\" nails\",2\r\n", "ntn", "1|5|2"},
        ReadingCase{"QuoteAndCommaInText", "1,\"5\", 6\",2\r\n", "ntn", "error"},
        ReadingCase{"MissingField", "1,\"a\"\r\n2,\"b\"\r\n", "ntn", "1|a|2/error"},
        ReadingCase{"ExtraField", "1,\"a\",9\r\n2,\"b\",9\r\n", "nt", "1|a/9|2/error"},
        ReadingCase{"Utf8Mark",
                    "\xef\xbb\xbf"
                    "1,\"\xcf\x80\"\r\n",
                    "nt", "1|π"},
        ReadingCase{"OpenQuote", "1,\"a\r\n2,b\r\n", "nt", "error"},
        ReadingCase{"QuotedNumber", "\"1\",\"a\"\r\n", "nt", "error"},
        ReadingCase{"Words", "1 2,\"a\"\r\n", "nt", "error"},
        ReadingCase{"Largest", "2147483647,-2147483648\r\n", "nn", "2147483647|-2147483648"},
        ReadingCase{"TooLarge", "2147483648,\"a\"\r\n", "nt", "error"},
        ReadingCase{"HugeText", '"' + QByteArray(2'000'000, 'a') + '"', "t", "error"},
        ReadingCase{"EndsAfterComma", "1,", "nt", "error"}),
    [](const auto& tested) { return std::string(tested.param.name); });

TEST(PackageFields, FieldsCrossTheReadersBlocksWhole)
{
    // The line end, the comma and the quotes each fall on the border once.
    for (int pad = 65'520; pad < 65'540; ++pad) {
        EXPECT_EQ(readAll('"' + QByteArray(pad, 'a') + "\",1\r\n\"b\",2\r\n", "tn"),
                  std::string(std::size_t(pad), 'a') + "|1/b|2");
    }
}

TEST(PackageFields, EncodingsLoseNothing)
{
    QByteArray bytes;
    for (int byte = 1; byte < 256; ++byte) {
        bytes += static_cast<char>(byte);
    }
    const QString text = decodeText(bytes, TextEncoding::Windows1252);
    EXPECT_TRUE(fitsWindows1252(text));
    EXPECT_EQ(encodeText(text, TextEncoding::Windows1252), bytes);
    EXPECT_EQ(text.mid(0x7f, 3), QStringLiteral("€\u0081‚"));
    for (const QString& other :
         {QStringLiteral("π"), QStringLiteral("\u0080"), QStringLiteral("\u009f"),
          QStringLiteral("𝛑"), QStringLiteral("\ufeff")}) {
        EXPECT_FALSE(fitsWindows1252(QStringLiteral("a") + other));
        EXPECT_EQ(decodeText(encodeText(other, TextEncoding::Utf8), TextEncoding::Utf8), other)
            << other.toStdString();
    }
    EXPECT_THROW(static_cast<void>(decodeText("\xe9t\xe9", TextEncoding::Utf8)), Error);
}

} // namespace
} // namespace varnholt
