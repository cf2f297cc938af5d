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

namespace {

void select(PictureCanvas& canvas, QRect area)
{
    canvas.MouseDown(area.left(), area.top());
    canvas.MouseMove(area.left() + area.width(), area.top() + area.height());
    canvas.MouseUp();
}

QImage plain(QSize size, QRgb colour = 0xFF3060C0)
{
    QImage image(size, QImage::Format_RGB32);
    image.fill(colour);
    return image;
}

QByteArray encoded(const QImage& image, const char* format)
{
    QBuffer buffer;
    buffer.open(QIODevice::WriteOnly);
    image.save(&buffer, format);
    return buffer.data();
}

class Canvas : public testing::Test
{
protected:
    Canvas() { canvas.Paste(plain({300, 240})); }

    PictureCanvas canvas{QSize(200, 150)};
};

} // namespace

TEST_F(Canvas, CutPlacesStayWhiteAndPassedContentComesBack)
{
    const QRgb blue = canvas.picQuestion.image().pixel(0, 0);
    select(canvas, {10, 40, 20, 20});
    canvas.MoveSelection(SelectionMove::Up);
    EXPECT_EQ(canvas.SelY1, 0);
    canvas.MoveSelection(SelectionMove::Up);
    EXPECT_EQ(canvas.SelY1, 0);
    canvas.MoveSelection(SelectionMove::Right);
    EXPECT_EQ(canvas.picQuestion.picture().pixel(10, 40), QRgb(0xFFFFFFFF));
    EXPECT_EQ(canvas.picQuestion.picture().pixel(10, 0), blue);
    canvas.MoveSelection(SelectionMove::Erase);
    canvas.MoveSelection(SelectionMove::Left);
    EXPECT_EQ(canvas.picQuestion.picture().pixel(110, 0), QRgb(0xFFFFFFFF));
    EXPECT_EQ(canvas.picQuestion.picture().pixel(10, 0), QRgb(0xFFFFFFFF));
}

TEST_F(Canvas, NoFrameEverStaysBehind)
{
    const QImage before = canvas.picQuestion.image();
    // Over the upper left edge: what was drawn differs from what is stored.
    canvas.MouseDown(50, 50);
    canvas.MouseMove(-30, -20);
    canvas.MouseUp();
    EXPECT_EQ(canvas.SelX1, 0);
    EXPECT_NE(canvas.picQuestion.image(), before);
    // Away and back again deselects as a click does.
    canvas.MouseDown(20, 20);
    canvas.MouseMove(90, 90);
    canvas.MouseMove(20, 20);
    canvas.MouseUp();
    EXPECT_FALSE(canvas.SelectionShown || canvas.controlsShown());
    EXPECT_EQ(canvas.picQuestion.image(), before);
    // A click on the empty canvas, and a drag interrupted by a paste of nothing.
    select(canvas, {70, 70, 0, 0});
    EXPECT_FALSE(canvas.SelectionShown || canvas.controlsShown());
    canvas.MouseDown(5, 5);
    canvas.MouseMove(60, 60);
    EXPECT_FALSE(canvas.Paste(QImage()));
    EXPECT_EQ(canvas.picQuestion.image(), before);
}

TEST_F(Canvas, OverflowIsAnErrorThatLeavesTheFrameRemovable)
{
    const QImage before = canvas.picQuestion.image();
    constexpr double far = 3e9;
    EXPECT_THROW(canvas.MouseDown(far, 0), OverflowError);
    EXPECT_THROW(canvas.MouseDown(0, std::numeric_limits<double>::quiet_NaN()), OverflowError);
    EXPECT_FALSE(canvas.Drawing || canvas.controlsShown());
    canvas.MouseDown(10, 10);
    EXPECT_THROW(canvas.MouseMove(0, -far), OverflowError);
    canvas.MouseMove(2e9, 2e9);
    canvas.MouseUp();
    EXPECT_EQ(canvas.SelX2, 300);
    canvas.MouseDown(20, 20);
    canvas.MouseMove(40, 40);
    EXPECT_THROW(canvas.MouseMove(2147483600.0, 0), OverflowError);
    EXPECT_THROW(canvas.MouseMove(std::numeric_limits<double>::infinity(), 0), OverflowError);
    canvas.DropSelection();
    EXPECT_EQ(canvas.picQuestion.image(), before);

    EXPECT_THROW(canvas.Paste(plain({200 + 32768, 1})), OverflowError);
    EXPECT_EQ(canvas.picQuestion.image(), before);
    EXPECT_TRUE(canvas.Paste(plain({200 + 32767, 1})));
    EXPECT_EQ(canvas.HScroll().maximum, 32767);
}

