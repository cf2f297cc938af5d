#include "exchange/archive_reader.h"
#include "exchange/cZip.h"
#include "exchange/exchange_world.h"
#include "exchange/zip_maker.h"
#include "store/errors.h"

#include <cerrno>
#include <tuple>
#include <zip.h>

namespace varnholt {
namespace {

using namespace test;

class Archive : public testing::Test
{
protected:
    Archive()
    {
        QDir(folder.path()).mkdir(u"out"_s);
        zip.setZipFileName(at("a.zip"));
    }

    [[nodiscard]] QString at(const char* name) const
    {
        return folder.filePath(QLatin1String(name));
    }
    [[nodiscard]] std::string unpacked() const { return listing(at("out")); }

    /// Unpacks the bytes; the comment, or "refused".
    QString unpack(const QByteArray& archive, const UnpackLimits& limits = {})
    {
        writeFile(at("a.zip"), archive);
        try {
            return UnpackArchive(at("a.zip"), at("out"), limits).comment;
        } catch (const Error& error) {
            EXPECT_FALSE(error.message().isEmpty());
            return u"refused"_s;
        }
    }

    /// Packs files of the folder.
    bool add(const std::vector<const char*>& names)
    {
        List1<QString> paths;
        for (const char* name : names) {
            paths.append(at(name));
        }
        return zip.AddFilesToZip(paths);
    }

