#include "imaging/cImage.h"
#include "imaging/test_pictures.h"

#include <gtest/gtest.h>

namespace varnholt::test {
namespace {

int channelsOf(const Bgr& colour)
{
    return colour.blue | (colour.green << 8) | (colour.red << 16);
}

TEST(ContextBitBlt, CombinesAndClipsAtEveryBitCount)
{
    const struct
    {
        RasterOp op;
        int (*combined)(int source, int destination);
    } kOps[] = {
        {RasterOp::Blackness, [](int, int) { return 0; }},
        {RasterOp::NotSrcErase, [](int s, int d) { return ~(s | d); }},
        {RasterOp::NotSrcCopy, [](int s, int) { return ~s; }},
        {RasterOp::SrcErase, [](int s, int d) { return s & ~d; }},
        {RasterOp::DstInvert, [](int, int d) { return ~d; }},
        {RasterOp::SrcInvert, [](int s, int d) { return s ^ d; }},
        {RasterOp::SrcAnd, [](int s, int d) { return s & d; }},
        {RasterOp::MergePaint, [](int s, int d) { return ~s | d; }},
        {RasterOp::SrcCopy, [](int s, int) { return s; }},
        {RasterOp::SrcPaint, [](int s, int d) { return s | d; }},
        {RasterOp::Whiteness, [](int, int) { return -1; }},
    };
    for (const int bits : {1, 4, 8, 24}) {
        const DeviceContext source = makeIndexed(19, 11, bits, 7);
        cImage painter;
        ASSERT_TRUE(painter.CopyHDC(&source, 19, 11));
        const int mask = bits == 24 ? 0xFFFFFF : (1 << bits) - 1;
        const auto value = [&](const DeviceContext& context, int x, int y) {
            return bits == 24 ? channelsOf(colourAt(context.view(), x, y))
                              : indexAt(context.view(), x, y);
        };
        for (const auto& c : kOps) {
            for (const auto& [left, top] : {std::pair(0, 0), std::pair(-5, 3), std::pair(9, -2)}) {
                const DeviceContext before = makeIndexed(19, 11, bits, 7);
                DeviceContext after = makeIndexed(19, 11, bits, 7);
                painter.PaintHDC(&after, left, top, c.op);
                for (int y = 0; y < 11; ++y) {
                    for (int x = 0; x < 19; ++x) {
                        const int sx = x - left;
                        const int sy = y - top;
                        const bool painted = sx >= 0 && sx < 19 && sy >= 0 && sy < 11;
                        const int old = value(before, x, y);
                        const int expected =
                            painted ? c.combined(value(source, sx, sy), old) & mask : old;
                        ASSERT_EQ(value(after, x, y), expected)
                            << bits << " bits, code " << static_cast<unsigned>(c.op);
                    }
                }
            }
        }
    }
}

TEST(ContextBitBlt, MatchesColoursBetweenTables)
{
    for (const int from : {1, 4, 8, 24}) {
        for (const int to : {1, 4, 8, 24}) {
            const DeviceContext source = makeIndexed(23, 6, from, 3);
            DeviceContext target = makeIndexed(23, 6, to, 4);
            ASSERT_TRUE(target.BitBlt(0, 0, 23, 6, source, 0, 0));
            const auto distance = [](const Bgr& a, const Bgr& b) {
                const auto square = [](int d) { return d * d; };
                return square(a.blue - b.blue) + square(a.green - b.green) + square(a.red - b.red);
            };
            for (int i = 0; i < 23 * 6; ++i) {
                const Bgr wanted = colourAt(source.view(), i % 23, i / 23);
                const Bgr found = colourAt(target.view(), i % 23, i / 23);
                ASSERT_TRUE(to < 24 || channelsOf(found) == channelsOf(wanted));
                for (int e = 0; to < 24 && e < 1 << to; ++e)
                    ASSERT_LE(distance(wanted, found), distance(wanted, target.view().table[e]));
            }
        }
    }
}

TEST(ContextBitBlt, OverlappingCopiesOntoItselfMoveTheOldPixels)
{
    for (const auto& [dx, dy] : {std::pair(2, 1), std::pair(-2, -1), std::pair(0, 3)}) {
        const DeviceContext before = makePicture(Kind::Noise, 12, 9);
        DeviceContext context = makePicture(Kind::Noise, 12, 9);
        ASSERT_TRUE(context.BitBlt(dx, dy, 12, 9, context, 0, 0));
        for (int y = std::max(0, dy); y < std::min(9, 9 + dy); ++y)
            for (int x = std::max(0, dx); x < std::min(12, 12 + dx); ++x)
                ASSERT_EQ(colourAt(context.view(), x, y), colourAt(before.view(), x - dx, y - dy));
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
    for (int y = 0; y < 10; ++y)
        for (int x = 0; x < 10; ++x)
            ASSERT_EQ(colourAt(target.view(), x, y),
                      colourAt(source.view(), (x + 7) / 3, (y + 5) / 3));
    EXPECT_FALSE(target.StretchBlt(0, 0, 5, 5, source, 0, 0, 8, 5)) << "beyond the source";
    EXPECT_FALSE(target.StretchBlt(0, 0, -5, 5, source, 0, 0, 7, 5));
    EXPECT_FALSE(target.BitBlt(0, 0, 5, 5, source, 0, 0, static_cast<RasterOp>(0xF00021)))
        << "needs a pattern";
    EXPECT_FALSE(target.BitBlt(0, 0, 5, 5, DeviceContext(), 0, 0));
    EXPECT_TRUE(target.BitBlt(INT32_MAX, INT32_MIN, INT32_MAX, INT32_MAX, source, INT32_MIN, 3));
}

} // namespace
} // namespace varnholt::test