TEST_F(Canvas, TextIsBlackOnWhatIsThereFromTheCornerOn)
{
    select(canvas, {100, 80, 30, 10});
    canvas.font = {QStringLiteral("Times New Roman"), 20, true};
    const QImage before = canvas.picQuestion.picture();
    canvas.StampText(QStringLiteral("MM"));
    EXPECT_FALSE(canvas.SelectionShown || canvas.controlsShown());
    EXPECT_EQ(canvas.picQuestion.image(), canvas.picQuestion.picture());
    EXPECT_EQ(canvas.picSaved.picture(), canvas.picQuestion.picture());
    QRect touched;
    bool black = false;
    for (int y = 0; y < before.height(); ++y) {
        for (int x = 0; x < before.width(); ++x) {
            const QRgb now = canvas.picQuestion.picture().pixel(x, y);
            if (now != before.pixel(x, y)) {
                touched |= QRect(x, y, 1, 1);
                black |= now == 0xFF000000;
                // Darker by the same share in every colour: no coloured edges.
                EXPECT_NEAR(qBlue(now) * 0x30, qRed(now) * 0xC0, 0xC0);
            }
        }
    }
    EXPECT_TRUE(black);
    EXPECT_TRUE(QRect(98, 80, 70, 34).contains(touched)) << touched.top() << ' ' << touched.left();
    EXPECT_GT(touched.width(), 35);
}

TEST(CanvasFonts, EveryOfferedFaceHasASubstituteOfItsKind)
{
    for (const char* name : {"Arial", "Calibri", "Courier", "Courier New", "MS Sans Serif",
                             "Times New Roman", "Verdana"}) {
        const QFont font = stampFont({QLatin1String(name), 12});
        // The system may add the foundry in brackets.
        const QString found = QFontInfo(font).family().section(QStringLiteral(" ["), 0, 0);
        EXPECT_TRUE(faceAndSubstitutes(QLatin1String(name)).contains(found))
            << name << " came out as " << found.toStdString();
        EXPECT_EQ(font.pixelSize(), 16);
        EXPECT_EQ(QFontInfo(font).fixedPitch(), QByteArray(name).startsWith("Courier")) << name;
    }
}

TEST(ClipboardPicture, ComesInAnyFormAndNeverHalf)
{
    const QImage picture = testPicture({90, 70}, 3);
    for (const char* format : {"png", "bmp", "jpeg"}) {
        const QByteArray bytes = encoded(picture, format);
        QMimeData data;
        const QString mime = QStringLiteral("image/") + QLatin1String(format);
        data.setData(mime, bytes);
        EXPECT_TRUE(mayHoldPicture(data));
        EXPECT_EQ(pictureFrom(data).size(), QSize(90, 70)) << format;
        data.setData(mime, bytes.first(bytes.size() * 2 / 3));
        EXPECT_TRUE(pictureFrom(data).isNull()) << "half a " << format;
    }
    QImage sharp = picture;
    sharp.setDevicePixelRatio(2);
    QMimeData decoded;
    decoded.setImageData(sharp);
    EXPECT_EQ(pictureFrom(decoded).devicePixelRatio(), 1);
    EXPECT_EQ(pictureFrom(decoded).convertToFormat(picture.format()), picture);

    QTemporaryDir folder;
    const QString path = folder.filePath(QStringLiteral("copied ü.png"));
    picture.save(path);
    QMimeData files;
    files.setUrls({QUrl::fromLocalFile(folder.filePath(QStringLiteral("gone.png"))),
                   QUrl(QStringLiteral("https://example.org/a.png")), QUrl::fromLocalFile(path)});
    EXPECT_EQ(pictureFrom(files).convertToFormat(picture.format()), picture);

    QMimeData text;
    text.setText(QStringLiteral("no picture"));
    EXPECT_FALSE(mayHoldPicture(text));
    EXPECT_TRUE(pictureFrom(text).isNull());
    QMimeData empty;
    empty.setData(QStringLiteral("image/png"), {});
    EXPECT_TRUE(pictureFrom(empty).isNull());
}

TEST(ClipboardPicture, ThatIsHugeIsRefusedUnread)
{
    QMimeData data;
    data.setData(QStringLiteral("image/x-portable-pixmap"), "P6 30000 30000 255\n");
    EXPECT_THROW(static_cast<void>(pictureFrom(data)), Error);
}

TEST(PictureSurface, LaysTransparentPicturesOnWhite)
{
    QImage clear(4, 4, QImage::Format_ARGB32);
    clear.fill(0x00000000);
    clear.setPixel(1, 1, 0xFF112233);
    clear.setDevicePixelRatio(2);
    PictureSurface surface({10, 10});
    surface.setPicture(clear);
    EXPECT_EQ(surface.image().size(), QSize(4, 4));
    EXPECT_EQ(surface.image().pixel(0, 0), QRgb(0xFFFFFFFF));
    EXPECT_EQ(surface.image().pixel(1, 1), QRgb(0xFF112233));
}

} // namespace varnholt::test
