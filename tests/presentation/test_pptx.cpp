#include "presentation/build_fixture.h"
#include "presentation/package_reader.h"
#include "presentation/picture_info.h"
#include "presentation/pptx/pptx_program.h"
#include "store/errors.h"

#include <QRegularExpression>

#include <csignal>
#include <set>
#include <sys/resource.h>

using namespace Qt::StringLiterals;
using namespace varnholt;
using namespace varnholt::test;

namespace {

class Pptx : public BuildFixture
{
protected:
    Pptx()
    {
        settings_.programFolder = folder_.path();
        settings_.now = [] { return QDateTime(QDate(2026, 11, 21), QTime(14, 5)); };
    }

    [[nodiscard]] QStringList written() const
    {
        return QDir(folder_.filePath(u"Presentations"_s))
            .entryList(QDir::Files | QDir::Hidden, QDir::Name);
    }

    PptxSettings settings_;
};

/// Where a relationship of `part` leads, as a name in the package.
QString resolved(const QString& relationsPart, const QString& target)
{
    QString folder = relationsPart.section(u'/', 0, -3);
    return QDir::cleanPath(folder.isEmpty() ? target : folder + u'/' + target);
}

TEST_F(Pptx, PackageKeepsTheRules)
{
    writePicture(picture(1), {600, 350}, 96);
    writePicture(picture(2), {640, 480}, 150, "bmp");
    ASSERT_TRUE(QFile::copy(picture(1), picture(3)));
    addQuestion(u"\"A\" & <B> \u2264 \u03C0"_s, u"O'Brien & Söhne <x> - \U0001F600"_s);
    addQuestion(u"first\r\nsecond\vthird\x01\x1F"_s + QChar(0xD800) + u"!"_s, u"\ttab"_s);
    addQuestion(QString(10'000, u'w'));
    pool_(3).PictureIndex = 1;
    PptxProgram program(settings_);
    ASSERT_EQ(build(program, true, true), BuildOutcome::complete);
    const PackageReader package(program.writtenPath());
    const QStringList parts = package.parts();

    QMap<QString, QString> typeOfExtension;
    QMap<QString, QString> typeOfPart;
    for (const Element& e : package.elements(u"[Content_Types].xml"_s)) {
        if (e.name == u"Default") {
            typeOfExtension[e.attribute("Extension")] = e.attribute("ContentType");
        } else if (e.name == u"Override") {
            typeOfPart[e.attribute("PartName")] = e.attribute("ContentType");
        }
    }
    std::set<QString> reached{u"[Content_Types].xml"_s};
    for (const QString& part : parts) {
        EXPECT_TRUE(typeOfPart.contains(u'/' + part) ||
                    typeOfExtension.contains(part.section(u'.', -1)) ||
                    part == u"[Content_Types].xml")
            << qPrintable(part);
        if (part.endsWith(u".rels")) {
            reached.insert(part);
            std::set<QString> ids;
            for (const Element& e : package.elements(part, u"Relationship"_s)) {
                EXPECT_TRUE(ids.insert(e.attribute("Id")).second) << qPrintable(part);
                reached.insert(resolved(part, e.attribute("Target")));
            }
        }
    }
    EXPECT_EQ(QStringList(reached.begin(), reached.end()), parts);
    for (const QString& part : typeOfPart.keys()) {
        EXPECT_TRUE(parts.contains(part.mid(1))) << qPrintable(part);
    }

    static const QRegularExpression whole(u"^-?[0-9]+$"_s);
    for (int slide = 1; slide <= 4; ++slide) {
        const QString name = PackageReader::slideName(slide);
        std::set<QString> ids;
        for (const Element& e : package.elements(name)) {
            if (e.name == u"p:cNvPr") {
                EXPECT_TRUE(ids.insert(e.attribute("id")).second) << qPrintable(name);
            }
            for (const char* length : {"x", "y", "cx", "cy"}) {
                EXPECT_TRUE(!e.attributes.hasAttribute(QLatin1String(length)) ||
                            whole.match(e.attribute(length)).hasMatch());
            }
        }
    }
    std::set<QString> slideIds;
    for (const Element& e : package.elements(u"ppt/presentation.xml"_s, u"p:sldId"_s)) {
        EXPECT_TRUE(slideIds.insert(e.attribute("id")).second);
        EXPECT_GE(e.attribute("id").toInt(), 256);
    }
    EXPECT_EQ(slideIds.size(), 4u);

    // Each picture once, as what it is and not as what it is called, byte for byte.
    EXPECT_EQ(parts.filter(u"media"_s),
              (QStringList{u"ppt/media/image1.jpeg"_s, u"ppt/media/image2.bmp"_s}));
    QFile original(picture(2));
    ASSERT_TRUE(original.open(QIODevice::ReadOnly));
    EXPECT_EQ(package.bytes(u"ppt/media/image2.bmp"_s), original.readAll());
    EXPECT_EQ(package.listing().count("Defl"), 0);

    EXPECT_EQ(package.texts(1).first(), u"O'Brien & Söhne <x> - \U0001F600");
    EXPECT_EQ(package.texts(4),
              (QStringList{u"Answer Key"_s, u"1) \"A\" & <B> \u2264 \u03C0"_s, u"2) first"_s,
                           u"second"_s, u"third\uFFFD!"_s, u"3) "_s + QString(10'000, u'w')}));
    EXPECT_EQ(package.elements(PackageReader::slideName(1), u"p:cNvPr"_s).last().attribute("descr"),
              u"Question 1");
}

TEST_F(Pptx, Geometry)
{
    const auto points = [](QList<qint64> box) {
        for (qint64& side : box) {
            side *= 12'700;
        }
        return box;
    };
    writePicture(picture(1), {600, 350}, 0);
    writePicture(picture(2), {600, 350}, 300);
    addQuestion(u"A"_s);
    addQuestion(u"B"_s);
    for (const bool topic : {false, true}) {
        PptxProgram program(settings_);
        ASSERT_EQ(build(program, topic, true), BuildOutcome::complete);
        const PackageReader package(program.writtenPath());
        const int t = topic ? 1 : 0;
        QList<QList<qint64>> first{points({0, 40 * t, 100, 100}),
                                   {2 * 12'700, (50 + 20 * t) * 12'700, 5'715'000, 3'333'750}};
        if (topic) {
            first.prepend(points({0, 0, 1000, 100}));
        }
        EXPECT_EQ(package.boxes(1), first);
        // 300 dots an inch are 11,811 a metre in the file, so a third of a hair off.
        EXPECT_NEAR(double(package.boxes(2).last().at(2)), 2 * 914'400, 60);
        EXPECT_EQ(package.boxes(3),
                  (QList<QList<qint64>>{points({0, 0, 300, 100}), points({0, 20, 100, 100}),
                                        points({0, 40, 100, 100})}));
    }
    const PackageReader package(
        folder_.filePath(u"Presentations/Varnholt 2026-11-21 14.05.pptx"_s));
    const Element size = package.elements(u"ppt/presentation.xml"_s, u"p:sldSz"_s).first();
    EXPECT_EQ(size.attribute("cx"), u"12192000");
    EXPECT_EQ(size.attribute("cy"), u"6858000");
}

TEST_F(Pptx, FileAppearsWholeUnderAFreshNameAndIsOpened)
{
    writePicture(picture(1), {60, 35}, 96);
    addQuestion(u"A"_s);
    QStringList opened;
    settings_.open = [&](const QString& path) {
        opened.append(QFileInfo(path).fileName());
        return opened.size() == 1;
    };
    QString told;
    settings_.notify = [&](const QString& message) { told += message; };
    for (int i = 0; i < 2; ++i) {
        EXPECT_TRUE(told.isEmpty());
        PptxProgram program(settings_);
        EXPECT_EQ(build(program, false, false), BuildOutcome::complete);
        EXPECT_EQ(told.contains(program.writtenPath()), i == 1)
            << "no program, so the place is told";
    }
    EXPECT_EQ(opened, (QStringList{u"Varnholt 2026-11-21 14.05.pptx"_s,
                                   u"Varnholt 2026-11-21 14.05 (2).pptx"_s}));
    EXPECT_EQ(written(), QStringList(opened.rbegin(), opened.rend()));
}

TEST_F(Pptx, MissingPictureKeepsTheSlidesSoFar)
{
    writePicture(picture(1), {60, 35}, 96);
    addQuestion(u"A"_s);
    addQuestion(u"B"_s, u"Second"_s);
    boxes_.expectInform(abortTitle, abortText);
    PptxProgram program(settings_);
    EXPECT_EQ(build(program, true, true), BuildOutcome::aborted);
    const PackageReader package(program.writtenPath());
    EXPECT_EQ(package.texts(1), (QStringList{u"Algebra - Roots"_s, u"#1"_s}));
    EXPECT_EQ(package.texts(2), QStringList{u"Second"_s});
    EXPECT_EQ(package.boxes(2).size(), 2);
    EXPECT_FALSE(package.parts().contains(PackageReader::slideName(3)));
}

TEST_F(Pptx, FullDiskIsAnErrorAndLeavesNothing)
{
    writePicture(picture(1), {1200, 900}, 96, "bmp");
    addQuestion(u"A"_s);
    PptxProgram program(settings_);
    rlimit before{};
    getrlimit(RLIMIT_FSIZE, &before);
    const rlimit tight{100'000, before.rlim_max};
    std::signal(SIGXFSZ, SIG_IGN);
    setrlimit(RLIMIT_FSIZE, &tight);
    EXPECT_THROW(build(program, false, false), Error);
    setrlimit(RLIMIT_FSIZE, &before);
    EXPECT_EQ(written(), QStringList());
}

TEST_F(Pptx, AFolderThatCannotBeUsedFailsBeforeAnyWork)
{
    QFile inTheWay(folder_.filePath(u"Presentations"_s));
    ASSERT_TRUE(inTheWay.open(QIODevice::WriteOnly));
    PptxProgram program(settings_);
    EXPECT_THROW(program.addPresentation(), Error);
}

TEST_F(Pptx, LeftoversOfAKilledProgramGoAndYoungOnesStay)
{
    ASSERT_TRUE(QDir(folder_.path()).mkpath(u"Presentations"_s));
    for (const int age : {10, 7200}) {
        QFile part(folder_.filePath(u"Presentations/.varnholt-%1.part"_s.arg(age)));
        ASSERT_TRUE(part.open(QIODevice::WriteOnly));
        ASSERT_TRUE(part.setFileTime(QDateTime::currentDateTime().addSecs(-age),
                                     QFileDevice::FileModificationTime));
    }
    PptxProgram(settings_).addPresentation();
    EXPECT_EQ(written(), QStringList{u".varnholt-10.part"_s});
}

class Pictures : public testing::Test
{
protected:
    QString save(QByteArray bytes)
    {
        const QString path = folder_.filePath(QStringLiteral("%1.jpg").arg(++files_));
        QFile file(path);
        EXPECT_TRUE(file.open(QIODevice::WriteOnly));
        file.write(bytes);
        return path;
    }

    QByteArray bytesOf(QSize size, double dotsPerInch, const char* format)
    {
        QFile file(writePicture(folder_.filePath(u"made"_s), size, dotsPerInch, format));
        EXPECT_TRUE(file.open(QIODevice::ReadOnly));
        return file.readAll();
    }

    /// The JPEG with an Exif block instead of its JFIF one.
    QByteArray withExif(QByteArray jpeg, char orientation, const QByteArray& density)
    {
        QByteArray tiff("MM\0\x2A\0\0\0\x08\0\x03"
                        "\x01\x12\0\x03\0\0\0\x01\0",
                        19);
        tiff += orientation;
        tiff += QByteArray("\0\0"
                           "\x01\x1A\0\x05\0\0\0\x01\0\0\0\x32"
                           "\x01\x1B\0\x05\0\0\0\x01\0\0\0\x32\0\0\0\0",
                           30);
        tiff.resize(50);
        tiff += density;
        const int length = 2 + 6 + int(tiff.size());
        QByteArray block("\xFF\xE1\0", 3);
        block += char(length);
        block += QByteArray("Exif\0\0", 6) + tiff;
        return jpeg.replace(2, 18, block);
    }

    QTemporaryDir folder_;
    int files_ = 0;
};

TEST_F(Pictures, OwnSizeIsPixelsAtTheDensityTheFileGives)
{
    const auto points = [this](const QByteArray& bytes) {
        return readPictureInfo(save(bytes)).points;
    };
    const QSize size(600, 300);
    for (const char* format : {"jpeg", "png", "bmp"}) {
        EXPECT_NEAR(points(bytesOf(size, 150, format)).width(), 288, 0.05) << format;
        EXPECT_NEAR(points(bytesOf(size, 72, format)).height(), 300, 0.05) << format;
    }
    const QByteArray plain = bytesOf(size, 0, "jpeg");
    EXPECT_EQ(points(plain), QSizeF(450, 225));
    QByteArray perCentimetre = plain;
    perCentimetre.replace(13, 5, QByteArray("\x02\x00\x32\x00\x64", 5));
    EXPECT_NEAR(points(perCentimetre).width(), 600 / 127.0 * 72, 1e-9);
    EXPECT_NEAR(points(perCentimetre).height(), 300 / 254.0 * 72, 1e-9);
    const QByteArray density200("\0\0\0\xC8\0\0\0\x01", 8);
    EXPECT_EQ(points(withExif(plain, 1, density200)), QSizeF(216, 108));
    EXPECT_EQ(points(withExif(plain, 1, QByteArray(8, '\0'))), QSizeF(450, 225));
}

TEST_F(Pictures, ATurnedPhotoIsTurnedUpright)
{
    const QByteArray density200("\0\0\0\xC8\0\0\0\x01", 8);
    const PictureInfo info =
        readPictureInfo(save(withExif(bytesOf({600, 300}, 0, "jpeg"), 6, density200)));
    EXPECT_EQ(info.pixels, QSize(300, 600));
    EXPECT_EQ(info.points, QSizeF(108, 216));
    EXPECT_EQ(QImage::fromData(info.uprightJpeg).size(), QSize(300, 600));
}

TEST_F(Pictures, BadFilesAreErrors)
{
    QStringList bad{folder_.filePath(u"missing.jpg"_s), QString(), folder_.path(), save({}),
                    save("not a picture at all, only some text of a decent length, long enough")};
    for (const char* format : {"jpeg", "png", "bmp"}) {
        const QByteArray whole = bytesOf({300, 200}, 96, format);
        EXPECT_NO_THROW(static_cast<void>(readPictureInfo(save(whole)))) << format;
        EXPECT_NO_THROW(static_cast<void>(readPictureInfo(save(whole + QByteArray(9000, 'x')))))
            << format << " with something appended";
        for (const qsizetype size :
             {whole.size() - 1, whole.size() / 2, qsizetype(20), qsizetype(3)}) {
            bad.append(save(whole.left(size)));
        }
    }
    QByteArray zeroed = bytesOf({300, 200}, 96, "jpeg");
    bad.append(save(
        zeroed.replace(zeroed.size() / 2, zeroed.size(), QByteArray(zeroed.size() / 2, '\0'))));
    bad.append(save(bytesOf({30'000, 4}, 96, "jpeg")));
    for (const QString& path : bad) {
        EXPECT_THROW(static_cast<void>(readPictureInfo(path)), Error) << qPrintable(path);
    }
}

} // namespace
