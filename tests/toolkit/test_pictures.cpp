#include "pictures/picture_loader.h"
#include "support/test_library.h"
#include "toolkit/PictureView.h"

#include <QBitmap>
#include <QFile>
#include <QRegion>

#include <gtest/gtest.h>

#include <sys/stat.h>

namespace varnholt::test {
namespace {

using namespace Qt::Literals::StringLiterals;

/// What of a view a picture covers that is red all over.
QRect covered(PictureView& view)
{
    return QRegion(QBitmap::fromImage(view.grab().toImage().createMaskFromColor(qRgb(255, 0, 0),
                                                                                Qt::MaskOutColor)))
        .boundingRect();
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
        EXPECT_EQ(covered(view), expected);
    }
    view.setPicture({});
    EXPECT_TRUE(covered(view).isEmpty());
}

class PictureLoaderTest : public testing::Test
{
protected:
    [[nodiscard]] QString path(int n) const { return folder.filePath(u"%1.bmp"_s.arg(n)); }

    QTemporaryDir folder;
    PictureLoader loader;
};

TEST_F(PictureLoaderTest, WhatWasDecodedAheadIsUsedOnlyWhileTheFileIsTheSame)
{
    for (int n = 1; n <= 6; ++n) {
        testPicture({30, 20}, n).save(path(n));
        loader.prefetch(path(n));
    }
    for (int n = 1; n <= 6; ++n) {
        EXPECT_EQ(loader.load(path(n)), testPicture({30, 20}, n));
    }
    // As long as before, but written at another time.
    testPicture({30, 20}, 7).save(path(6));
    QFile file(path(6));
    ASSERT_TRUE(file.open(QIODevice::ReadWrite));
    file.setFileTime(QDateTime::currentDateTime().addDays(-1), QFileDevice::FileModificationTime);
    file.close();
    EXPECT_EQ(loader.load(path(6)), testPicture({30, 20}, 7));
    QFile::remove(path(5));
    EXPECT_TRUE(loader.load(path(5)).isNull());
}

TEST_F(PictureLoaderTest, OddFilesAreRefusedOrShrunkAndNeverWaitedFor)
{
    ASSERT_EQ(mkfifo(path(1).toLocal8Bit().constData(), 0600), 0);
    for (const int n : {1, 2}) { // a pipe, nothing
        loader.prefetch(path(n));
        EXPECT_TRUE(loader.load(path(n)).isNull());
    }
    QFile file(path(3));
    QImage(8192, 80, QImage::Format_Grayscale8).save(path(3));
    EXPECT_EQ(loader.load(path(3)).size(), QSize(4096, 40));
    testPicture({800, 600}).save(path(3), "JPG");
    EXPECT_EQ(loader.load(path(3)).size(), QSize(800, 600));
    // Half a picture is none: no slide could be made of it.
    for (const qint64 size : {file.size() / 2, qint64(10), qint64(0)}) {
        file.resize(size);
        EXPECT_TRUE(loader.load(path(3)).isNull()) << size;
    }
}

} // namespace
} // namespace varnholt::test
