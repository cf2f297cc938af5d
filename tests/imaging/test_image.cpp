#include "imaging/cImage.h"
#include "imaging/test_pictures.h"

#include <gtest/gtest.h>

#include <cmath>

namespace varnholt::test {
namespace {

cImage imageOf(const DeviceContext& context)
{
    cImage image;
    EXPECT_TRUE(image.CopyHDC(&context, context.Width(), context.Height()));
    return image;
}

Bgr at(const cImage& image, int x, int y)
{
    return colourAt(image.hDC()->view(), x, y);
}

class ImageTest : public testing::TestWithParam<int>
{};

INSTANTIATE_TEST_SUITE_P(Bits, ImageTest, testing::Values(1, 4, 8, 24));

TEST_P(ImageTest, CreateMakesABlackBitmapWithPaddedRowsAndAGreyTable)
{
    const auto bits = static_cast<std::int16_t>(GetParam());
    cImage image;
    for (const int w : {1, 2, 5, 7, 8, 9, 31, 32, 33, 64, 65, 1000}) {
        ASSERT_TRUE(image.Create(w, 3, bits));
        const int expected = bits == 1   ? ((w - 1) / 8 + 4) & ~3
                             : bits == 4 ? ((w - 1) / 2 + 4) & ~3
                             : bits == 8 ? (w + 3) & ~3
                                         : (3 * w + 3) & ~3;
        EXPECT_EQ(image.BytesPerScanLine(), expected);
        EXPECT_EQ(std::tuple(image.Width(), image.Height(), image.BitCount()),
                  std::tuple(w, 3, bits));
        EXPECT_EQ(std::count(image.DIBitsPtr(), image.DIBitsPtr() + 3 * expected, 0), 3 * expected);
    }
    Bgr table[256];
    const int entries = bits == 24 ? 0 : 1 << bits;
    EXPECT_EQ(image.hDC()->GetDIBColorTable(0, 256, table), entries);
    for (int i = 0; i < entries; ++i) {
        const auto grey = static_cast<std::uint8_t>(i * 255.0 / (entries - 1) + 0.5);
        EXPECT_EQ(table[i], (Bgr{grey, grey, grey, 0}));
    }
}

TEST(ImageCreate, FailsCleanlyWhereThereCanBeNoBitmap)
{
    for (const auto& [w, h, bits] :
         {std::tuple(0, 1, 24), std::tuple(1, 0, 24), std::tuple(-1, 5, 24), std::tuple(5, -1, 8),
          std::tuple(1, 1, 0), std::tuple(1, 1, 16), std::tuple(1, 1, 32), std::tuple(1, 1, 2),
          std::tuple(INT32_MAX, INT32_MAX, 24), std::tuple(INT32_MAX, 1, 24),
          std::tuple(65536, 65536, 8), std::tuple(INT32_MAX, 9, 1)}) {
        cImage image;
        ASSERT_TRUE(image.Create(2, 2, 24));
        EXPECT_FALSE(image.Create(w, h, static_cast<std::int16_t>(bits))) << w << "x" << h;
        EXPECT_EQ(image.hDC(), nullptr);
        EXPECT_EQ(image.Width(), 0);
    }
}

TEST_P(ImageTest, MirroringAndTurningMoveEveryPixel)
{
    for (const auto& [w, h] :
         {std::pair(1, 1), std::pair(5, 3), std::pair(33, 8), std::pair(4, 17)}) {
        const cImage image = imageOf(makeNoise(w, h, GetParam()));
        const auto expect = [](const std::unique_ptr<cImage>& result, int width, int height,
                               const ColourOf& expected) {
            ASSERT_NE(result, nullptr);
            EXPECT_EQ(result->BitCount(), GetParam());
            EXPECT_EQ(difference(result->hDC()->view(), width, height, expected), "");
        };
        const auto right = [w = w](int x) { return w - 1 - x; };
        const auto bottom = [h = h](int y) { return h - 1 - y; };
        // A turn is against the clock, as the corners say: top left to bottom left.
        const ColourOf quarter = [&](int x, int y) { return at(image, right(y), x); };
        const ColourOf threeQuarters = [&](int x, int y) { return at(image, y, bottom(x)); };
        expect(image.Mirror(true), w, h, [&](int x, int y) { return at(image, x, bottom(y)); });
        expect(image.Mirror(false), w, h, [&](int x, int y) { return at(image, right(x), y); });
        expect(image.Rotate(90), h, w, quarter);
        expect(image.Rotate(450), h, w, quarter);
        expect(image.Rotate(180), w, h,
               [&](int x, int y) { return at(image, right(x), bottom(y)); });
        expect(image.Rotate(270), h, w, threeQuarters);
        expect(image.Rotate(-90), h, w, threeQuarters);
        for (const int angle : {0, 360, 45, -1, 91, INT32_MIN})
            EXPECT_EQ(image.Rotate(angle), nullptr) << angle;
    }
}

TEST(ImageResample, ShrinkingGivesExactAreaMeans)
{
    constexpr int kWidth = 37;
    constexpr int kHeight = 23;
    const cImage image = imageOf(makePicture(Kind::Noise, kWidth, kHeight));
    for (const auto& [w, h] : {std::pair(37, 11), std::pair(18, 23), std::pair(19, 12),
                               std::pair(1, 1), std::pair(36, 22), std::pair(5, 3)}) {
        const auto small = image.Resample(w, h);
        ASSERT_EQ(std::pair(small->Width(), small->Height()), std::pair(w, h));
        for (int i = 0; i < w * h; ++i) {
            for (const auto channel : {&Bgr::blue, &Bgr::green, &Bgr::red}) {
                // In cells of 1/w by 1/h source pixel a destination pixel covers 37 by 23.
                int sum = kWidth * kHeight / 2;
                for (int cell = 0; cell < kWidth * kHeight; ++cell)
                    sum += at(image, (i % w * kWidth + cell % kWidth) / w,
                              (i / w * kHeight + cell / kWidth) / h).*
                           channel;
                ASSERT_EQ(at(*small, i % w, i / w).*channel, sum / (kWidth * kHeight)) << i;
            }
        }
    }
}

TEST(ImageResample, GrowingInterpolatesBetweenPixelCentres)
{
    const DeviceContext source = makePicture(Kind::Noise, 6, 5);
    DeviceContext window;
    ASSERT_TRUE(window.Create(20, 11, 24));
    window.SetStretchBltMode(Halftone);
    // The whole of a small result, and a part of one whose sums need more than 32 bits.
    for (const auto& [w, h, left, top] :
         {std::tuple(20, 11, 0, 0), std::tuple(300000, 4000, 100000, 1900)}) {
        ASSERT_TRUE(window.StretchBlt(-left, -top, w, h, source, 0, 0, 6, 5));
        for (int i = 0; i < 20 * 11; ++i) {
            const double px = std::clamp((left + i % 20 + 0.5) * 6 / w - 0.5, 0.0, 5.0);
            const double py = std::clamp((top + i / 20 + 0.5) * 5 / h - 0.5, 0.0, 4.0);
            const int x0 = static_cast<int>(px);
            const int y0 = static_cast<int>(py);
            double expected = 0;
            for (const auto& [x, y] : {std::pair(x0, y0), std::pair(x0 + 1, y0),
                                       std::pair(x0, y0 + 1), std::pair(x0 + 1, y0 + 1)})
                expected += (1 - std::abs(px - x)) * (1 - std::abs(py - y)) *
                            colourAt(source.view(), std::min(x, 5), std::min(y, 4)).green;
            ASSERT_NEAR(colourAt(window.view(), i % 20, i / 20).green, expected, 0.5001) << i;
        }
    }
}

TEST_P(ImageTest, ResamplingKeepsTheFormatAndAtEqualSizeThePixels)
{
    const cImage image = imageOf(makeNoise(13, 9, GetParam()));
    const auto same = image.Resample(13, 9);
    EXPECT_EQ(same->BitCount(), GetParam());
    EXPECT_EQ(difference(same->hDC()->view(), 13, 9, [&](int x, int y) { return at(image, x, y); }),
              "");
    const auto large = image.Resample(26, 18);
    EXPECT_EQ(large->BitCount(), GetParam());
    EXPECT_EQ(at(*large, 0, 0), at(image, 0, 0));
    EXPECT_EQ(image.Resample(0, 5)->hDC(), nullptr);
}

TEST(ImageCopyStdPicture, TakesEveryFormatAPictureCanHave)
{
    Picture high{3,
                 2,
                 16,
                 {},
                 {0x1F, 0x00, 0xE0, 0x03, 0x00, 0x7C, 0, 0, //
                  0xFF, 0x7F, 0x00, 0x00, 0x10, 0x42, 0, 0}};
    constexpr Bgr kColours[2][3] = {{{255, 255, 255}, {}, {132, 132, 132}},
                                    {{255, 0, 0}, {0, 255, 0}, {0, 0, 255}}};
    cImage image;
    ASSERT_TRUE(image.CopyStdPicture(high));
    EXPECT_EQ(image.BitCount(), 24);
    EXPECT_EQ(difference(image.hDC()->view(), 3, 2, [&](int x, int y) { return kColours[y][x]; }),
              "");
    high.pixels.pop_back();
    EXPECT_FALSE(image.CopyStdPicture(high)) << "fewer pixels than its size says";
    EXPECT_EQ(image.hDC(), nullptr);

    const Picture deep{1, 1, 32, {}, {10, 20, 30, 99}};
    EXPECT_FALSE(image.CopyStdPicture(deep)) << "32 bits are not supported";
    ASSERT_TRUE(image.CopyStdPicture(deep, 24)) << "but can be read";
    EXPECT_EQ(at(image, 0, 0), (Bgr{10, 20, 30}));

    Picture indexed{5, 1, 4, {{1, 2, 3}, {40, 50, 60}}, {0x01, 0x1F, 0x00, 0}};
    ASSERT_TRUE(image.CopyStdPicture(indexed));
    EXPECT_EQ(image.BitCount(), 4);
    EXPECT_EQ(at(image, 0, 0), (Bgr{1, 2, 3}));
    EXPECT_EQ(at(image, 2, 0), (Bgr{40, 50, 60}));
    EXPECT_EQ(at(image, 3, 0), (Bgr{})) << "entries left out are black";
    ASSERT_TRUE(image.CopyStdPicture(indexed, 8));
    EXPECT_EQ(at(image, 2, 0), (Bgr{50, 50, 50})) << "matched to the grey table";
    indexed.width = INT32_MAX;
    EXPECT_FALSE(image.CopyStdPicture(indexed));
}

TEST_P(ImageTest, CopyingFromContextsTakesTheFormatTheTableNeeds)
{
    const DeviceContext source = makeNoise(21, 10, GetParam());
    const BitmapView from = source.view();
    cImage image;
    ASSERT_TRUE(image.CopyHDC(&source, 10, 8, 0, 15, -2));
    EXPECT_EQ(image.BitCount(), GetParam());
    const auto expected = [&](int x, int y) {
        if (x + 15 < 21 && y >= 2)
            return colourAt(from, x + 15, y - 2);
        return GetParam() == 24 ? Bgr{} : from.table[0];
    };
    EXPECT_EQ(difference(image.hDC()->view(), 10, 8, expected), "");
    // From its own context, and to another format.
    ASSERT_TRUE(image.CopyHDC(image.hDC(), 6, 6, 24, 0, 2));
    EXPECT_EQ(image.BitCount(), 24);
    EXPECT_EQ(at(image, 0, 0), colourAt(from, 15, 0));
    EXPECT_FALSE(image.CopyHDC(&source, -1, 6));
}

TEST(ImageTables, AreCopiedAsFarAsBothReach)
{
    const DeviceContext sixteen = makeNoise(2, 2, 4);
    const DeviceContext full = makeNoise(2, 2, 8);
    cImage image;
    EXPECT_FALSE(image.CopyPalletHDC(&full)) << "empty";
    ASSERT_TRUE(image.Create(2, 2, 4));
    const DeviceContext deep = makeNoise(2, 2, 24);
    EXPECT_FALSE(image.CopyPalletHDC(&deep)) << "nothing to copy";
    EXPECT_TRUE(image.CopyPalletHDC(&full)) << "the first 16 entries";
    EXPECT_EQ(image.hDC()->view().table[15], full.view().table[15]);
    ASSERT_TRUE(image.Create(2, 2, 8));
    EXPECT_TRUE(image.CopyPalletHDC(&sixteen));
    EXPECT_EQ(image.hDC()->view().table[15], sixteen.view().table[15]);
    EXPECT_EQ(image.hDC()->view().table[16], (Bgr{16, 16, 16}));
}

} // namespace
} // namespace varnholt::test
