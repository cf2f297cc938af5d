#include "imaging/cImage.h"
#include "imaging/test_pictures.h"

#include <gtest/gtest.h>

namespace varnholt::test {
namespace {

TEST(ContextBitBlt, CombinesAndClipsAtEveryBitCount)
{
    // The results for source and destination bits 1 1, 1 0, 0 1, 0 0.
    constexpr std::pair<RasterOp, unsigned> kOps[] = {
        {RasterOp::Blackness, 0b0000},  {RasterOp::NotSrcErase, 0b0001},
        {RasterOp::NotSrcCopy, 0b0011}, {RasterOp::SrcErase, 0b0100},
        {RasterOp::DstInvert, 0b0101},  {RasterOp::SrcInvert, 0b0110},
        {RasterOp::SrcAnd, 0b1000},     {RasterOp::MergePaint, 0b1011},
        {RasterOp::SrcCopy, 0b1100},    {RasterOp::SrcPaint, 0b1110},
        {RasterOp::Whiteness, 0b1111}};
    const auto combined = [](unsigned results, int source, int destination, int bits) {
        int value = 0;
        for (int bit = 0; bit < bits; ++bit) {
            const int pair = (source >> bit & 1) * 2 + (destination >> bit & 1);
            value |= static_cast<int>(results >> pair & 1U) << bit;
        }
        return value;
    };
    for (const int bits : {1, 4, 8, 24}) {
        const DeviceContext before = makeNoise(19, 11, bits, 7);
        cImage source;
        ASSERT_TRUE(source.CopyHDC(&before, 19, 11));
        const auto value = [&](const DeviceContext& context, int x, int y) {
            return bits == 24 ? colourAt(context.view(), x, y).green
                              : indexAt(context.view(), x, y);
        };
        for (const auto& [op, results] : kOps) {
            for (const auto& [left, top] : {std::pair(0, 0), std::pair(-5, 3), std::pair(9, -2)}) {
                DeviceContext after = makeNoise(19, 11, bits, 7);
                source.PaintHDC(&after, left, top, op);
                for (int i = 0; i < 19 * 11; ++i) {
                    const int x = i % 19;
                    const int y = i / 19;
                    const int old = value(before, x, y);
                    const bool painted = x >= left && x < left + 19 && y >= top && y < top + 11;
                    const int expected = painted
                                             ? combined(results, value(before, x - left, y - top),
                                                        old, std::min(bits, 8))
                                             : old;
                    ASSERT_EQ(value(after, x, y), expected)
                        << bits << " bits, code " << static_cast<unsigned>(op);
                }
            }
        }
    }
}

/// Every pixel of `to` has the colour of its table that is nearest to the one in `from`.
void expectNearestColours(const BitmapView& from, const BitmapView& to)
{
    const auto distance = [](const Bgr& a, const Bgr& b) {
        const auto square = [](int d) { return d * d; };
        return square(a.blue - b.blue) + square(a.green - b.green) + square(a.red - b.red);
    };
    for (int i = 0; i < from.width * from.height; ++i) {
        const Bgr wanted = colourAt(from, i % from.width, i / from.width);
        const Bgr found = colourAt(to, i % from.width, i / from.width);
        for (int e = 0; e < 1 << to.bitCount; ++e)
            ASSERT_LE(distance(wanted, found), distance(wanted, to.table[e])) << to.bitCount;
    }
}

TEST(ContextBitBlt, TakesTheNearestColourOfThePresentTable)
{
    for (const int from : {1, 4, 8, 24}) {
        const DeviceContext source = makeNoise(40, 20, from, 3);
        for (const int to : {1, 4, 8}) {
            DeviceContext target = makeNoise(40, 20, to, 4);
            ASSERT_TRUE(target.BitBlt(0, 0, 40, 20, source, 0, 0));
            expectNearestColours(source.view(), target.view());
            const DeviceContext other = makeNoise(40, 20, to, 5);
            ASSERT_EQ(target.SetDIBColorTable(0, 256, other.view().table), 1 << to);
            ASSERT_TRUE(target.BitBlt(0, 0, 40, 20, source, 0, 0));
            expectNearestColours(source.view(), target.view());
        }
        cImage image;
        ASSERT_TRUE(image.CopyHDC(&source, 40, 20));
        const auto grey = image.Greyscale();
        ASSERT_EQ(grey->BitCount(), 8);
        EXPECT_EQ(grey->hDC()->view().table[200], (Bgr{200, 200, 200}));
        expectNearestColours(source.view(), grey->hDC()->view());
    }
}

TEST(ContextBitBlt, OverlappingCopiesOntoItselfMoveTheOldPixels)
{
    const DeviceContext before = makePicture(Kind::Noise, 12, 9);
    for (const auto& [dx, dy] : {std::pair(2, 1), std::pair(-2, -1), std::pair(0, 3)}) {
        DeviceContext context = makePicture(Kind::Noise, 12, 9);
        ASSERT_TRUE(context.BitBlt(dx, dy, 12, 9, context, 0, 0));
        EXPECT_EQ(difference(context.view(), 12, 9,
                             [&, dx = dx, dy = dy](int x, int y) {
                                 const bool moved = x >= dx && y >= dy && x < 12 + dx && y < 9 + dy;
                                 return moved ? colourAt(before.view(), x - dx, y - dy)
                                              : colourAt(before.view(), x, y);
                             }),
                  "");
    }
}

TEST(ContextStretch, ClipsRefusesAndTakesNearestPixels)
{
    const DeviceContext source = makePicture(Kind::Noise, 7, 5);
    DeviceContext target;
    ASSERT_TRUE(target.Create(10, 10, 24));
    EXPECT_EQ(target.SetStretchBltMode(2), 0);
    EXPECT_EQ(target.SetStretchBltMode(Halftone), ColourOnColour);
    EXPECT_EQ(target.SetStretchBltMode(ColourOnColour), Halftone);
    ASSERT_TRUE(target.StretchBlt(-7, -5, 21, 15, source, 0, 0, 7, 5));
    EXPECT_TRUE(target.BitBlt(INT32_MAX, INT32_MIN, INT32_MAX, INT32_MAX, source, INT32_MIN, 3));
    EXPECT_TRUE(target.StretchBlt(INT32_MIN, INT32_MIN, 5, 5, source, 0, 0, 7, 5));
    EXPECT_TRUE(target.StretchBlt(INT32_MAX, INT32_MAX, 5, 5, source, 0, 0, 7, 5));
    EXPECT_FALSE(target.StretchBlt(0, 0, 5, 5, source, 0, 0, 8, 5)) << "beyond the source";
    EXPECT_FALSE(target.StretchBlt(0, 0, -5, 5, source, 0, 0, 7, 5));
    EXPECT_FALSE(target.BitBlt(0, 0, 5, 5, source, 0, 0, static_cast<RasterOp>(0xF00021)))
        << "needs a pattern";
    EXPECT_FALSE(target.BitBlt(0, 0, 5, 5, DeviceContext(), 0, 0));
    EXPECT_EQ(
        difference(target.view(), 10, 10,
                   [&](int x, int y) { return colourAt(source.view(), (x + 7) / 3, (y + 5) / 3); }),
        "");
}

} // namespace
} // namespace varnholt::test
