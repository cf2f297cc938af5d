#include "pictures/picture_loader.h"
#include "support/test_files.h"
#include "support/test_library.h"
#include "toolkit/PictureView.h"

#include <QBitmap>
#include <QBuffer>
#include <QFile>
#include <QImageWriter>
#include <QRegion>
#include <QTest>

#include <gtest/gtest.h>

#include <optional>
#include <random>
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
    void write(int n, const QByteArray& bytes) const { writeFile(path(n), bytes); }
    LoadedPicture load(const QString& file)
    {
        std::optional<LoadedPicture> came;
        loader.load(file, [&](const LoadedPicture& loaded) { came = loaded; });
        EXPECT_TRUE(QTest::qWaitFor([&] { return came.has_value(); }, 20'000));
        return came.value_or(LoadedPicture{});
    }

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
        EXPECT_EQ(load(path(n)).picture, testPicture({30, 20}, n));
    }
    // As long as before, but written at another time.
    testPicture({30, 20}, 7).save(path(6));
    QFile file(path(6));
    ASSERT_TRUE(file.open(QIODevice::ReadWrite));
    file.setFileTime(QDateTime::currentDateTime().addDays(-1), QFileDevice::FileModificationTime);
    file.close();
    EXPECT_EQ(load(path(6)).picture, testPicture({30, 20}, 7));
    QFile::remove(path(5));
    EXPECT_EQ(load(path(5)).fault, PictureFault::Missing);
}

TEST_F(PictureLoaderTest, OddFilesAreRefusedOrShrunkAndNeverWaitedFor)
{
#ifndef Q_OS_WIN
    ASSERT_EQ(mkfifo(path(1).toLocal8Bit().constData(), 0600), 0);
    loader.prefetch(path(1));
    EXPECT_EQ(load(path(1)).fault, PictureFault::Unreadable);
#endif
    EXPECT_EQ(load(path(2)).fault, PictureFault::Missing);
    QImage(8192, 80, QImage::Format_Grayscale8).save(path(3));
    EXPECT_EQ(load(path(3)).picture.size(), QSize(4096, 40));
    write(4, {});
    EXPECT_EQ(load(path(4)).fault, PictureFault::Damaged);
}

TEST_F(PictureLoaderTest, FilesThatClaimMoreThanTheyHoldAreRefusedUndecoded)
{
    write(1, QByteArray::fromHex("474946383961204E4C1D800000000000FFFFFF2C00000000204E4C1D000202"
                                 "4C01003B"));
    QBuffer buffer;
    QImageWriter writer(&buffer, "jpeg");
    writer.setProgressiveScanWrite(true);
    ASSERT_TRUE(writer.write(testPicture({640, 480})));
    QByteArray jpeg = buffer.data();
    write(2, jpeg);
    EXPECT_EQ(load(path(2)).picture.size(), QSize(640, 480));
    // The last scan over and over.
    const QByteArray scan = jpeg.mid(jpeg.lastIndexOf("\xFF\xDA")).chopped(2);
    write(3, jpeg.insert(jpeg.size() - 2, scan.repeated(5000)));
    for (const int n : {1, 3}) {
        EXPECT_THROW(static_cast<void>(checkPicture(path(n))), PictureError) << n;
        EXPECT_EQ(load(path(n)).fault, PictureFault::Damaged) << n;
    }
}

TEST_F(PictureLoaderTest, OnlyThePictureAskedForLastComes)
{
    testPicture({7000, 6000}).save(path(1));
    testPicture({30, 20}).save(path(2));
    int slow = 0;
    EXPECT_FALSE(loader.load(path(1), [&](const LoadedPicture&) { ++slow; }));
    EXPECT_EQ(load(path(2)).picture.size(), QSize(30, 20));
    EXPECT_EQ(load(path(1)).picture.size(), QSize(4096, 3510));
    EXPECT_EQ(slow, 0);
    // What is fetched ahead does not push out what is wanted.
    PictureLoader other;
    PictureFault fault = PictureFault::Missing;
    EXPECT_FALSE(other.load(path(1), [&](const LoadedPicture& loaded) { fault = loaded.fault; }));
    for (int n = 2; n <= 7; ++n) {
        testPicture({30, 20}, n).save(path(n));
        other.prefetch(path(n));
    }
    EXPECT_TRUE(QTest::qWaitFor([&] { return fault == PictureFault::None; }, 20'000));
    const std::atomic<bool> stop = true;
    EXPECT_THROW(static_cast<void>(decodePicture(checkPicture(path(1)), 4096, path(1), &stop)),
                 PictureError);
}

/// Slides and screen must not differ on a file, however it is damaged.
TEST_F(PictureLoaderTest, DamagedFilesGetTheSameVerdictForSlidesAndScreen)
{
    std::mt19937 random(5);
    int refused = 0;
    int file = 100;
    for (const auto& [format, progressive] :
         {std::pair("jpeg", false), {"jpeg", true}, {"png", false}, {"bmp", false}}) {
        QBuffer buffer;
        QImageWriter writer(&buffer, format);
        writer.setProgressiveScanWrite(progressive);
        ASSERT_TRUE(writer.write(testPicture({90, 70})));
        for (int i = 0; i < 200; ++i) {
            QByteArray bytes = buffer.data();
            for (auto hits = 1 + random() % 6; hits > 0; --hits) {
                const auto from = qsizetype(random() % quint64(bytes.size()));
                bytes[i % 2 ? from : from % 700 % bytes.size()] =
                    random() % 3 ? char(random()) : char(0xFF);
            }
            // The last one is half a picture, which is none.
            write(++file, i < 199 ? bytes : buffer.data().chopped(buffer.size() / 2));
            if (load(path(file)).fault == PictureFault::None) {
                EXPECT_NO_THROW(static_cast<void>(readPictureInfo(path(file))))
                    << format << ' ' << i;
            } else {
                EXPECT_THROW(static_cast<void>(readPictureInfo(path(file))), PictureError)
                    << format << ' ' << i;
                ++refused;
            }
        }
    }
    EXPECT_GT(refused, 100);
    EXPECT_LT(refused, 700);
}

} // namespace
} // namespace varnholt::test
