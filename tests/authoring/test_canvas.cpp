#include "authoring/PictureCanvas.h"
#include "store/errors.h"
#include "support/test_library.h"
#include "toolkit/DesktopClipboard.h"

#include <QBuffer>
#include <QFontInfo>
#include <QMimeData>
#include <QUrl>

#include <gtest/gtest.h>

#include <limits>

namespace varnholt::test {

using namespace Qt::Literals::StringLiterals;

namespace {

QImage plain(QSize size)
{
    QImage image(size, QImage::Format_RGB32);
    image.fill(0xFF3060C0);
    return image;
}

class Canvas : public testing::Test
{
protected:
    Canvas() { canvas.Paste(plain({300, 240})); }

    PictureCanvas canvas{QSize(200, 150)};
};

} // namespace

TEST_F(Canvas, OverflowIsAnErrorThatLeavesTheFrameRemovable)
{
    const QImage before = canvas.image();
    constexpr double far = 3e9;
    EXPECT_THROW(canvas.MouseDown(far, 0), OverflowError);
    EXPECT_THROW(canvas.MouseDown(0, std::numeric_limits<double>::quiet_NaN()), OverflowError);
    EXPECT_FALSE(canvas.Drawing || canvas.state().controlsShown);
    canvas.MouseDown(10, 10);
    EXPECT_THROW(canvas.MouseMove(0, -far), OverflowError);
    canvas.MouseMove(2e9, 2e9);
    canvas.MouseUp();
    EXPECT_EQ(canvas.state().SelX2, 300);
    canvas.MouseDown(20, 20);
    canvas.MouseMove(40, 40);
    EXPECT_THROW(canvas.MouseMove(2147483600.0, 0), OverflowError);
    canvas.DropSelection();
    EXPECT_EQ(canvas.image(), before);

    EXPECT_THROW(canvas.Paste(plain({200 + 32768, 1})), OverflowError);
    EXPECT_THROW(canvas.Paste(plain({1, 150 + 32768})), OverflowError);
    EXPECT_EQ(canvas.image(), before);
    EXPECT_TRUE(canvas.Paste(plain({200 + 32767, 1})));
    EXPECT_EQ(canvas.state().HScroll.maximum, 32767);
}

TEST_F(Canvas, HandlesMoveTheirSidesAloneAndStepsRememberTheirFrames)
{
    const auto release = [&](double X, double Y) {
        canvas.MouseMove(X, Y);
        canvas.MouseUp();
    };
    const auto frame = [&] { return canvas.state().selection(); };
    canvas.MouseDown(100, 60);
    release(160, 120);
    canvas.HandleDown(1, 0);
    release(200, 200);
    canvas.HandleDown(-1, 1);
    release(80, 150);
    const QRect sized(80, 60, 120, 90);
    EXPECT_EQ(frame(), sized);
    canvas.HandleDown(0, -1);
    canvas.MouseMove(0, 0);
    canvas.CancelDrag();
    EXPECT_EQ(frame(), sized);
    // What is nudged comes into view.
    canvas.ScrollBy(100, 90);
    canvas.Nudge(-1, 0);
    canvas.Nudge(-1, 0);
    EXPECT_EQ(canvas.state().HScroll.value, 78);
    EXPECT_EQ(canvas.state().VScroll.value, 60);
    // Nudges of one frame are one step, those of the next another.
    canvas.MoveFrame(0, 1);
    canvas.Nudge(0, 1);
    canvas.Undo();
    EXPECT_EQ(frame(), QRect(78, 61, 120, 90));
    canvas.Undo();
    EXPECT_EQ(frame(), sized);
}

TEST_F(Canvas, ThirtyLargeStepsCanBeTakenBack)
{
    int steps = 0;
    for (; steps < 40; ++steps) {
        QImage other = plain({1200, 600});
        other.fill(steps);
        canvas.Paste(other);
    }
    for (; canvas.canUndo(); --steps) {
        canvas.Undo();
    }
    EXPECT_EQ(steps, 10);
}

TEST_F(Canvas, TextIsBlackOnWhatIsThereFromTheCornerOn)
{
    canvas.MouseDown(100, 80);
    canvas.MouseMove(130, 90);
    canvas.MouseUp();
    canvas.font = {u"Times New Roman"_s, 20, true, false, true};
    const QImage before = canvas.image();
    canvas.StampText(u"MM"_s);
    QRect touched;
    int longestLine = 0;
    for (int y = 0; y < before.height(); ++y) {
        int black = 0;
        for (int x = 0; x < before.width(); ++x) {
            const QRgb now = canvas.image().pixel(x, y);
            black += now == 0xFF000000 ? 1 : 0;
            if (now != before.pixel(x, y)) {
                touched |= QRect(x, y, 1, 1);
                // Darker by the same share in every colour: no coloured edges.
                EXPECT_NEAR(qBlue(now) * 0x30, qRed(now) * 0xC0, 0xC0);
            }
        }
        longestLine = std::max(longestLine, black);
    }
    EXPECT_TRUE(QRect(98, 80, 70, 34).contains(touched)) << touched.top() << ' ' << touched.left();
    EXPECT_GT(touched.width(), 35);
    EXPECT_GT(longestLine, 35) << "not underlined";
}

TEST(CanvasFonts, EveryOfferedFaceHasASubstituteOfItsKind)
{
    for (const char* name : {"Arial", "Calibri", "Courier", "Courier New", "MS Sans Serif",
                             "Times New Roman", "Verdana"}) {
        const QFont font = stampFont({QLatin1String(name), 12});
        // The system may add the foundry in brackets.
        const QString found = QFontInfo(font).family().section(u" ["_s, 0, 0);
        EXPECT_TRUE(faceAndSubstitutes(QLatin1String(name)).contains(found))
            << name << " came out as " << found.toStdString();
        EXPECT_EQ(font.pixelSize(), 16);
        EXPECT_EQ(QFontInfo(font).fixedPitch(), QByteArray(name).startsWith("Courier")) << name;
    }
}

TEST(ClipboardPicture, ComesInAnyFormAndNeverHalf)
{
    const QImage picture = testPicture({90, 70}, 3);
    for (const char* format : {"png", "bmp", "jpeg", "tiff", "webp"}) {
        QBuffer file;
        // The Qt of the build for Windows knows three of them.
        if (!picture.save(&file, format)) {
            continue;
        }
        for (const auto& [share, size] : {std::pair{3, picture.size()}, {2, QSize()}, {0, {}}}) {
            QMimeData data;
            data.setData(u"image/"_s + QLatin1String(format),
                         file.data().first(file.size() * share / 3));
            EXPECT_TRUE(mayHoldPicture(data));
            EXPECT_EQ(pictureFrom(data).size(), size.expandedTo({0, 0})) << format << share;
        }
    }
    QImage sharp = picture;
    sharp.setDevicePixelRatio(2);
    QMimeData decoded;
    decoded.setImageData(sharp);
    EXPECT_EQ(pictureFrom(decoded).devicePixelRatio(), 1);
    EXPECT_EQ(pictureFrom(decoded).convertToFormat(picture.format()), picture);

    QTemporaryDir folder;
    const QString path = folder.filePath(u"copied ü.png"_s);
    picture.save(path);
    QMimeData files;
    files.setUrls({QUrl::fromLocalFile(folder.filePath(u"gone.png"_s)),
                   QUrl(u"https://example.org/a.png"_s), QUrl::fromLocalFile(path)});
    EXPECT_EQ(pictureFrom(files).convertToFormat(picture.format()), picture);

    QMimeData text;
    text.setText(u"no picture"_s);
    EXPECT_FALSE(mayHoldPicture(text));
    EXPECT_TRUE(pictureFrom(text).isNull());

    // Refused by its header, unread.
    QMimeData huge;
    huge.setData(u"image/x-portable-pixmap"_s, "P6 30000 30000 255\n");
    EXPECT_THROW(static_cast<void>(pictureFrom(huge)), Error);
}

} // namespace varnholt::test
