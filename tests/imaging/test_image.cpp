#include "imaging/cImage.h"
#include "imaging/test_pictures.h"

#include <gtest/gtest.h>

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
    for (const int w : {1, 2, 5, 7, 8, 9, 31, 32, 33, 64, 65, 1000}) {
        cImage image;
        ASSERT_TRUE(image.Create(w, 3, bits));
        const int expected = bits == 1   ? ((w - 1) / 8 + 4) & ~3
                             : bits == 4 ? ((w - 1) / 2 + 4) & ~3
                             : bits == 8 ? (w + 3) & ~3
                                         : (3 * w + 3) & ~3;
        EXPECT_EQ(image.BytesPerScanLine(), expected);
        EXPECT_EQ(std::tuple(image.Width(), image.Height(), image.BitCount()),
                  std::tuple(w, 3, bits));
        EXPECT_TRUE(std::all_of(image.DIBitsPtr(), image.DIBitsPtr() + 3 * expected,
                                [](std::uint8_t b) { return b == 0; }));
    }
    cImage image;
    ASSERT_TRUE(image.Create(1, 1, bits));
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
        const cImage image = imageOf(makeIndexed(w, h, GetParam()));
        const auto upsideDown = image.Mirror(true);
        const auto leftRight = image.Mirror(false);
        const auto quarter = image.Rotate(90);
        const auto half = image.Rotate(180);
        const auto threeQuarters = image.Rotate(270);
        ASSERT_EQ(std::pair(quarter->Width(), quarter->Height()), std::pair(h, w));
        ASSERT_EQ(std::pair(threeQuarters->Width(), threeQuarters->Height()), std::pair(h, w));
        for (int y = 0; y < h; ++y) {
            for (int x = 0; x < w; ++x) {
                const Bgr pixel = at(image, x, y);
                ASSERT_EQ(at(*upsideDown, x, h - 1 - y), pixel);
                ASSERT_EQ(at(*leftRight, w - 1 - x, y), pixel);
                // As the corners say: top left to bottom left, a turn against the clock.
                ASSERT_EQ(at(*quarter, y, w - 1 - x), pixel);
                ASSERT_EQ(at(*half, w - 1 - x, h - 1 - y), pixel);
                ASSERT_EQ(at(*threeQuarters, h - 1 - y, x), pixel);
            }
        }
        EXPECT_EQ(at(*image.Rotate(-90), 0, 0), at(*threeQuarters, 0, 0));
        EXPECT_EQ(at(*image.Rotate(450), 0, w - 1), at(*quarter, 0, w - 1));
    }
    const cImage image = imageOf(makeIndexed(4, 4, GetParam()));
    for (const int angle : {0, 360, 45, -1, 91, INT32_MIN})
        EXPECT_EQ(image.Rotate(angle), nullptr) << angle;
}

/// The mean colour of the area a destination pixel covers, in exact fractions.
int areaMean(const cImage& image, int x, int y, int w, int h, std::uint8_t Bgr::*channel)
{
    using Wide = std::int64_t;
    const Wide sw = image.Width();
    const Wide sh = image.Height();
    Wide sum = 0;
    for (Wide py = 0; py < sh; ++py) {
        const Wide down = std::min((y + 1) * sh, (py + 1) * h) - std::max(y * sh, py * h);
        for (Wide px = 0; px < sw && down > 0; ++px) {
            const Wide across = std::min((x + 1) * sw, (px + 1) * w) - std::max(x * sw, px * w);
            if (across > 0)
                sum += across * down *
                       (at(image, static_cast<int>(px), static_cast<int>(py)).*channel);
        }
    }
    return static_cast<int>((2 * sum + sw * sh) / (2 * sw * sh));
}

TEST(ImageResample, ShrinkingGivesExactAreaMeans)
{
    const cImage image = imageOf(makePicture(Kind::Noise, 37, 23));
    for (const auto& [w, h] : {std::pair(37, 11), std::pair(18, 23), std::pair(19, 12),
                               std::pair(1, 1), std::pair(36, 22), std::pair(5, 3)}) {
        const auto small = image.Resample(w, h);
        for (int y = 0; y < h; ++y)
            for (int x = 0; x < w; ++x)
                for (const auto channel : {&Bgr::blue, &Bgr::green, &Bgr::red})
                    ASSERT_EQ(at(*small, x, y).*channel, areaMean(image, x, y, w, h, channel))
                        << w << "x" << h << " at " << x << ", " << y;
    }
}

