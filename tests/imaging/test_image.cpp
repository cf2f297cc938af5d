#include "imaging/cImage.h"
#include "imaging/test_pictures.h"

#include <gtest/gtest.h>

#include <array>
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

/// Of each bit count.
class ImageTest : public testing::TestWithParam<int>
{};

INSTANTIATE_TEST_SUITE_P(Bits, ImageTest, testing::Values(1, 4, 8, 24));

TEST_P(ImageTest, CreateMakesABlackBitmapWithPaddedRowsAndAGreyTable)
{
    const int bits = GetParam();
    cImage image;
    for (const int w : {1, 2, 5, 7, 8, 9, 31, 32, 33, 64, 65, 1000}) {
        ASSERT_TRUE(image.Create(w, 3, static_cast<std::int16_t>(bits)));
        const int rowBytes = (w * bits + 31) / 32 * 4;
        EXPECT_EQ(std::tuple(image.Width(), image.Height(), image.BitCount()),
                  std::tuple(w, 3, bits));
        EXPECT_EQ(image.BytesPerScanLine(), rowBytes);
        EXPECT_EQ(std::count(image.DIBitsPtr(), image.DIBitsPtr() + 3 * rowBytes, 0), 3 * rowBytes);
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
    constexpr int most = INT32_MAX;
    constexpr std::array<int, 3> none[] = {
        {0, 1, 24}, {1, 0, 24}, {-1, 5, 24},      {5, -1, 8},    {1, 1, 0},         {1, 1, 16},
        {1, 1, 32}, {1, 1, 2},  {most, most, 24}, {most, 1, 24}, {65536, 65536, 8}, {most, 9, 1}};
    for (const auto& [w, h, bits] : none) {
        cImage image;
        ASSERT_TRUE(image.Create(2, 2, 24));
        EXPECT_FALSE(image.Create(w, h, static_cast<std::int16_t>(bits))) << w << "x" << h;
        EXPECT_EQ(image.hDC(), nullptr);
        EXPECT_EQ(image.Width(), 0);
    }
}

/// The members that make another image of the same pixels.
TEST_P(ImageTest, MirroringTurningAndResamplingMoveEveryPixel)
{
    for (const auto& [w, h] :
         {std::pair(1, 1), std::pair(5, 3), std::pair(33, 8), std::pair(4, 17)}) {
        const cImage image = imageOf(makeNoise(w, h, GetParam()));
        // Whether rows become columns, then whether columns and rows are taken from the far end.
        // A turn is against the clock, as the corners say: top left to bottom left.
        const std::tuple<std::unique_ptr<cImage>, bool, bool, bool> results[] = {
            {image.Mirror(true), false, false, true}, {image.Mirror(false), false, true, false},
            {image.Rotate(90), true, true, false},    {image.Rotate(450), true, true, false},
            {image.Rotate(180), false, true, true},   {image.Rotate(270), true, false, true},
            {image.Rotate(-90), true, false, true},   {image.Resample(w, h), false, false, false}};
        for (const auto& [result, turned, farX, farY] : results) {
            ASSERT_NE(result, nullptr);
            EXPECT_EQ(result->BitCount(), GetParam());
            const auto expected = [&, t = turned, fx = farX, fy = farY, w = w, h = h](int x,
                                                                                      int y) {
                if (t)
                    std::swap(x, y);
                return at(image, fx ? w - 1 - x : x, fy ? h - 1 - y : y);
            };
            EXPECT_EQ(difference(result->hDC()->view(), turned ? h : w, turned ? w : h, expected),
                      "");
        }
        for (const int angle : {0, 360, 45, -1, 91, INT32_MIN})
            EXPECT_EQ(image.Rotate(angle), nullptr) << angle;
        const auto large = image.Resample(2 * w, 2 * h);
        EXPECT_EQ(large->BitCount(), GetParam());
        EXPECT_EQ(at(*large, 0, 0), at(image, 0, 0));
        EXPECT_EQ(image.Resample(0, 5)->hDC(), nullptr);
    }
}

TEST(ImageResample, ShrinkingAveragesAndGrowingInterpolates)
{
    constexpr int w = 37;
    constexpr int h = 23;
    const cImage image = imageOf(makePicture(Kind::Noise, w, h));
    for (const auto& [width, height] : {std::pair(18, 23), std::pair(19, 12), std::pair(5, 3)}) {
        const auto small = image.Resample(width, height);
        const auto mean = [&, width = width, height = height](int x, int y, auto channel) {
            // In cells of 1/width by 1/height source pixel a destination pixel covers w by h.
            int sum = w * h / 2;
            for (int cell = 0; cell < w * h; ++cell)
                sum += at(image, (x * w + cell % w) / width, (y * h + cell / w) / height).*channel;
            return static_cast<std::uint8_t>(sum / (w * h));
        };
        const ColourOf expected = [&](int x, int y) {
            return Bgr{mean(x, y, &Bgr::blue), mean(x, y, &Bgr::green), mean(x, y, &Bgr::red)};
        };
        EXPECT_EQ(difference(small->hDC()->view(), width, height, expected), "");
    }

    const DeviceContext source = makePicture(Kind::Noise, 6, 5);
    DeviceContext window;
    ASSERT_TRUE(window.Create(20, 11, 24));
    window.SetStretchBltMode(Halftone);
    // The whole of a small result, and a part of one whose sums need more than 32 bits.
    for (const auto& [width, height, left, top] :
         {std::tuple(20, 11, 0, 0), std::tuple(300000, 4000, 100000, 1900)}) {
        ASSERT_TRUE(window.StretchBlt(-left, -top, width, height, source, 0, 0, 6, 5));
        for (int i = 0; i < 20 * 11; ++i) {
            const double px = std::clamp((left + i % 20 + 0.5) * 6 / width - 0.5, 0.0, 5.0);
            const double py = std::clamp((top + i / 20 + 0.5) * 5 / height - 0.5, 0.0, 4.0);
            double expected = 0;
            for (int corner = 0; corner < 4; ++corner) {
                const int x = static_cast<int>(px) + corner % 2;
                const int y = static_cast<int>(py) + corner / 2;
                expected += (1 - std::abs(px - x)) * (1 - std::abs(py - y)) *
                            colourAt(source.view(), std::min(x, 5), std::min(y, 4)).green;
            }
            ASSERT_NEAR(colourAt(window.view(), i % 20, i / 20).green, expected, 0.5001) << i;
        }
    }
}

TEST(ImageCopyStdPicture, TakesEveryFormatAPictureCanHave)
{
    Picture high{
        3, 2, 16, {}, {0x1F, 0, 0xE0, 3, 0, 0x7C, 0, 0, 0xFF, 0x7F, 0, 0, 0x10, 0x42, 0, 0}};
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
    EXPECT_FALSE(image.CopyPalletHDC(&source)) << "empty";
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

    // Tables are copied as far as both reach.
    ASSERT_TRUE(image.Create(2, 2, 8));
    EXPECT_EQ(image.CopyPalletHDC(&source), GetParam() < 24);
    const int copied = GetParam() == 24 ? 0 : 1 << GetParam();
    for (int i = 0; i < 256; ++i) {
        const auto grey = static_cast<std::uint8_t>(i);
        EXPECT_EQ(image.hDC()->view().table[i],
                  i < copied ? from.table[i] : (Bgr{grey, grey, grey}));
    }
    ASSERT_TRUE(image.Create(2, 2, 1));
    EXPECT_EQ(image.CopyPalletHDC(&source), GetParam() < 24);
    EXPECT_EQ(image.hDC()->view().table[1], GetParam() < 24 ? from.table[1] : (Bgr{255, 255, 255}));
}

TEST(ImagePaint, CombinesBitsAsTheOperationsCodeSays)
{
    // A pixel of each pair of bits; the code's third byte is the table of their results, from
    // source and destination 1 1 down to 0 0 with the pattern's bit doubled.
    DeviceContext bits;
    ASSERT_TRUE(bits.Create(4, 1, 1));
    *bits.DIBits() = 0b11000000;
    const cImage source = imageOf(bits);
    for (const RasterOp op :
         {RasterOp::Blackness, RasterOp::NotSrcErase, RasterOp::NotSrcCopy, RasterOp::SrcErase,
          RasterOp::DstInvert, RasterOp::SrcInvert, RasterOp::SrcAnd, RasterOp::MergePaint,
          RasterOp::SrcCopy, RasterOp::SrcPaint, RasterOp::Whiteness}) {
        DeviceContext after;
        ASSERT_TRUE(after.Create(4, 1, 1));
        *after.DIBits() = 0b10100000;
        source.PaintHDC(&after, 0, 0, op);
        EXPECT_EQ(*after.DIBits() >> 4, static_cast<unsigned>(op) >> 16 & 15U)
            << static_cast<unsigned>(op);
    }
}

TEST_P(ImageTest, PaintingClips)
{
    const DeviceContext before = makeNoise(19, 11, GetParam(), 7);
    const cImage source = imageOf(before);
    for (const auto& [left, top] : {std::pair(0, 0), std::pair(-5, 3), std::pair(9, -2)}) {
        DeviceContext after = makeNoise(19, 11, GetParam(), 7);
        source.PaintHDC(&after, left, top, RasterOp::NotSrcCopy);
        source.PaintHDC(&after, left, top, RasterOp::DstInvert);
        const ColourOf expected = [&, left = left, top = top](int x, int y) {
            const bool painted = x >= left && x < left + 19 && y >= top && y < top + 11;
            return colourAt(before.view(), painted ? x - left : x, painted ? y - top : y);
        };
        EXPECT_EQ(difference(after.view(), 19, 11, expected), "");
    }
}

/// Every pixel of `to` has the colour of its table that is nearest to the one in `from`.
void expectNearestColours(const BitmapView& from, const BitmapView& to)
{
    for (int i = 0; i < from.width * from.height; ++i) {
        const Bgr a = colourAt(from, i % from.width, i / from.width);
        const auto distance = [&](const Bgr& b) {
            return std::pow(a.blue - b.blue, 2) + std::pow(a.green - b.green, 2) +
                   std::pow(a.red - b.red, 2);
        };
        for (int e = 0; e < 1 << to.bitCount; ++e)
            ASSERT_LE(distance(colourAt(to, i % from.width, i / from.width)),
                      distance(to.table[e]));
    }
}

TEST_P(ImageTest, ColoursBecomeTheNearestOfThePresentTable)
{
    const DeviceContext source = makeNoise(40, 20, GetParam(), 3);
    for (const int to : {1, 4, 8}) {
        DeviceContext target = makeNoise(40, 20, to, 4);
        for (const unsigned table : {4U, 5U}) {
            const DeviceContext other = makeNoise(40, 20, to, table);
            ASSERT_EQ(target.SetDIBColorTable(0, 256, other.view().table), 1 << to);
            ASSERT_TRUE(target.BitBlt(0, 0, 40, 20, source, 0, 0));
            expectNearestColours(source.view(), target.view());
        }
    }
    const auto grey = imageOf(source).Greyscale();
    ASSERT_EQ(grey->BitCount(), 8);
    EXPECT_EQ(grey->hDC()->view().table[200], (Bgr{200, 200, 200}));
    expectNearestColours(source.view(), grey->hDC()->view());
}

TEST(Context, CopiesOverItselfClipsAndRefuses)
{
    const DeviceContext before = makePicture(Kind::Noise, 12, 9);
    for (const auto& [dx, dy] : {std::pair(2, 1), std::pair(-2, -1), std::pair(0, 3)}) {
        DeviceContext context = makePicture(Kind::Noise, 12, 9);
        ASSERT_TRUE(context.BitBlt(dx, dy, 12, 9, context, 0, 0));
        const auto expected = [&, dx = dx, dy = dy](int x, int y) {
            const bool moved = x >= dx && y >= dy && x < 12 + dx && y < 9 + dy;
            return moved ? colourAt(before.view(), x - dx, y - dy) : colourAt(before.view(), x, y);
        };
        EXPECT_EQ(difference(context.view(), 12, 9, expected), "");
    }
    const DeviceContext source = makePicture(Kind::Noise, 7, 5);
    DeviceContext target;
    ASSERT_TRUE(target.Create(10, 10, 24));
    EXPECT_EQ(target.SetStretchBltMode(2), 0);
    EXPECT_EQ(target.SetStretchBltMode(Halftone), ColourOnColour);
    EXPECT_EQ(target.SetStretchBltMode(ColourOnColour), Halftone);
    ASSERT_TRUE(target.StretchBlt(-7, -5, 21, 15, source, 0, 0, 7, 5));
    EXPECT_TRUE(target.BitBlt(INT32_MAX, INT32_MIN, INT32_MAX, INT32_MAX, source, INT32_MIN, 3));
    for (const int far : {INT32_MIN, INT32_MAX})
        EXPECT_TRUE(target.StretchBlt(far, far, 5, 5, source, 0, 0, 7, 5));
    EXPECT_FALSE(target.StretchBlt(0, 0, 5, 5, source, 0, 0, 8, 5)) << "beyond the source";
    EXPECT_FALSE(target.StretchBlt(0, 0, -5, 5, source, 0, 0, 7, 5));
    EXPECT_FALSE(target.BitBlt(0, 0, 5, 5, source, 0, 0, static_cast<RasterOp>(0xF00021)))
        << "needs a pattern";
    EXPECT_FALSE(target.BitBlt(0, 0, 5, 5, DeviceContext(), 0, 0));
    const auto expected = [&](int x, int y) {
        return colourAt(source.view(), (x + 7) / 3, (y + 5) / 3);
    };
    EXPECT_EQ(difference(target.view(), 10, 10, expected), "");
}

} // namespace
} // namespace varnholt::test
