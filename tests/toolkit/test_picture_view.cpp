#include "support/test_library.h"
#include "toolkit/PictureView.h"
#include "toolkit/picture_loader.h"

#include <QFile>
#include <QTemporaryDir>

#include <gtest/gtest.h>

#include <sys/stat.h>

namespace varnholt {
namespace {

/// The part of the view that the all-red picture covers.
QRect covered(const QImage& grabbed)
{
    QRect found;
    for (int y = 0; y < grabbed.height(); ++y) {
        for (int x = 0; x < grabbed.width(); ++x) {
            if (grabbed.pixelColor(x, y) == QColor(Qt::red)) {
                found |= QRect(x, y, 1, 1);
            }
        }
    }
    return found;
}

TEST(PictureViewTest, FillsTheViewInThePicturesOwnProportions)
{
    PictureView view;
    view.setFrameStyle(QFrame::NoFrame);
    for (const auto& [picture, room, expected] :
         {std::tuple(QSize(40, 20), QSize(300, 300), QRect(0, 75, 300, 150)),
          {QSize(1000, 2000), QSize(300, 200), QRect(100, 0, 100, 200)},
          {QSize(10'000, 1), QSize(50, 50), QRect(0, 24, 50, 1)}}) {
        QImage red(picture, QImage::Format_RGB32);
        red.fill(Qt::red);
        view.setPicture(red);
        view.resize(room);
        const QImage grabbed = view.grab().toImage();
        const qreal ratio = grabbed.devicePixelRatio();
        const QRect found = covered(grabbed);
        EXPECT_NEAR(found.x(), expected.x() * ratio, 1);
        EXPECT_NEAR(found.y(), expected.y() * ratio, 1);
        EXPECT_NEAR(found.width(), expected.width() * ratio, 1);
        EXPECT_NEAR(found.height(), expected.height() * ratio, 1);
    }
    view.setPicture({});
    EXPECT_TRUE(covered(view.grab().toImage()).isEmpty());
}

TEST(PictureLoaderTest, WhatWasDecodedAheadIsUsedOnlyWhileTheFileIsTheSame)
{
    const QTemporaryDir folder;
    const auto path = [&](int n) { return folder.filePath(QStringLiteral("%1.bmp").arg(n)); };
    PictureLoader loader;
    for (int n = 1; n <= 6; ++n) {
        test::testPicture({30, 20}, n).save(path(n));
        loader.prefetch(path(n));
        loader.prefetch(path(n));
    }
    for (int n = 1; n <= 6; ++n) {
        EXPECT_EQ(loader.load(path(n)), test::testPicture({30, 20}, n));
    }
    // As long as before, but written at another time.
    test::testPicture({30, 20}, 7).save(path(6));
    QFile file(path(6));
    ASSERT_TRUE(file.open(QIODevice::ReadWrite));
    file.setFileTime(QDateTime::currentDateTime().addDays(-1), QFileDevice::FileModificationTime);
    file.close();
    EXPECT_EQ(loader.load(path(6)), test::testPicture({30, 20}, 7));
    QFile::remove(path(5));
    EXPECT_TRUE(loader.load(path(5)).isNull());
}

TEST(PictureLoaderTest, OddFilesAreRefusedOrShrunkAndNeverWaitedFor)
{
    const QTemporaryDir folder;
    const QString path = folder.filePath(QStringLiteral("1.jpg"));
    PictureLoader loader;
    loader.prefetch(path);
    EXPECT_TRUE(loader.load(path).isNull());
    ASSERT_EQ(mkfifo(path.toLocal8Bit().constData(), 0600), 0);
    loader.prefetch(path);
    EXPECT_TRUE(loader.load(path).isNull());
    QFile::remove(path);

    QImage(8192, 80, QImage::Format_Grayscale8).save(path);
    EXPECT_EQ(loader.load(path).size(), QSize(4096, 40));
    test::testPicture({800, 600}).save(path, "JPG");
    QFile file(path);
    file.resize(file.size() / 2); // what there is of it is better than nothing
    EXPECT_EQ(loader.load(path).size(), QSize(800, 600));
    file.resize(10);
    EXPECT_TRUE(loader.load(path).isNull());
    file.resize(0);
    EXPECT_TRUE(loader.load(path).isNull());
}

} // namespace
} // namespace varnholt