    QTemporaryDir folder;
    cZip zip;
};

TEST_F(Archive, KeepsOrderPacksTextsShowsProgressOnceAFileAndIsReadByOthers)
{
    const std::vector<const char*> files{"b.txt", "a.txt", "9.jpg", "10.jpg"};
    for (const char* name : files) {
        writeFile(at(name), QByteArray(300'000, *name));
    }
    writeFile(at("a.zip"), "an older package");
    zip.setComment(u"a comment"_s);
    std::vector<std::int64_t> steps;
    zip.progress = [&](ExchangeWork, std::int64_t done, std::int64_t all) {
        if (all == 4 && (steps.empty() || steps.back() != done)) {
            steps.push_back(done);
        }
    };
    ASSERT_TRUE(add(files));
    zip.progress = nullptr;
    EXPECT_TRUE(std::ranges::is_sorted(steps) && steps.size() >= 4 && steps.back() == 4);
    zip_t* archive =
        zip_open(at("a.zip").toUtf8().constData(), ZIP_RDONLY | ZIP_CHECKCONS, nullptr);
    ASSERT_NE(archive, nullptr);
    std::string members;
    for (zip_uint64_t i = 0; i < 4; ++i) {
        zip_stat_t member;
        zip_stat_index(archive, i, 0, &member);
        members += std::string(member.name) + (member.comp_method == ZIP_CM_STORE ? " " : "! ");
    }
    zip_discard(archive);
    EXPECT_EQ(members, "b.txt! a.txt! 9.jpg 10.jpg ");
    for (const char* command : {"unzip -tqq a.zip", "bsdtar -xOf a.zip 10.jpg", "7zz t -bso0 a.zip",
                                "python3 -W error -m zipfile -t a.zip"}) {
        const auto said = runCommand(QLatin1String(command), folder.path());
        EXPECT_FALSE(said.value_or(QString()).contains(u"arning"_s));
    }

    EXPECT_FALSE(zip.UnzipToFolder(at("out")));
    EXPECT_EQ(zip.comment(), u"a comment"_s);
    EXPECT_EQ(unpacked(), "10.jpg 9.jpg a.txt b.txt");
    EXPECT_EQ(readFile(at("out/9.jpg")), QByteArray(300'000, '9'));
    EXPECT_EQ(listing(folder.path()), "10.jpg 9.jpg a.txt a.zip b.txt out/");
}

TEST_F(Archive, FailuresAreToldAndLeaveTheOldPackage)
{
    writeFile(at("a.zip"), "an older package");
    writeFile(at("1.jpg"), QByteArray(3'000'000, 'x'));

    EXPECT_FALSE(add({"1.jpg", "missing.jpg"}) || add({"1.jpg", "1.jpg"}));
    VARNHOLT_SKIP_ON_WINDOWS("the disk cannot be made to look full");
    {
        const FileSizeLimit fullDisk(1'000'000);
        EXPECT_FALSE(add({"1.jpg"}));
        EXPECT_TRUE(zip.failure().reason.contains(qt_error_string(EFBIG)));
    }
    EXPECT_EQ(readFile(at("a.zip")), "an older package");
    EXPECT_EQ(listing(folder.path()), "1.jpg a.zip out/");

    for (const char* path : {"/proc/a.zip", "/nowhere/a.zip"}) {
        zip.setZipFileName(QLatin1String(path));
        EXPECT_FALSE(add({"1.jpg"}));
        EXPECT_TRUE(zip.failure().notOpened);
        EXPECT_THROW(cZip::CreateEmptyZip(QLatin1String(path)), Error);
    }

    // An empty archive is the end record alone.
    const QByteArray empty = "PK\5\6" + QByteArray(18, 0);
    cZip::CreateEmptyZip(at("a.zip"));
    EXPECT_EQ(readFile(at("a.zip")), empty);
    EXPECT_EQ(unpack(empty), QString());
}

const QByteArray someText = QByteArray("some text ").repeated(50);

TEST_F(Archive, BadMembersAreRefusedWithoutAHalfFile)
{
    using Members = std::vector<RawMember>;
    constexpr UnpackLimits small{1000, 1000, 1, 0, 3};
    const QByteArray large(900, 'x');
    // And what stands in the folder afterwards.
    const std::tuple<Members, const char*, UnpackLimits> cases[] = {
        {{{.name = "1.jpg", .data = someText, .crcError = 1}}, "", {}},
        {{{.name = "1.jpg", .data = "x"},
          {.name = "2.jpg", .data = someText, .deflated = true, .crcError = 1}},
         "1.jpg",
         {}},
        {{{.name = "encrypted.jpg", .data = someText, .flags = 1}}, "", {}},
        {{{.name = "1.jpg", .data = someText, .deflated = true, .packed = "\7garbage"}}, "", {}},
        {{{.name = "1.jpg", .data = someText, .deflated = true, .sizeError = -100}}, "", {}},
        {{{.name = "1.jpg", .data = "a"}, {.name = "1.JPG", .data = "b"}}, "1.jpg", {}},
        {{{.name = "1.jpg", .data = QByteArray(1001, 'x')}}, "", small},
        {{{.name = "1.jpg", .data = large},
          {.name = "2.jpg", .data = large, .overlaps = true},
          {.name = "3.jpg", .data = large, .overlaps = true}},
         "1.jpg",
         {1000, 1000, 0, 0, 3}},
        {Members(4, {.name = "1.jpg"}), "", small},
        {{{.name = QByteArray(5000, 'x')}}, "", small},
        {{{.name = "1.jpg", .data = "x"}}, "", {1000, 1000, 1, qint64{1} << 60, 3}}};
    for (const auto& [members, left, limits] : cases) {
        SCOPED_TRACE(members.back().name.toStdString() + std::to_string(members.size()));
        EXPECT_EQ(unpack(makeZip(members), limits), u"refused"_s);
        EXPECT_EQ(unpacked(), left);
        QFile::remove(at("out/1.jpg"));
    }
}

TEST_F(Archive, WhatIsNoArchiveIsRefused)
{
    for (const QByteArray& bytes :
         {QByteArray(), QByteArray("PK"), QByteArray("PK\5\6"), QByteArray(100'000, 'x'),
          makeZip({{.name = "1.jpg", .data = "x"}}).chopped(1)}) {
        EXPECT_EQ(unpack(bytes), u"refused"_s);
    }
    for (const QString& path : {at("missing.zip"), at("out"), u"/dev/zero"_s}) {
        EXPECT_THROW(static_cast<void>(UnpackArchive(path, at("out"))), Error);
    }
    // Nothing that exists is written to, and a full disk is an error.
    writeFile(at("out/1.jpg"), "precious");
    EXPECT_EQ(unpack(makeZip({{.name = "1.jpg", .data = "x"}})), u"refused"_s);
    EXPECT_EQ(readFile(at("out/1.jpg")), "precious");
    const QByteArray large = makeZip({{.name = "2.jpg", .data = QByteArray(500'000, 'x')}});
    writeFile(at("a.zip"), large);
    VARNHOLT_SKIP_ON_WINDOWS("the disk cannot be made to look full");
    const FileSizeLimit fullDisk(100'000);
    EXPECT_THROW(static_cast<void>(UnpackArchive(at("a.zip"), at("out"))), Error);
    EXPECT_EQ(unpacked(), "1.jpg");
}

TEST_F(Archive, TruncatedAtAnyThousandthByteIsRefused)
{
    QByteArray noise(40'000, 0);
    for (qsizetype i = 0; i < noise.size(); ++i) {
        noise[i] = static_cast<char>((i * i * 7919) >> 8);
    }
    const QByteArray whole = makeZip({{.name = "topics.txt", .data = someText, .deflated = true},
                                      {.name = "1.jpg", .data = noise},
                                      {.name = "2.jpg", .data = noise}},
                                     "Text files: UTF-8");
    for (qsizetype size = 0; size < whole.size(); size += 1000) {
        EXPECT_EQ(unpack(whole.first(size)), u"refused"_s) << size;
    }
    EXPECT_EQ(unpacked(), "");
    EXPECT_EQ(unpack(whole), u"Text files: UTF-8"_s);
}

TEST_F(Archive, OnlyPlainNamesAtTheRootAreTaken)
{
    constexpr quint32 unixMode = 1u << 16;
    constexpr quint32 link = 0120000, device = 0060000, directory = 0040000;
    std::vector<RawMember> members{
        {.name = "5.JPG", .data = "5"},
        {.name = "TOPICS.TXT", .data = "t"},
        {.name = "assessmentinfo.txt", .data = "a"},
        {.name = "0012.jpg", .data = "not key 12"},
        {.name = "größe.txt", .data = "utf8", .flags = 0x800},
        {.name = "na\x8bve.txt", .data = "cp437"},
        {.name = "6.jpg", .data = "/etc/passwd", .attributes = (link | 0777) * unixMode},
        {.name = "7.jpg", .data = "device", .attributes = (device | 0666) * unixMode},
        {.name = "8.jpg", .attributes = (directory | 0777) * unixMode},
        {.name = "9.jpg", .attributes = 0x10}};
    const QByteArray names("../1.jpg,..,.,,/1.jpg,/etc/1.jpg,C:1.jpg,C:\\1.jpg,..\\1.jpg,sub/,"
                           "sub/1.jpg,./1.jpg,1.jpg/,.1.jpg,1.jpg ,1.jpg.,a\nb,a\x7f-,what?,*");
    for (const QByteArray& name : names.split(',')) {
        members.push_back({.name = name, .data = "bad"});
    }
    members.push_back({.name = QByteArray("1.jpg\0", 6), .data = "bad"});
    members.push_back({.name = QByteArray(300, 'n'), .data = "bad"});
    EXPECT_EQ(unpack(makeZip(members)), QString());
    EXPECT_EQ(unpacked(), "0012.jpg 5.jpg AssessmentInfo.txt größe.txt naïve.txt topics.txt");
    EXPECT_EQ(readFile(folder.filePath(u"out/naïve.txt"_s)), "cp437");
    EXPECT_EQ(listing(folder.path()), "a.zip out/");
}

TEST_F(Archive, LargeFormatsAreRead)
{
    std::vector<RawMember> many(65'535);
    for (std::size_t i = 0; i < many.size(); ++i) {
        many[i].name = "left out/" + QByteArray::number(qlonglong(i)) + ".jpg";
    }
    many.push_back({.name = "2.jpg", .data = someText});
    EXPECT_EQ(unpack(makeZip(many, {}, true)), QString());
    EXPECT_EQ(unpacked(), "2.jpg");
}

} // namespace
} // namespace varnholt
