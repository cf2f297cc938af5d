#include "imaging/cJpeg.h"
#include "imaging/jpeg_huffman.h"
#include "imaging/jpeg_markers.h"
#include "imaging/reference_jpeg.h"
#include "imaging/test_pictures.h"

#include <gtest/gtest.h>

#include <cmath>
#include <cstdio>
#include <map>

#include <jpeglib.h>

namespace varnholt::test {
namespace {

/// The standard's example tables as libjpeg-turbo has them, row by row.
std::array<std::array<int, 64>, 2> standardTables()
{
    jpeg_compress_struct info;
    jpeg_error_mgr errors;
    info.err = jpeg_std_error(&errors);
    jpeg_create_compress(&info);
    info.in_color_space = JCS_RGB;
    info.input_components = 3;
    jpeg_set_defaults(&info);
    jpeg_set_linear_quality(&info, 100, TRUE);
    std::array<std::array<int, 64>, 2> tables{};
    for (std::size_t t = 0; t < 2; ++t)
        std::copy_n(info.quant_tbl_ptrs[t]->quantval, 64, tables[t].begin());
    jpeg_destroy_compress(&info);
    return tables;
}

TEST(QuantTables, All128EntriesFollowTheRoundingRuleAtEveryQuality)
{
    const auto standard = standardTables();
    const DeviceContext picture = makePicture(Kind::Noise, 16, 16);
    std::map<int, int> unusual; // how many entries differ from the truncating rule
    for (int quality = 1; quality <= 100; ++quality) {
        cJpeg encoder;
        encoder.Quality(quality);
        ASSERT_EQ(encoder.SampleHDC(&picture, 16, 16), cJpeg::Sampled);
        const Coefficients file = readCoefficients(encode(encoder));
        const double scale =
            quality >= 50 ? 200.0 - 2.0 * quality : std::nearbyint(5000.0 / quality);
        for (std::size_t t = 0; t < 2; ++t) {
            for (std::size_t i = 0; i < 64; ++i) {
                const double value = std::nearbyint((standard[t][i] * scale + 50) / 100);
                const int expected = static_cast<int>(std::clamp(value, 1.0, 255.0));
                ASSERT_EQ(file.components[t].table[i], expected)
                    << quality << ": " << t << ", " << i;
                const int truncated = (standard[t][i] * static_cast<int>(scale) + 50) / 100;
                unusual[quality] += expected != std::clamp(truncated, 1, 255);
            }
        }
    }
    EXPECT_EQ(unusual[75], 18);
    EXPECT_EQ(unusual[100], 0);
}

TEST(QuantTables, OthersThanTheseAreRefused)
{
    cJpeg encoder;
    for (const int quality : {0, 101, -5, 1000}) {
        encoder.Quality(quality);
        EXPECT_EQ(encoder.Quality(), 75);
    }
    QuantTable table = baseQuantTable(0);
    table[5] = 0;
    EXPECT_THROW(dctScale(table), cJpegError);
    table[5] = 256;
    const jpeg::ByteSink sink = [](auto) { return true; };
    jpeg::ByteWriter out(sink);
    EXPECT_THROW(jpeg::writeQuantTable(out, 0, table), cJpegError);
}

/// The least total length of a prefix code, by merging the two smallest weights.
std::uint64_t leastCost(std::multiset<std::uint64_t> weights)
{
    std::uint64_t cost = 0;
    while (weights.size() > 1) {
        const std::uint64_t merged = *weights.begin() + *std::next(weights.begin());
        weights.erase(weights.begin());
        weights.erase(weights.begin());
        weights.insert(merged);
        cost += merged;
    }
    return cost;
}

class HuffmanTest : public testing::TestWithParam<int>
{};

INSTANTIATE_TEST_SUITE_P(Symbols, HuffmanTest, testing::Values(1, 2, 3, 12, 17, 18, 40, 162, 255));

TEST_P(HuffmanTest, TablesArePrefixCodesAndAsShortAsTheyCanBe)
{
    for (const bool steep : {false, true}) {
        SymbolCounts counts{};
        std::multiset<std::uint64_t> weights{1}; // the reserved entry
        std::uint64_t a = 1;
        std::uint64_t b = 1;
        for (std::size_t i = 0; i < static_cast<std::size_t>(GetParam()); ++i) {
            counts[i] = steep ? a : 1 + i * i % 17;
            weights.insert(counts[i]);
            if (b < UINT64_C(1) << 40)
                a = std::exchange(b, a + b);
        }
        const HuffmanList list = optimalHuffmanList(counts);
        const auto codes = huffmanCodes(list);
        double space = 0;
        std::uint64_t cost = 1 * 16; // never less than what the reserved entry takes
        int longest = 0;
        for (std::size_t i = 0; i < 256; ++i) {
            ASSERT_EQ(codes[i].length != 0, counts[i] != 0) << i;
            ASSERT_LE(codes[i].length, 16);
            longest = std::max<int>(longest, codes[i].length);
            if (codes[i].length == 0)
                continue;
            space += std::ldexp(1.0, -codes[i].length);
            cost += counts[i] * codes[i].length;
            for (std::size_t j = 0; j < 256; ++j) {
                const int more = codes[j].length - codes[i].length;
                ASSERT_TRUE(j == i || more < 0 || codes[j].code >> more != codes[i].code);
            }
        }
        EXPECT_LT(space, 1.0) << "the code of all ones must stay free";
        EXPECT_GE(cost, leastCost(weights));
        // Limiting to 16 bits costs little; without the limit nothing.
        const auto least = static_cast<double>(leastCost(weights));
        EXPECT_LE(static_cast<double>(cost), longest < 16 ? least + 16 : 1.01 * least + 64);
    }
}

TEST(HuffmanLists, ThatAreNoCodesAreRefused)
{
    const HuffmanList good = optimalHuffmanList({5, 3, 2, 1});
    EXPECT_NO_THROW(huffmanCodes(good));
    HuffmanList missing = good;
    missing.values.pop_back();
    EXPECT_THROW(huffmanCodes(missing), cJpegError);
    HuffmanList twice = good;
    twice.values[1] = twice.values[0];
    EXPECT_THROW(huffmanCodes(twice), cJpegError);
    HuffmanList crowded;
    crowded.bits[1] = 3;
    crowded.values = {0, 1, 2};
    EXPECT_THROW(huffmanCodes(crowded), cJpegError);
    HuffmanList allOnes;
    allOnes.bits[1] = 2;
    allOnes.values = {0, 1};
    EXPECT_THROW(huffmanCodes(allOnes), cJpegError);
}

} // namespace
} // namespace varnholt::test
