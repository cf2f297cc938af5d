#include "library/Library.h"
#include "many/PendingPictures.h"
#include "many/frmAddMany.h"
#include "store/catalogue.h"
#include "support/gui.h"
#include "support/test_services.h"
#include "toolkit/ComboBox.h"

#include <QApplication>
#include <QBuffer>
#include <QCheckBox>
#include <QDir>
#include <QImageWriter>
#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QPainter>

#include <gtest/gtest.h>

namespace varnholt::test {

using namespace Qt::Literals::StringLiterals;

namespace {

QByteArray contentOf(const QString& path)
{
    QFile file(path);
    EXPECT_TRUE(file.open(QIODevice::ReadOnly)) << path.toStdString();
    return file.readAll();
}

QByteArray encoded(const QImage& picture, const char* format)
{
    QBuffer file;
    EXPECT_TRUE(picture.save(&file, format, 85));
    return file.data();
}

/// As a phone tells where it was.
QByteArray withPlace(const QByteArray& jpeg, int orientation)
{
    QByteArray exif("Exif\0\0II*\0\x08\0\0\0\x01\0\x12\x01\x03\0\x01\0\0\0", 24);
    exif += char(orientation);
    exif += QByteArray("\0\0\0\0\0\0\0GPS 48.1N 11.5E", 22);
    const auto segment = [](char marker, const QByteArray& content) {
        const qsizetype length = content.size() + 2;
        return QByteArray("\xFF") + marker + char(length >> 8) + char(length & 0xFF) + content;
    };
    return jpeg.first(2) + segment('\xE1', exif) + segment('\xFE', "GPS 48.1N") +
           segment('\xED', "Photoshop GPS") + jpeg.sliced(2) + "\xFF\xD8 another GPS";
}

QImage page(QSize size, QRect ink, QRgb colour = qRgb(20, 40, 160))
{
    QImage image(size, QImage::Format_RGB32);
    image.fill(Qt::white);
    QPainter(&image).fillRect(ink, QColor(colour));
    return image;
}

class Many : public testing::Test, protected TestWorld
{
protected:
    Many()
    {
        maths = library.addAssessment(u"Maths"_s);
        for (const QString& name : {u"Algebra"_s, u"Geometry"_s}) {
            const std::int32_t topic = library.addTopic(maths, name);
            library.addSubTopic(maths, topic, u"First"_s);
            library.addSubTopic(maths, topic, u"Second"_s);
        }
        owner.open();
        state.CurrentAssessmentNum = maths;
        source = library.folder() + u"/source"_s;
        QDir().mkpath(source);
    }

    QString put(const QString& name, const QByteArray& bytes)
    {
        QFile file(source + u'/' + name);
        EXPECT_TRUE(file.open(QIODevice::WriteOnly));
        file.write(bytes);
        return file.fileName();
    }
    void putPages(int count)
    {
        for (int i = 1; i <= count; ++i) {
            put(u"%1.png"_s.arg(i), encoded(page({200 + i, 100}, {20, 20, 100 + i, 40}), "png"));
        }
    }
    QStringList waiting() const
    {
        return QDir(library.folder() + u"/Pending"_s)
            .entryList({u"*.jpg"_s, u"*.out"_s}, QDir::Files, QDir::Name);
    }
    QStringList rows(const QString& fields) const
    {
        return library.sql(u"SELECT %1 FROM Questions ORDER BY SOLIndex"_s.arg(fields));
    }

    void open(const FilingPreselection& preselection = {})
    {
        window = std::make_unique<frmAddMany>(services, state, owner, preselection);
        window->show();
        window->activateWindow();
        ASSERT_TRUE(QTest::qWaitForWindowActive(window.get()));
        window->setFocus();
    }
    QListWidget* list() { return control<QListWidget>(window.get(), "lstPictures"); }
    QLineEdit* answerField() { return control<QLineEdit>(window.get(), "txtAnswer"); }
    QString said(const char* name) { return control<QLabel>(window.get(), name)->text(); }
    void type(const QString& keys) { QTest::keyClicks(answerField(), keys); }
    void key(QWidget* widget, Qt::Key key, Qt::KeyboardModifiers modifiers = {})
    {
        QTest::keyClick(widget, key, modifiers);
    }