TEST(ImageResample, GrowingInterpolatesBetweenPixelCentres)
{
    const cImage image = imageOf(makePicture(Kind::Noise, 6, 5));
    const auto large = image.Resample(20, 11);
    const auto position = [](int i, int from, int to) {
        return std::clamp((i + 0.5) * from / to - 0.5, 0.0, from - 1.0);
    };
    for (int y = 0; y < 11; ++y) {
        for (int x = 0; x < 20; ++x) {
            const double px = position(x, 6, 20);
            const double py = position(y, 5, 11);
            const int x0 = static_cast<int>(px);
            const int y0 = static_cast<int>(py);
            const auto row = [&](int line) {
                return at(image, x0, line).green * (x0 + 1 - px) +
                       at(image, std::min(x0 + 1, 5), line).green * (px - x0);
            };
            const double expected = row(y0) * (y0 + 1 - py) + row(std::min(y0 + 1, 4)) * (py - y0);
            ASSERT_NEAR(at(*large, x, y).green, expected, 0.5001) << x << ", " << y;
        }
    }
}

TEST_P(ImageTest, ResamplingKeepsFormatColoursAndEqualSizes)
{
    const cImage image = imageOf(makeIndexed(13, 9, GetParam()));
    const auto same = image.Resample(13, 9);
    ASSERT_EQ(same->BitCount(), GetParam());
    EXPECT_TRUE(std::equal(same->DIBitsPtr(), same->DIBitsPtr() + same->BytesPerScanLine() * 9,
                           image.hDC()->DIBits()) ||
                GetParam() != 8);
    for (int y = 0; y < 9; ++y)
        for (int x = 0; x < 13; ++x)
            ASSERT_EQ(at(*same, x, y), at(image, x, y));
    const auto twice = image.Resample(26, 18)->Resample(13, 9);
    EXPECT_EQ(twice->BitCount(), GetParam());
    EXPECT_EQ(image.Resample(0, 5)->hDC(), nullptr);
}

TEST_P(ImageTest, GreyscaleTakesTheNearestGrey)
{
    const cImage image = imageOf(makeIndexed(40, 20, GetParam()));
    const auto grey = image.Greyscale();
    ASSERT_EQ(grey->BitCount(), 8);
    const auto distance = [](const Bgr& c, int g) {
        return (c.blue - g) * (c.blue - g) + (c.green - g) * (c.green - g) +
               (c.red - g) * (c.red - g);
    };
    for (int y = 0; y < 20; ++y) {
        for (int x = 0; x < 40; ++x) {
            const Bgr pixel = at(image, x, y);
            const int found = at(*grey, x, y).green;
            for (int g = 0; g < 256; ++g)
                ASSERT_LE(distance(pixel, found), distance(pixel, g));
        }
    }
}

TEST(ImageCopyStdPicture, TakesEveryFormatAPictureCanHave)
{
    Picture picture{3,
                    2,
                    16,
                    {},
                    {0x1F, 0x00, 0xE0, 0x03, 0x00, 0x7C, 0, 0, //
                     0xFF, 0x7F, 0x00, 0x00, 0x10, 0x42, 0, 0}};
    cImage image;
    ASSERT_TRUE(image.CopyStdPicture(picture));
    EXPECT_EQ(image.BitCount(), 24);
    EXPECT_EQ(at(image, 0, 1), (Bgr{255, 0, 0}));
    EXPECT_EQ(at(image, 1, 1), (Bgr{0, 255, 0}));
    EXPECT_EQ(at(image, 2, 1), (Bgr{0, 0, 255}));
    EXPECT_EQ(at(image, 0, 0), (Bgr{255, 255, 255}));
    EXPECT_EQ(at(image, 2, 0), (Bgr{132, 132, 132}));

    picture.pixels.pop_back();
    EXPECT_FALSE(image.CopyStdPicture(picture)) << "fewer pixels than its size says";
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
    const DeviceContext source = makeIndexed(21, 10, GetParam());
    cImage image;
    ASSERT_TRUE(image.CopyHDC(&source, 10, 8, 0, 15, -2));
    EXPECT_EQ(image.BitCount(), GetParam());
    for (int y = 0; y < 8; ++y) {
        for (int x = 0; x < 10; ++x) {
            const bool inside = x + 15 < 21 && y >= 2;
            const Bgr expected = inside             ? colourAt(source.view(), x + 15, y - 2)
                                 : GetParam() == 24 ? Bgr{}
                                                    : source.view().table[0];
            ASSERT_EQ(at(image, x, y), expected) << x << ", " << y;
        }
    }
    // From its own context, and to another format.
    ASSERT_TRUE(image.CopyHDC(image.hDC(), 6, 6, 24, 0, 2));
    EXPECT_EQ(image.BitCount(), 24);
    EXPECT_EQ(at(image, 0, 0), colourAt(source.view(), 15, 0));
    EXPECT_FALSE(image.CopyHDC(&source, -1, 6));
}

TEST(ImageTables, AreCopiedAsFarAsBothReach)
{
    const DeviceContext sixteen = makeIndexed(2, 2, 4);
    const DeviceContext full = makeIndexed(2, 2, 8);
    const DeviceContext deep = makePicture(Kind::Flat, 2, 2);
    cImage image;
    EXPECT_FALSE(image.CopyPalletHDC(&full)) << "empty";
    ASSERT_TRUE(image.Create(2, 2, 4));
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
