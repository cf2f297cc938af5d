#include "imaging/reference_jpeg.h"
#include "imaging/test_pictures.h"

#include <gtest/gtest.h>

#include <cmath>
#include <cstdio>
#include <set>

#include <jpeglib.h>

namespace varnholt::test {
namespace {

/// One of the standard's example tables as libjpeg-turbo has it, row by row.
std::array<int, 64> standardTable(std::size_t number)
{
    jpeg_compress_struct info;
    jpeg_error_mgr errors;
    info.err = jpeg_std_error(&errors);
    jpeg_create_compress(&info);
    info.in_color_space = JCS_RGB;
    info.input_components = 3;
    jpeg_set_defaults(&info);
    jpeg_set_linear_quality(&info, 100, TRUE);
    std::array<int, 64> table{};
    std::copy_n(info.quant_tbl_ptrs[number]->quantval, 64, table.begin());
    jpeg_destroy_compress(&info);
    return table;
}

TEST(QuantTables, All128EntriesFollowTheRoundingRuleAtEveryQuality)
{
    const DeviceContext picture = makePicture(Kind::Noise, 16, 16);
    cJpeg encoder;
    ASSERT_EQ(encoder.SampleHDC(&picture, 16, 16), cJpeg::Sampled);
    for (int quality = 1; quality <= 100; ++quality) {
        encoder.Quality(quality);
        for (const int other : {0, 101, -5})
            encoder.Quality(other);
        ASSERT_EQ(encoder.Quality(), quality) << "values outside 1 to 100 change nothing";
        const auto components = readCoefficients(encode(encoder));
        const double scale =
            quality >= 50 ? 200.0 - 2.0 * quality : std::nearbyint(5000.0 / quality);
        for (std::size_t i = 0; i < 128; ++i) {
            const double value = standardTable(i / 64)[i % 64] * scale + 50;
            const int expected =
                static_cast<int>(std::clamp(std::nearbyint(value / 100), 1.0, 255.0));
            ASSERT_EQ(components[i / 64].table[i % 64], expected) << quality << ": " << i;
        }
    }
}

/// The least total length of a prefix code, by merging the two smallest weights.
std::uint64_t leastCost(std::multiset<std::uint64_t> weights)
{
    std::uint64_t cost = 0;
    while (weights.size() > 1) {
        const std::uint64_t merged = *weights.begin() + *std::next(weights.begin());
        weights.erase(weights.begin(), std::next(weights.begin(), 2));
        weights.insert(merged);
        cost += merged;
    }
    return cost;
}

TEST(HuffmanTables, AreAsShortAsTheyCanBe)
{
    for (const std::size_t symbols : {1U, 2U, 3U, 12U, 17U, 18U, 40U, 162U, 255U}) {
        for (const bool steep : {false, true}) {
            SCOPED_TRACE(testing::Message() << symbols << " symbols, steep " << steep);
            SymbolCounts counts{};
            std::multiset<std::uint64_t> weights{1}; // the reserved entry
            std::uint64_t a = 1;
            std::uint64_t b = 1;
            for (std::size_t i = 0; i < symbols; ++i) {
                counts[i] = steep ? a : 1 + i * i % 17;
                weights.insert(counts[i]);
                if (b < UINT64_C(1) << 40)
                    a = std::exchange(b, a + b);
            }
            const auto codes = huffmanCodes(optimalHuffmanList(counts));
            double space = 0;
            std::uint64_t cost = 0;
            int longest = 0;
            for (std::size_t i = 0; i < 256; ++i) {
                ASSERT_EQ(codes[i].length != 0, counts[i] != 0) << i;
                longest = std::max<int>(longest, codes[i].length);
                space += counts[i] != 0 ? std::ldexp(1.0, -codes[i].length) : 0;
                cost += counts[i] * codes[i].length;
            }
            EXPECT_LT(space, 1.0) << "the code of all ones must stay free";
            // The reserved entry takes as many bits as the longest code. Limiting to 16 bits
            // costs little; without the limit nothing.
            const auto least = static_cast<double>(leastCost(weights));
            const double found = static_cast<double>(cost) + longest;
            EXPECT_LE(found, longest < 16 ? least : 1.01 * least + 64);
        }
    }
}

} // namespace
} // namespace varnholt::test