    std::int32_t maths;
    Library owner{library.folder(), clock};
    QString source;
    std::unique_ptr<frmAddMany> window;
};

} // namespace

TEST_F(Many, PicturesAreUprightOpaqueTrimmedSmallEnoughAndTellNoPlace)
{
    const QRect ink(100, 60, 300, 120);
    const QImage plain = page({600, 300}, ink);
    QImage holes = plain.convertToFormat(QImage::Format_ARGB32);
    holes.fill(Qt::transparent);
    QPainter(&holes).fillRect(ink, QColor(20, 40, 160));
    const QByteArray jpeg = encoded(page({320, 200}, {0, 0, 320, 200}), "jpeg");
    struct Case
    {
        QByteArray bytes;
        Margins margins;
        QSize size;
        bool kept;
    };
    // The Qt of the build for Windows has no WebP.
    const char* webp = QImageWriter::supportedImageFormats().contains("webp") ? "webp" : "bmp";
    for (const Case& each :
         std::initializer_list<Case>{{encoded(plain, "png"), Margins::Trim, ink.size(), false},
                                     {encoded(plain, "png"), Margins::Keep, plain.size(), false},
                                     {encoded(plain, webp), Margins::Keep, plain.size(), false},
                                     {encoded(holes, "png"), Margins::Trim, ink.size(), false},
                                     {encoded(plain, "jpeg"), Margins::Trim, ink.size(), false},
                                     {encoded(page({4000, 1000}, {0, 0, 4000, 1000}), "png"),
                                      Margins::Trim,
                                      {1920, 480},
                                      false},
                                     {withPlace(jpeg, 1), Margins::Trim, {320, 200}, true},
                                     {withPlace(jpeg, 6), Margins::Trim, {200, 320}, false}}) {
        const QString to = library.folder() + u"/normal.jpg"_s;
        QFile::remove(to);
        WriteNormalPicture(put(u"a"_s, each.bytes), to, each.margins);
        const QByteArray bytes = contentOf(to);
        QImage found;
        ASSERT_TRUE(found.loadFromData(bytes, "jpeg"));
        EXPECT_NEAR(found.width(), each.size.width(), 26);
        EXPECT_NEAR(found.height(), each.size.height(), 26);
        EXPECT_FALSE(bytes.contains("GPS") || bytes.contains("Exif"));
        EXPECT_EQ(bytes == jpeg, each.kept) << "its picture was compressed again, or it was kept";
    }
    QImage blank(50, 40, QImage::Format_RGB32);
    blank.fill(Qt::white);
    EXPECT_EQ(InkArea(blank), blank.rect());
    EXPECT_EQ(InkArea(page({60, 50}, {7, 9, 1, 30})), QRect(7, 9, 1, 30));
    for (const QByteArray& bad : {QByteArray(), QByteArray("no picture"), jpeg.first(400)}) {
        EXPECT_THROW(WriteNormalPicture(put(u"b"_s, bad), library.folder() + u"/c.jpg"_s, {}),
                     Error);
    }
}

TEST_F(Many, ManyPicturesAreFiledByKeysAlone)
{
    constexpr int count = 40;
    putPages(count);
    put(u"notes.txt"_s, "no picture");
    open({std::nullopt, std::nullopt});
    EXPECT_EQ(window->focusWidget()->objectName(), u"cmdPaste"_s);
    window->addFiles({source});
    // A progress bar may have taken its place.
    window->activateWindow();
    ASSERT_TRUE(QTest::qWaitForWindowActive(window.get()));
    EXPECT_EQ(list()->count(), count);
    EXPECT_TRUE(said("lblHint").startsWith(u"1 file could not be taken in. "_s));
    EXPECT_EQ(said("lblState"), u"40 pictures to be saved"_s);
    key(answerField(), Qt::Key_Up); // stays on the first
    key(answerField(), Qt::Key_Return);
    EXPECT_EQ(said("lblHint"), u"Type an answer before saving."_s);
    for (int i = 0; i < count / 2; ++i) {
        EXPECT_EQ(window->focusWidget(), answerField());
        type(QString::number(i));
        key(answerField(), Qt::Key_Return);
    }
    EXPECT_EQ(said("lblState"), u"20 pictures to be saved – 20 saved"_s);
    // The rest elsewhere, all at once; one is taken out, one has no answer, one is put back.
    control<ComboBox>(window.get(), "cboTopics")->setListIndex(1);
    control<ComboBox>(window.get(), "cboSubtopics")->setListIndex(1);
    list()->setFocus();
    key(list(), Qt::Key_Delete);
    EXPECT_EQ(list()->count(), count / 2 - 1);
    key(list(), Qt::Key_Delete);
    key(list(), Qt::Key_Z, Qt::ControlModifier);
    for (int i = 0; i < count / 2 - 2; ++i) {
        list()->setCurrentRow(i);
        type(u"a"_s);
        key(answerField(), Qt::Key_Down);
    }
    key(answerField(), Qt::Key_Return, Qt::ControlModifier);
    EXPECT_EQ(said("lblState"), u"1 picture to be saved – 38 saved"_s);
    EXPECT_EQ(rows(u"SubTopicNum || Answer"_s).mid(18, 4),
              QStringList({u"118"_s, u"119"_s, u"4a"_s, u"4a"_s}));
    EXPECT_EQ(window->lastFiling()->subtopicNum, 4);
    // Each question has its own picture, in the order in which people count.
    for (const int i : {1, 2, 10, 20}) {
        EXPECT_EQ(QImage(library.picturePath(i)).size(), QSize(100 + i, 40)) << i;
    }
    EXPECT_EQ(waiting().size(), 2);
    // What waits is offered again, what was taken out is not.
    window.reset();
    open();
    EXPECT_EQ(list()->count(), 1);
    EXPECT_EQ(waiting().size(), 1);
}

TEST_F(Many, AFailedSaveLeavesThePictureWaitingAndSpendsNoKey)
{
    putPages(5);
    open();
    window->addFiles({source});
    for (int i = 0; i < 5; ++i) {
        list()->setCurrentRow(i);
        type(u"%1"_s.arg(i));
    }
    library.sql(u"CREATE TRIGGER t BEFORE INSERT ON Questions WHEN new.Answer = '2' BEGIN "
                "SELECT RAISE(ABORT, 'broken'); END"_s);
    key(answerField(), Qt::Key_Return, Qt::ControlModifier);
    EXPECT_EQ(rows(u"SOLIndex"_s), QStringList({u"1"_s, u"2"_s}));
    EXPECT_EQ(list()->count(), 3);
    EXPECT_TRUE(said("lblHint").contains(u"broken"_s));
    EXPECT_EQ(waiting().size(), 3);
    library.sql(u"DROP TRIGGER t"_s);
    // The folder of the pictures takes none.
    const QString folder = library.folder() + u"/Files"_s;
    EXPECT_TRUE(QFile::rename(folder, folder + u".away"_s));
    put(u"../Files"_s, "in the way");
    key(answerField(), Qt::Key_Return, Qt::ControlModifier);
    EXPECT_EQ(rows(u"SOLIndex"_s).size(), 2);
    EXPECT_EQ(waiting().size(), 3);
    QFile::remove(folder);
    EXPECT_TRUE(QFile::rename(folder + u".away"_s, folder));
    list()->setCurrentRow(0);
    type(u"'"_s);
    key(answerField(), Qt::Key_Return);
    EXPECT_TRUE(said("lblHint").contains(u"apostrophe"_s));
    // What has been typed survives a crash: another window finds it.
    list()->setCurrentRow(1);
    EXPECT_EQ(PendingPictures(owner).keptAnswer(3), u"2'"_s);
    list()->setCurrentRow(0);
    click(window.get(), "cmdReplaceApostrophes");
    EXPECT_FALSE(control<QWidget>(window.get(), "cmdReplaceApostrophes")->isVisible());
    EXPECT_EQ(window->focusWidget(), answerField());
    key(answerField(), Qt::Key_Return, Qt::ControlModifier);
    EXPECT_EQ(rows(u"SOLIndex || Answer"_s),
              QStringList({u"10"_s, u"21"_s, u"32’"_s, u"43"_s, u"54"_s}));
    EXPECT_TRUE(QDir(library.folder() + u"/Pending"_s).isEmpty());
}

TEST_F(Many, PicturesComeByPasting)
{
    open();
    clipboard.picture = page({300, 200}, {50, 50, 100, 60});
    key(list(), Qt::Key_V, Qt::ControlModifier);
    control<QCheckBox>(window.get(), "chkTrim")->setChecked(false);
    key(answerField(), Qt::Key_V, Qt::ControlModifier);
    ASSERT_EQ(list()->count(), 2);
    EXPECT_EQ(QImage(library.folder() + u"/Pending/1.jpg"_s).size(), QSize(100, 60));
    EXPECT_EQ(QImage(library.folder() + u"/Pending/2.jpg"_s).size(), QSize(300, 200));
    clipboard.picture = QImage();
    key(list(), Qt::Key_V, Qt::ControlModifier);
    EXPECT_EQ(said("lblHint"), u"There is no picture to paste. Copy one first."_s);
    bool opened = false;
    QTimer::singleShot(0, window.get(), [&] {
        opened = QApplication::activeModalWidget()->objectName() == u"frmEditPicture"_s;
        QApplication::activeModalWidget()->close();
    });
    key(answerField(), Qt::Key_E, Qt::ControlModifier);
    EXPECT_TRUE(opened) << "the keys for the canvas do nothing where the answer is typed";
}

} // namespace varnholt::test
