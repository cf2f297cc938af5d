#include "pictures/picture_info.h"
#include "presentation/build_fixture.h"
#include "presentation/default_programs.h"
#include "presentation/package_reader.h"
#include "presentation/powerpoint/powerpoint.h"
#include "presentation/pptx/pptx_program.h"
#include "presentation/pptx/zip_writer.h"
#include "store/errors.h"
#include "support/file_size_limit.h"
#include "support/test_files.h"

#include <QByteArrayList>
#include <QCryptographicHash>
#include <QDir>
#include <QRegularExpression>

#include <random>
#include <set>

using namespace Qt::StringLiterals;
using namespace varnholt;
using namespace varnholt::test;

namespace {

class Pptx : public BuildFixture
{
protected:
    Pptx() { settings_.programFolder = folder_.path(); }

    [[nodiscard]] QStringList written() const
    {
        return QDir(folder_.filePath(u"Presentations"_s))
            .entryList(QDir::Files | QDir::Hidden, QDir::Name);
    }

    PptxSettings settings_;
};

void expectUnique(QStringList values)
{
    EXPECT_EQ(values.removeDuplicates(), 0) << qPrintable(values.join(u' '));
}

/// What holds for every package: each part has a type and is reached, relationships that a part
/// names are there, identifiers are unique. Returns the parts.
QStringList expectRules(const QString& path)
{
    const PackageReader package(path);
    // Every part has a type of its own or by its extension, and a relationship leads to it.
    const QString contentTypes = u"[Content_Types].xml"_s;
    const QStringList& parts = package.parts();
    const QStringList typed = package.values(contentTypes, "Override"_L1, "PartName"_L1);
    const QStringList extensions = package.values(contentTypes, "Default"_L1, "Extension"_L1);
    expectUnique(parts);
    expectUnique(typed + extensions);
    std::set<QString> reached{contentTypes};
    for (const QString& part : parts) {
        const QString extension = part.section(u'.', -1);
        EXPECT_TRUE(extension == u"xml" ? typed.contains(u'/' + part) || part == contentTypes
                                        : extensions.contains(extension))
            << qPrintable(part);
        if (extension == u"rels") {
            reached.insert(part);
            for (const QString& target : package.values(part, "Relationship"_L1, "Target"_L1)) {
                reached.insert(
                    QDir::cleanPath(u"./"_s + part.section(u'/', 0, -3) + u'/' + target));
            }
            QStringList known = package.values(part, "Relationship"_L1, "Id"_L1);
            expectUnique(known);
            const QString owner = QString(part).remove(u"_rels/"_s).chopped(5);
            if (owner.isEmpty()) {
                continue; // the package itself names none
            }
            QStringList named = package.values(owner, "a:blip"_L1, "r:embed"_L1);
            for (const auto element :
                 {"p:sldId"_L1, "p:sldMasterId"_L1, "p:notesMasterId"_L1, "p:sldLayoutId"_L1}) {
                named += package.values(owner, element, "r:id"_L1);
            }
            for (const QString& id : named) {
                EXPECT_TRUE(known.contains(id)) << qPrintable(owner + u' ' + id);
            }
        }
    }
    EXPECT_EQ(reached, std::set<QString>(parts.begin(), parts.end()));
    for (const QString& part : typed) {
        EXPECT_TRUE(parts.contains(part.mid(1))) << qPrintable(part);
    }
    for (const QString& part : parts.filter(QRegularExpression(u"lides/[a-zA-Z0-9]+.xml$"_s))) {
        expectUnique(package.values(part, "p:cNvPr"_L1, "id"_L1));
    }
    return parts;
}

TEST_F(Pptx, PackageKeepsTheRules)
{
    writePicture(picture(1), {600, 350}, 0);
    writePicture(picture(2), {640, 480}, 150, "bmp");
    writePicture(picture(3), {60, 35}, 96);
    addQuestion(u"\"A\" & <B> \u2264 \u03C0"_s, u"O'Brien & Söhne <x> - \U0001F600"_s);
    addQuestion(u"first\r\nsecond\vthird\x01\x1F"_s + QChar(0xD800) + u"!"_s, u"\ttab"_s);
    addQuestion(QString(10'000, u'w'));
    addQuestion(u"D"_s);
    pool_(4).PictureIndex = 2;
    PptxProgram program(settings_);
    ASSERT_EQ(build(program, true, true).end, End::Complete);
    const PackageReader package(program.writtenPath());

    const QStringList parts = expectRules(program.writtenPath());
    const auto all = [&](const QString& part, const char* element, const char* attribute = "") {
        return package.values(part, QLatin1String(element), QLatin1String(attribute)).join(u' ');
    };
    const QString presentation = u"ppt/presentation.xml"_s;
    EXPECT_EQ(all(presentation, "p:sldId", "id"), u"256 257 258 259 260");
    EXPECT_EQ(all(presentation, "p:sldSz", "cx"), u"12192000");
    EXPECT_EQ(all(presentation, "p:sldSz", "cy"), u"6858000");

    // Each picture once, as what it is and not as what it is called, stored byte for byte.
    EXPECT_EQ(parts.filter(u"media"_s).join(u' '),
              u"ppt/media/image1.jpeg ppt/media/image2.bmp ppt/media/image3.jpeg");
    EXPECT_EQ(package.bytes(u"ppt/media/image2.bmp"_s), readFile(picture(2)));
    EXPECT_TRUE(package.isStored());

    // 12,700 to the point; 9,525 to the pixel at 96 dots an inch.
    const QString first = PackageReader::slideName(1);
    EXPECT_EQ(all(first, "a:off", "x"), u"0 0 0 25400");
    EXPECT_EQ(all(first, "a:off", "y"), u"0 0 508000 889000");
    EXPECT_EQ(all(first, "a:ext", "cx"), u"0 12700000 1270000 5715000");
    EXPECT_EQ(all(first, "a:ext", "cy"), u"0 1270000 1270000 3333750");
    EXPECT_EQ(all(PackageReader::slideName(5), "a:bodyPr", "wrap"), u"square none none none none");
    EXPECT_EQ(all(first, "a:t"), u"O'Brien & Söhne <x> - \U0001F600 #1");
    EXPECT_EQ(all(PackageReader::slideName(5), "a:t"),
              u"Answer Key 1) \"A\" & <B> \u2264 \u03C0 2) first second third\uFFFD! 3) "_s +
                  QString(10'000, u'w') + u" 4) D"_s);
}

TEST_F(Pptx, EveryWishGivesAPackageThatKeepsTheRules)
{
    writePicture(picture(1), {600, 350}, 96);
    writePicture(picture(2), {10, 3000}, 96);
    addQuestion(u"one & <only>"_s);
    addQuestion(u"of several\nlines, "_s.repeated(20));
    name_ = u"../a:b? Größe "_s + QString(300, u'\u4E2D') + u" 2026-11-21"_s;
    const auto texts = [](const PackageReader& package, int slide) {
        return package.values(PackageReader::slideName(slide), "a:t"_L1).join(u' ');
    };
    for (int mask = 1; mask < 64; ++mask) {
        SCOPED_TRACE(mask);
        const auto on = [mask](int bit) { return (mask >> bit & 1) != 0; };
        wishes_ = {on(0), on(1), on(2), on(3), on(4) ? 30 : 0, on(5)};
        PptxProgram program(settings_);
        ASSERT_EQ(build(program, on(0) != on(3), true).end, End::Complete);
        const QStringList parts = expectRules(program.writtenPath());
        const PackageReader package(program.writtenPath());
        EXPECT_EQ(parts.filter(u"media"_s).size(), 2) << "a picture is stored once";
        const int twins = on(1) ? 2 : 1;
        ASSERT_EQ(parts.filter(u"slides/slide"_s).size(), 2 * twins + 1);
        EXPECT_EQ(parts.filter(u"notesSlides/n"_s).size(), on(3) ? 2 * twins : 0);
        EXPECT_FALSE(texts(package, 1).contains(u"one & <only>"_s));
        EXPECT_EQ(texts(package, 2).contains(u"Answer: one & <only>"_s), on(1));
        for (int slide = 1; slide <= 2 * twins; ++slide) {
            const QString name = PackageReader::slideName(slide);
            EXPECT_EQ(package.values(name, "p:ph"_L1, "type"_L1).join(u' '),
                      on(2) ? u"title"_s : QString());
            EXPECT_EQ(package.values(name, "a:rPr"_L1, "sz"_L1).contains(u"2800"_s),
                      on(0) && !on(2))
                << "the number is large where pictures are";
            EXPECT_EQ(package.values(name, "p:transition"_L1, "advTm"_L1).join(u' '),
                      on(4) ? u"30000"_s : QString());
            const QString described =
                package.values(name, "p:cNvPr"_L1, "descr"_L1).join(QString());
            EXPECT_EQ(described, u"Question %1"_s.arg((slide + twins - 1) / twins) +
                                     (on(2) ? u", Algebra - Roots"_s : QString()));
            if (!on(0)) {
                continue;
            }
            // 600 pixels are 450 points; the other is 7.5 x 2,250.
            const int top = on(3) ? 50 : 70;
            const bool answer = on(1) && slide % 2 == 0;
            const bool second = slide > twins;
            const int pictureShape = on(2) ? 2 : top == 70 ? 3 : 2;
            const auto number = [&](const char* element, const char* attribute, int after = 0) {
                return package.values(name, QLatin1String(element), QLatin1String(attribute))
                           .at(pictureShape + after)
                           .toDouble() /
                       12'700;
            };
            EXPECT_NEAR(number("a:off", "y"), top, 0.01);
            const double bottom = top + number("a:ext", "cy");
            EXPECT_NEAR(number("a:off", "x"), 2 + (956 - number("a:ext", "cx")) / 2, 0.01);
            const double room = answer ? number("a:off", "y", 1) - 4 : 538;
            EXPECT_NEAR(bottom, room, 0.01);
            if (answer) {
                EXPECT_NEAR(room + 4 + number("a:ext", "cy", 1), 538, 0.01);
                EXPECT_LE(number("a:ext", "cy", 1), 300);
            }
            EXPECT_NEAR(number("a:ext", "cx") / number("a:ext", "cy"),
                        second ? 10.0 / 3000 : 600.0 / 350, 0.01);
            EXPECT_LE(number("a:ext", "cx"), 900.01) << "at most twice its own size";
        }
    }
    for (const QString& file : written()) {
        EXPECT_TRUE(file.startsWith(u"_.-a-b- Größe"_s) && file.contains(u" 2026-11-21"_s) &&
                    file.toUtf8().size() < 255)
            << qPrintable(file);
    }
}

TEST_F(Pptx, ThePlainPackageIsByteForByteWhatItAlwaysWas)
{
    QFile jpeg(picture(1));
    ASSERT_TRUE(jpeg.open(QIODevice::WriteOnly));
    jpeg.write(QByteArray::fromBase64(smallPicture));
    jpeg.close();
    for (int i = 1; i <= 26; ++i) {
        addQuestion(u"<%1> & π"_s.arg(i), u"Größe %1 - O'Brien"_s.arg(i));
        pool_(i).PictureIndex = 1;
    }
    settings_.now = [] { return QDateTime({2026, 11, 21}, {14, 5}, Qt::UTC); };
    QCryptographicHash hash(QCryptographicHash::Sha256);
    for (const bool on : {true, false}) {
        PptxProgram program(settings_);
        ASSERT_EQ(build(program, on, on).end, End::Complete);
        QFile file(program.writtenPath());
        ASSERT_TRUE(file.open(QIODevice::ReadOnly) && hash.addData(&file));
    }
    EXPECT_EQ(hash.result().toHex().left(32).toStdString(), "f367a058ca6edd9986e991fae7fbbaca");
}

TEST_F(Pptx, FileAppearsWholeUnderAFreshNameAndIsOpened)
{
    writePicture(picture(1), {60, 35}, 96);
    addQuestion(u"A"_s);
    QStringList opened;
    PresentationSettings settings;
    settings.program = u"pptx"_s;
    settings.now = [] { return QDateTime(QDate(2026, 11, 21), QTime(14, 5)); };
    settings.open = [&](const QString& path) {
        opened.prepend(QFileInfo(path).fileName());
        EXPECT_EQ(written(), opened);
        return opened.size() == 1;
    };
    DefaultPresentationPrograms programs(folder_.path(), settings);
    EXPECT_EQ(build(*programs.start(SlidesInto::Program, {}), false, false).end, End::Complete);
    // Nothing opens this one, which a missing picture cuts short: the slides so far are kept.
    addQuestion(u"B"_s, u"Second"_s);
    const BuildOutcome outcome = build(*programs.start(SlidesInto::Program, {}), true, true);
    EXPECT_EQ(outcome.end, End::Aborted);
    EXPECT_TRUE(outcome.pictureIsBad);
    const QString second = folder_.filePath(u"Presentations/Varnholt 2026-11-21 14.05 (2).pptx"_s);
    EXPECT_EQ(outcome.notice, u"There is no program on this computer to show the presentation.\n\n"
                              "You find it here:\n"_s +
                                  QDir::toNativeSeparators(second));
    EXPECT_EQ(opened.last(), u"Varnholt 2026-11-21 14.05.pptx");
    const PackageReader package(second);
    EXPECT_EQ(package.values(u"ppt/presentation.xml"_s, "p:sldId"_L1, "id"_L1).size(), 2);
    EXPECT_EQ(package.values(PackageReader::slideName(1), "p:pic"_L1, "x"_L1).size(), 1);
    EXPECT_EQ(package.values(PackageReader::slideName(2), "p:pic"_L1, "x"_L1).size(), 0);
    EXPECT_EQ(package.values(PackageReader::slideName(2), "a:t"_L1), QStringList{u"Second"_s});

    // A file is what serves without a display; other names are errors.
    settings.hasDisplay = [] { return false; };
    const auto start = [&](const QString& name) {
        settings.program = name;
        return DefaultPresentationPrograms(folder_.path(), settings).start(SlidesInto::Program, {});
    };
    EXPECT_NE(dynamic_cast<PptxProgram*>(start({}).get()), nullptr);
    if (!FindPowerPoint()) {
        EXPECT_THROW(start(u"powerpoint"_s), Error);
    }
    EXPECT_THROW(start(u"keynote"_s), Error);
}

TEST_F(Pptx, DeflatedTextsComeBackAndAnswerSlidesTakeLittleRoom)
{
    std::mt19937 random(7);
    QByteArrayList texts;
    for (int i = 0; i < 60; ++i) {
        QByteArray text(i < 50 ? "<all begin alike> " : "<not these>");
        while (text.size() < (i % 20 == 0 ? 150'000 : 700)) {
            const qsizetype again = qsizetype(random()) % text.size();
            text +=
                i % 3 ? text.mid(again, qsizetype(random() % 300)) : QByteArray(1, char(random()));
        }
        texts.append(text);
    }
    for (qsizetype size = 255; size < 270; ++size) {
        // A match of about the greatest length, one from about the farthest place, hardly any.
        texts.append(QByteArray(size, 'a'));
        texts.append("from afar" + QByteArray(32'500 + size, 'a') + "from afar");
        texts.append(QByteArray(size - 255, '\xFF'));
    }
    ZipWriter archive(folder_.filePath(u"texts.zip"_s), QDateTime::currentDateTime());
    QuickDeflate deflate;
    int entries = 0;
    for (const QByteArray& text : texts) {
        archive.add(QByteArray::number(++entries), text, &deflate);
    }
    archive.finish();
    const PackageReader package(folder_.filePath(u"texts.zip"_s));
    for (int i = 0; i < entries; ++i) {
        EXPECT_EQ(package.bytes(QString::number(i + 1)), texts.at(i)) << i;
    }
#ifndef Q_OS_WIN
    // Unlike the others it reads nothing behind an entry.
    EXPECT_EQ(output(u"bsdtar"_s, {u"-xOf"_s, folder_.filePath(u"texts.zip"_s)}), texts.join());
#endif

    writePicture(picture(1), {60, 35}, 96);
    for (int i = 1; i <= 50; ++i) {
        addQuestion(u"%1"_s.arg(i), u"Topic %1"_s.arg(i * i));
        pool_(i).PictureIndex = 1;
    }
    qint64 sizes[2];
    for (const bool answers : {false, true}) {
        wishes_.answersAfterEach = answers;
        PptxProgram program(settings_);
        ASSERT_EQ(build(program, true, false).end, End::Complete);
        sizes[answers] = QFileInfo(program.writtenPath()).size();
    }
    EXPECT_LT(sizes[1], sizes[0] + 50 * 600);
}

TEST_F(Pptx, WhatCannotBeWrittenIsAnErrorThatSaysSoAndLeavesNothing)
{
    ASSERT_TRUE(QDir(folder_.path()).mkpath(u"Presentations"_s));
    for (const int age : {10, 7200}) {
        QFile part(folder_.filePath(u"Presentations/.varnholt-%1.part"_s.arg(age)));
        ASSERT_TRUE(part.open(QIODevice::WriteOnly));
        ASSERT_TRUE(part.setFileTime(QDateTime::currentDateTime().addSecs(-age),
                                     QFileDevice::FileModificationTime));
    }
    PptxProgram(settings_).addPresentation();
    EXPECT_EQ(written(), QStringList{u".varnholt-10.part"_s}) << "an old one goes";

    ZipWriter archive(folder_.filePath(u"many.zip"_s), QDateTime::currentDateTime());
    for (int i = 0; i < 0xFFFE; ++i) {
        archive.add(QByteArray::number(i), {});
    }
    EXPECT_THROW(archive.add("one more", {}), Error);

    PptxSettings inTheWay = settings_;
    inTheWay.programFolder = folder_.filePath(u"many.zip"_s);
    EXPECT_THROW(PptxProgram(inTheWay).addPresentation(), Error) << "before any work";

    VARNHOLT_SKIP_ON_WINDOWS("the disk cannot be made to look full");
    writePicture(picture(1), {1200, 900}, 96, "bmp");
    addQuestion(u"A"_s);
    PptxProgram program(settings_);
    QString message;
    try {
        const FileSizeLimit full(100'000);
        static_cast<void>(build(program, false, false));
    } catch (const Error& error) {
        message = error.message();
    }
    EXPECT_TRUE(message.contains(qt_error_string(EFBIG))) << qPrintable(message);
    EXPECT_EQ(written(), QStringList{u".varnholt-10.part"_s});
}

class Pictures : public BuildFixture
{
protected:
    QString save(const QByteArray& bytes)
    {
        writeFile(picture(++files_), bytes);
        return picture(files_);
    }

    QByteArray bytesOf(QSize size, double dotsPerInch, const char* format)
    {
        return readFile(writePicture(folder_.filePath(u"made"_s), size, dotsPerInch, format));
    }

    /// A JPEG of 600 x 300 pixels with an Exif block instead of its JFIF one; `density` is a
    /// fraction of two 32-bit numbers.
    QByteArray withExif(const QByteArray& orientation, const QByteArray& density)
    {
        const QByteArray exif =
            "FFE10042 457869660000 4D4D002A00000008 0003 0112000300000001 " + orientation +
            " 0000 011A00050000000100000032 011B00050000000100000032 00000000" + density;
        return bytesOf({600, 300}, 0, "jpeg").replace(2, 18, QByteArray::fromHex(exif));
    }

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
    QByteArray plain = bytesOf(size, 0, "jpeg");
    EXPECT_EQ(points(plain), QSizeF(450, 225));
    const QSizeF perCentimetre =
        points(plain.replace(13, 5, QByteArray("\x02\x00\x32\x00\x64", 5)));
    EXPECT_NEAR(perCentimetre.width(), 600 / 127.0 * 72, 1e-9);
    EXPECT_NEAR(perCentimetre.height(), 300 / 254.0 * 72, 1e-9);
    EXPECT_EQ(points(withExif("0001", "000000C800000001")), QSizeF(216, 108));
    EXPECT_EQ(points(withExif("0001", "0000000000000000")), QSizeF(450, 225));

    const PictureInfo turned = readPictureInfo(save(withExif("0006", "000000C800000001")));
    EXPECT_EQ(turned.pixels, QSize(300, 600));
    EXPECT_EQ(turned.points, QSizeF(108, 216));
    EXPECT_EQ(QImage::fromData(turned.uprightJpeg).size(), QSize(300, 600));
}

TEST_F(Pictures, BadFilesAreErrors)
{
    QStringList bad{folder_.filePath(u"missing.jpg"_s), QString(), folder_.path(),
                    save("not a picture at all, only some text of a decent length, long enough"),
                    save(bytesOf({30'000, 4}, 96, "jpeg"))};
    for (const char* format : {"jpeg", "png", "bmp"}) {
        const QByteArray whole = bytesOf({300, 200}, 96, format);
        EXPECT_NO_THROW(static_cast<void>(readPictureInfo(save(whole + QByteArray(9000, 'x')))))
            << format << " with something appended";
        for (const qsizetype size : {whole.size() - 1, whole.size() / 2, qsizetype(3)}) {
            bad.append(save(whole.left(size)));
        }
    }
    for (const QString& path : bad) {
        EXPECT_THROW(static_cast<void>(readPictureInfo(path)), Error) << qPrintable(path);
    }
}

} // namespace
