#include "exchange/exchange_world.h"
#include "exchange/package_fields.h"
#include "store/errors.h"

#include <QBuffer>

#include <filesystem>

namespace varnholt {

using namespace Qt::StringLiterals;
namespace {

/// Reads records of the kinds in `pattern` (n a number, t a text) to the end; the fields
/// joined with '|', records with '/'; "error" in place of what cannot be read.
std::string readAll(QByteArray bytes, const char* pattern)
{
    QBuffer buffer(&bytes);
    buffer.open(QIODevice::ReadOnly);
    QStringList records;
    try {
        FieldReader reader(buffer, TextEncoding::Windows1252);
        while (!reader.atEnd()) {
            QStringList fields;
            records.append(u"error"_s);
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

TEST(PackageFields, AreReadAsTheFormatSaysOrRefused)
{
    struct Case
    {
        QByteArray bytes;
        const char* pattern;
        const char* expected;
    };
    for (const Case& c : {Case{"12,\"a, b\",-40\r\n3,\" c \",4\r\n", "ntn", "12|a, b|-40/3| c |4"},
                          Case{"12\r\n\"a\"\r\n4\r\n", "ntn", "12|a|4"},
                          Case{"\r\n \t\r\n1,\"a\"\r\n\r\n2,\"b\"\r\n\r\n", "nt", "1|a/2|b"},
                          Case{"1,\"a\"\r2,\"b\"\n3,\"c\"", "nt", "1|a/2|b/3|c"},
                          Case{"\t 1 , \t\"a\" x ,2 \r\n", "ntn", "1|a|2"},
                          Case{"1, a b \t,2\r\n", "ntn", "1|a b|2"},
                          Case{",,\r\n1,\"\",\r\n", "ntn", "0||0/1||0"},
                          Case{"1,\"a\r\nb\",2\r\n", "ntn", "1|a\r\nb|2"},
                          Case{"1,\"5\" nails\",2\r\n", "ntn", "1|5|2"},
                          Case{"1,\"5\", 6\",2\r\n", "ntn", "error"},
                          Case{"1,\"a\"\r\n2,\"b\"\r\n", "ntn", "1|a|2/error"},
                          Case{"1,\"a\",9\r\n2,\"b\",9\r\n", "nt", "1|a/9|2/error"},
                          Case{"\xef\xbb\xbf"
                               "1,\"\xcf\x80\"\r\n",
                               "nt", "1|π"},
                          Case{"1,\"a\r\n2,b\r\n", "nt", "error"},
                          Case{"\"1\",\"a\"\r\n", "nt", "error"},
                          Case{"1 2,\"a\"\r\n", "nt", "error"},
                          Case{"2147483647,-2147483648\r\n", "nn", "2147483647|-2147483648"},
                          Case{"2147483648,\"a\"\r\n", "nt", "error"},
                          Case{'"' + QByteArray(2'000'000, 'a') + '"', "t", "error"},
                          Case{"1,", "nt", "error"}}) {
        EXPECT_EQ(readAll(c.bytes, c.pattern), c.expected) << c.bytes.left(40).toStdString();
    }
}

TEST(PackageFields, AFileMadeAnewLeavesWhatSharesTheOldBytes)
{
    const QTemporaryDir folder;
    const QString path = folder.filePath(u"f.txt"_s);
    test::writeFile(path, "old");
    std::filesystem::create_hard_link(path.toStdU16String(), (path + u'2').toStdU16String());
    FieldWriter(path, TextEncoding::Utf8).close();
    EXPECT_EQ(test::readFile(path) + test::readFile(path + u'2'), "old");
}

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
    EXPECT_EQ(text.mid(0x7f, 3), u"€\u0081‚"_s);
    for (const QString& other : {u"π"_s, u"\u0080"_s, u"\u009f"_s, u"𝛑"_s, u"\ufeff"_s}) {
        EXPECT_FALSE(fitsWindows1252(u"a"_s + other));
        EXPECT_EQ(decodeText(encodeText(other, TextEncoding::Utf8), TextEncoding::Utf8), other)
            << other.toStdString();
    }
    EXPECT_THROW(static_cast<void>(decodeText("\xe9t\xe9", TextEncoding::Utf8)), Error);
}

} // namespace
} // namespace varnholt
