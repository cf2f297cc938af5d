// PDF files through the process that reads them, and the window.
#include "pdf/PdfPagesView.h"
#include "pdf/PdfReader.h"
#include "pdf/frmFromPdf.h"
#include "support/gui.h"
#include "support/test_services.h"

#include <QLabel>
#include <QPainter>
#include <QPdfWriter>
#include <QPushButton>
#include <QSignalSpy>
#include <QSpinBox>

#include <gtest/gtest.h>

#include <random>

namespace varnholt::test {

using namespace Qt::Literals::StringLiterals;

namespace {

bool goOn()
{
    return true;
}

class FromPdf : public testing::Test, protected TestWorld
{
protected:
    void SetUp() override
    {
        if (PdfReader::program().isEmpty()) {
            GTEST_SKIP() << "built without Qt PDF (qt6-pdf-dev)";
        }
    }

    QString put(const QString& name, const QByteArray& content)
    {
        QFile file(library.folder() + u'/' + name);
        EXPECT_TRUE(file.open(QIODevice::WriteOnly));
        file.write(content);
        return file.fileName();
    }
    static QByteArray contentOf(const QString& path)
    {
        QFile file(path);
        EXPECT_TRUE(file.open(QIODevice::ReadOnly));
        return file.readAll();
    }
    /// A4 pages with two numbered questions each, in lines and a block 200 points wide.
    QString paper(int pages)
    {
        const QString path = library.folder() + u"/paper.pdf"_s;
        QPdfWriter writer(path);
        writer.setResolution(72);
        writer.setPageMargins({});
        QPainter painter(&writer);
        painter.setFont(QFont(u"Liberation Sans"_s, 12));
        for (int page = 0; page < pages; ++page) {
            for (int i = 0; i < 2; ++i) {
                painter.drawText(72, 100 + 300 * i,
                                 u"%1. Find the area of this:"_s.arg(2 * page + i + 1));
                painter.fillRect(100, 120 + 300 * i, 200, 100, QColor(20, 60, 150));
            }
            if (page + 1 < pages) {
                writer.newPage();
            }
        }
        return path;
    }
};

} // namespace

TEST_F(FromPdf, PagesAreDrawnAndTheirNumbersRead)
{
    PdfReader reader;
    reader.open(paper(3), {}, goOn);
    ASSERT_EQ(reader.pages().size(), 3);
    EXPECT_NEAR(reader.pages()[1].width(), 595, 1);
    const QImage page = reader.render(1, {595, 842}, PdfReader::Colours::All, goOn);
    EXPECT_EQ(page.pixel(200, 170), qRgb(20, 60, 150));
    EXPECT_EQ(page.pixel(500, 170), qRgb(255, 255, 255));
    const QImage grey = reader.render(1, {1190, 1684}, PdfReader::Colours::Grey, goOn);
    EXPECT_EQ(qGray(grey.pixel(400, 340)), qGray(20, 60, 150));
    const auto lines = reader.lineStarts(2, goOn);
    ASSERT_EQ(lines.size(), 2);
    EXPECT_TRUE(lines[1].text.startsWith(u"6. Find"_s));
    EXPECT_NEAR(lines[1].place.left(), 72, 2);
    EXPECT_NEAR(lines[1].place.bottom(), 400, 4);
    EXPECT_THROW((void)reader.render(3, {100, 100}, PdfReader::Colours::All, goOn), Error);
    EXPECT_THROW((void)reader.render(0, {30000, 30000}, PdfReader::Colours::All, goOn), Error);
    // Without waiting, and the last wanted comes first.
    QSignalSpy came(&reader, &PdfReader::came);
    for (const int wanted : {0, 1, 2, 2}) {
        reader.want(wanted, {100, 140});
    }
    for (int i = 0; came.size() < 3 && i < 100; ++i) {
        came.wait(100);
    }
    ASSERT_EQ(came.size(), 3);
    EXPECT_EQ(came[1][0].toInt(), 2);
    EXPECT_EQ(came[2][1].value<QImage>().size(), QSize(100, 140));
}

TEST_F(FromPdf, FilesThatAreNoneDamagedOrLockedAreRefused)
{
    const QByteArray sound = contentOf(paper(2));
    const QString other = library.folder() + u"/other.pdf"_s;
    PdfReader reader;
    for (const auto& [content, says] : std::initializer_list<std::pair<QByteArray, QString>>{
             {{}, u"no PDF"_s}, {"Hello", u"no PDF"_s}, {sound.first(300), u"no PDF"_s}}) {
        try {
            reader.open(put(u"bad.pdf"_s, content), {}, goOn);
            ADD_FAILURE() << content.toStdString();
        } catch (const Error& error) {
            EXPECT_TRUE(error.message().contains(says)) << error.what();
            EXPECT_TRUE(error.message().contains(u"bad.pdf"_s));
        }
    }
    EXPECT_THROW(reader.open(library.folder() + u"/none.pdf"_s, {}, goOn), Error);
    // Whatever a file holds ends in an error or in pages.
    std::mt19937 dice(5);
    for (int i = 0; i < 25; ++i) {
        QByteArray bytes = sound;
        for (int k = 0; k < 40; ++k) {
            bytes[static_cast<qsizetype>(dice() % static_cast<unsigned>(bytes.size()))] =
                static_cast<char>(dice());
        }
        try {
            reader.open(put(u"bad.pdf"_s, bytes), {}, goOn);
            (void)reader.render(0, {200, 300}, PdfReader::Colours::Grey, goOn);
            (void)reader.lineStarts(0, goOn);
        } catch (const Error&) {
        }
    }
    reader.open(paper(1), {}, goOn);
    EXPECT_EQ(reader.pages().size(), 1);
    if (QProcess::execute(u"qpdf"_s, {u"--encrypt"_s, u"key"_s, u"owner"_s, u"256"_s, u"--"_s,
                                      library.folder() + u"/paper.pdf"_s, other}) != 0) {
        GTEST_SKIP() << "no qpdf to lock a file with";
    }
    EXPECT_THROW(reader.open(other, {}, goOn), PdfLocked);
    frmFromPdf window(services, {});
    const QString title = u"From PDF"_s;
    messages.expectInput(title, u"\"other.pdf\" needs a password:"_s, u"wrong"_s);
    messages.expectInput(title, u"This password does not open \"other.pdf\". Try another:"_s,
                         u"key"_s);
    EXPECT_TRUE(window.open(other));
    messages.expectInput(title, u"\"other.pdf\" needs a password:"_s, {});
    EXPECT_FALSE(window.open(other));
}

#ifndef Q_OS_WIN
TEST_F(FromPdf, AReaderThatDiesTalksNonsenseOrHangsDoesNoHarm)
{
    const auto script = [&](const QByteArray& body) {
        const QString path = put(u"reader"_s, "#!/bin/sh\n" + body);
        QFile::setPermissions(path, QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner);
        return path;
    };
    for (const char* body : {"exit 0", "kill -SEGV $$", "yes", "head -c 6", "exec /nothing"}) {
        SCOPED_TRACE(body);
        PdfReader reader(script(body));
        EXPECT_THROW(reader.open(paper(1), {}, goOn), Error);
    }
    EXPECT_THROW(PdfReader(u"/nothing"_s).open(paper(1), {}, goOn), Error);
    PdfReader hanging(script("exec sleep 100"));
    int asked = 0;
    EXPECT_THROW(hanging.open(paper(1), {}, [&] { return ++asked < 3; }), Cancelled);
    // One that dies at each second request is started again for the next.
    const QString file = paper(1);
    PdfReader weak(script("dd bs=1 count=" + QByteArray::number(20 + 2 * file.size()) +
                          " status=none | " + QFile::encodeName(PdfReader::program())));
    for (int i = 0; i < 2; ++i) {
        weak.open(file, {}, goOn);
        EXPECT_THROW((void)weak.lineStarts(0, goOn), Error);
        EXPECT_THROW((void)weak.lineStarts(0, goOn), Error);
    }
}
#endif

TEST_F(FromPdf, FramesBecomePictures)
{
    std::vector<QImage> taken;
    int room = 3;
    frmFromPdf window(services, [&](const QImage& picture) {
        if (room-- == 0) {
            throw Error(u"The disk is full."_s);
        }
        taken.push_back(picture);
    });
    ASSERT_TRUE(window.open(paper(3)));
    window.resize(700, 600);
    window.show();
    ASSERT_TRUE(QTest::qWaitForWindowExposed(&window));
    control<QSpinBox>(&window, "txtResolution")->setValue(144);
    auto* pages = control<PdfPagesView>(&window, "pages");
    click(&window, "cmdSuggest");
    ASSERT_EQ(pages->frames().pictures().size(), 6);
    // The frame of the first question is taken away, and one is drawn across its block.
    const auto key = [&](int which, Qt::KeyboardModifiers modifiers = {}) {
        QTest::keyClick(pages, static_cast<Qt::Key>(which), modifiers);
    };
    key(Qt::Key_N);
    key(Qt::Key_Delete);
    QWidget* paper = pages->viewport();
    const double scale = (paper->width() - 20) / 595.0;
    const auto at = [&](double x, double y) {
        return QPoint(qRound(10 + x * scale), qRound(10 + y * scale));
    };
    QTest::mousePress(paper, Qt::LeftButton, {}, at(90, 110));
    QTest::mouseMove(paper, at(200, 200));
    QTest::mouseMove(paper, at(310, 180));
    QTest::mouseRelease(paper, Qt::LeftButton, {}, at(310, 180));
    ASSERT_EQ(pages->frames().all().size(), 6);
    const QRectF drawn = pages->frames().current()->area;
    EXPECT_NEAR(drawn.width(), 220, 3);
    key(Qt::Key_Down, Qt::ControlModifier | Qt::ShiftModifier);
    key(Qt::Key_Right);
    EXPECT_EQ(pages->frames().current()->area, drawn.adjusted(2, 0, 2, 2));
    key(Qt::Key_N);
    key(Qt::Key_J);
    key(Qt::Key_S);
    key(Qt::Key_Z, Qt::ControlModifier);
    key(Qt::Key_Z, Qt::ControlModifier);
    // The next page's first goes with it.
    key(Qt::Key_N);
    key(Qt::Key_J);
    EXPECT_EQ(control<QLabel>(&window, "lblState")->text(), u"5 pictures"_s);
    // One fails: what was taken is gone, the rest stays.
    click(&window, "cmdAdd");
    EXPECT_EQ(taken.size(), 3);
    EXPECT_EQ(control<QLabel>(&window, "lblHint")->text(), u"The disk is full."_s);
    EXPECT_EQ(control<QLabel>(&window, "lblState")->text(), u"2 pictures"_s);
    room = 9;
    click(&window, "cmdAdd");
    EXPECT_EQ(window.result(), QDialog::Accepted);
    ASSERT_EQ(taken.size(), 5);
    EXPECT_NEAR(taken[0].width(), 2 * 220, 6);
    EXPECT_NEAR(taken[0].height(), 2 * 72, 6);
    // Two frames of two pages, one below the other: each with its block 200 points wide.
    EXPECT_NEAR(taken[1].height(), 2 * taken[2].height(), 6);
    for (const int part : {1, 3}) {
        EXPECT_EQ(taken[1].pixel(200, taken[1].height() * part / 4), qRgb(20, 60, 150));
    }
}

} // namespace varnholt::test
