#include "imaging/cJpeg.h"
#include "imaging/reference_jpeg.h"
#include "imaging/test_pictures.h"

#include <gtest/gtest.h>

#include <cmath>
#include <numeric>

namespace varnholt::test {
namespace {

struct Factors
{
    std::array<int, 6> f;
    bool decodable = true; // a whole ratio everywhere, which libjpeg-turbo needs to decode
};

const Factors kSamplings[] = {
    {{1, 1, 0, 0, 0, 0}},        {{1, 1, 1, 1, 1, 1}},        {{2, 1, 1, 1, 1, 1}},
    {{1, 2, 1, 1, 1, 1}},        {{4, 1, 1, 1, 1, 1}},        {{2, 2, 1, 1, 1, 1}},
    {{2, 2, 2, 1, 2, 1}},        {{2, 2, 2, 1, 1, 2}},        {{1, 1, 2, 2, 1, 1}},
    {{4, 2, 1, 1, 1, 1}},        {{4, 4, 1, 1, 1, 1}},        {{4, 4, 4, 4, 4, 4}},
    {{3, 1, 1, 1, 1, 1}},        {{3, 2, 2, 1, 1, 1}, false}, {{2, 3, 3, 2, 1, 1}, false},
    {{4, 3, 3, 4, 2, 1}, false},
};

cJpeg encoderFor(const std::array<int, 6>& f, int quality)
{
    cJpeg encoder;
    encoder.SetSamplingFrequencies(f[0], f[1], f[2], f[3], f[4], f[5]);
    encoder.Quality(quality);
    return encoder;
}

std::string nameOf(const std::array<int, 6>& f, int width, int height, int quality)
{
    std::string name = std::to_string(width) + "x" + std::to_string(height) + " q" +
                       std::to_string(quality) + " sampling";
    for (const int factor : f)
        name += " " + std::to_string(factor);
    return name;
}

class EncodeTest : public testing::TestWithParam<Factors>
{
protected:
    void TearDown() override { jpeg::forceKernels(nullptr); }
};

INSTANTIATE_TEST_SUITE_P(Samplings, EncodeTest, testing::ValuesIn(kSamplings));

TEST_P(EncodeTest, EveryCoefficientIsTheQuantisedTransformOfItsSamples)
{
    constexpr std::array<std::pair<int, int>, 10> kSizes = {
        {{1, 1}, {2, 3}, {5, 7}, {8, 8}, {9, 16}, {17, 15}, {31, 34}, {50, 19}, {1, 40}, {83, 2}}};
    constexpr Kind kKinds[] = {Kind::Noise, Kind::Flat, Kind::Smooth, Kind::Drawn};
    for (std::size_t i = 0; i < kSizes.size(); ++i) {
        const auto [width, height] = kSizes[i];
        for (const int quality : {1, 50, 75, 100}) {
            const DeviceContext picture =
                makePicture(kKinds[(i + static_cast<std::size_t>(quality)) % 4], width, height, 3);
            SCOPED_TRACE(nameOf(GetParam().f, width, height, quality));
            cJpeg encoder = encoderFor(GetParam().f, quality);
            ASSERT_EQ(encoder.SampleHDC(&picture, width, height), cJpeg::Sampled);
            const Bytes file = encode(encoder);
            const Coefficients found = readCoefficients(file);
            ASSERT_EQ(std::pair(found.width, found.height), std::pair(width, height));
            for (std::size_t c = 0; c < found.components.size() && found.components.size() > 1; ++c)
                ASSERT_EQ(std::pair(found.components[c].h, found.components[c].v),
                          std::pair(GetParam().f[2 * c], GetParam().f[2 * c + 1]));
            ASSERT_NO_THROW(checkCoefficients(found, picture.view(), 0, 0));
            if (GetParam().decodable) {
                const Decoded decoded = decode(file);
                ASSERT_EQ(std::pair(decoded.width, decoded.height), std::pair(width, height));
            }
        }
    }
}

TEST_P(EncodeTest, EveryKernelSetWritesTheSameBytes)
{
    const jpeg::KernelList& list = jpeg::availableKernels();
    for (const Kind kind : {Kind::Noise, Kind::Flat, Kind::Smooth, Kind::Drawn}) {
        for (const auto& [width, height] :
             {std::pair(1, 1), std::pair(36, 33), std::pair(67, 40), std::pair(139, 71)}) {
            const DeviceContext picture = makePicture(kind, width, height, 9);
            for (const int quality : {5, 75, 100}) {
                SCOPED_TRACE(nameOf(GetParam().f, width, height, quality));
                std::vector<Bytes> files;
                for (int i = 0; i < list.count; ++i) {
                    jpeg::forceKernels(list.sets[i]);
                    cJpeg encoder = encoderFor(GetParam().f, quality);
                    ASSERT_EQ(encoder.SampleHDC(&picture, width, height), cJpeg::Sampled);
                    files.push_back(encode(encoder));
                    ASSERT_EQ(files.back(), files.front()) << list.sets[i]->name;
                }
            }
        }
    }
}

std::uint64_t checksum(const Bytes& bytes)
{
    std::uint64_t hash = 0xCBF29CE484222325; // FNV-1a
    for (const std::uint8_t byte : bytes)
        hash = (hash ^ byte) * 0x100000001B3;
    return hash;
}

TEST(EncodeBytes, AreTheSameInEveryBuild)
{
    const struct
    {
        Kind kind;
        int width, height, quality;
        std::uint64_t expected;
    } kCases[] = {
        {Kind::Noise, 200, 150, 75, 7294975474584306388u},
        {Kind::Drawn, 321, 203, 75, 8177975611349023531u},
        {Kind::Smooth, 640, 480, 90, 12204304871887182722u},
        {Kind::Flat, 64, 64, 30, 1669171080443698994u},
    };
    for (const auto& c : kCases) {
        const DeviceContext picture = makePicture(c.kind, c.width, c.height);
        cJpeg encoder;
        encoder.Quality(c.quality);
        ASSERT_EQ(encoder.SampleHDC(&picture, c.width, c.height), cJpeg::Sampled);
        EXPECT_EQ(checksum(encode(encoder)), c.expected) << c.width << "x" << c.height;
    }
}

TEST(EncodeLarge, NoiseBeyondTheTokenBufferComesOutWhole)
{
    for (const auto& f : {std::array{2, 2, 1, 1, 1, 1}, std::array{4, 4, 4, 4, 4, 4}}) {
        const DeviceContext picture = makePicture(Kind::Noise, 403, 301);
        cJpeg encoder = encoderFor(f, 100);
        ASSERT_EQ(encoder.SampleHDC(&picture, 403, 301), cJpeg::Sampled);
        EXPECT_NO_THROW(checkCoefficients(readCoefficients(encode(encoder)), picture.view(), 0, 0));
    }
}

TEST(EncodeLarge, TheLongestSidesWorkAndLongerOnesAreRefused)
{
    // libjpeg-turbo reads up to 65500 and no more, so beyond that the frame header must do.
    for (const auto& [width, height] :
         {std::pair(65500, 3), std::pair(3, 65500), std::pair(65535, 3), std::pair(3, 65535)}) {
        const DeviceContext picture = makePicture(Kind::Smooth, width, height);
        cJpeg encoder;
        ASSERT_EQ(encoder.SampleHDC(&picture, width, height), cJpeg::Sampled);
        const Bytes file = encode(encoder);
        const std::string frame = segments(file).at(5).content;
        const auto number = [&](std::size_t at) {
            return static_cast<std::uint8_t>(frame[at]) * 256 +
                   static_cast<std::uint8_t>(frame[at + 1]);
        };
        EXPECT_EQ(std::pair(number(3), number(1)), std::pair(width, height));
        if (std::max(width, height) == 65500) {
            EXPECT_NO_THROW(checkCoefficients(readCoefficients(file), picture.view(), 0, 0));
        }
    }
    const DeviceContext wide = makePicture(Kind::Flat, 65536, 1);
    cJpeg encoder;
    EXPECT_EQ(encoder.SampleHDC(&wide, 65536, 1), cJpeg::BadSize);
    EXPECT_EQ(encoder.SampleHDC(&wide, 1, 65536), cJpeg::BadSize);
    EXPECT_EQ(encoder.SampleHDC(&wide, 0, 1), cJpeg::BadSize);
    EXPECT_EQ(encoder.SampleHDC(nullptr, 1, 1), cJpeg::NoContext);
    EXPECT_EQ(encoder.Encode([](auto) { return true; }), cJpeg::NothingSampled);
}

TEST(EncodeRegion, AnyPartOfAnyContextIsSampled)
{
    for (const int bits : {1, 4, 8, 24}) {
        const DeviceContext picture = makeIndexed(40, 30, bits);
        for (const auto& [left, top, width, height] :
             {std::array{0, 0, 40, 30}, std::array{3, 5, 21, 18}, std::array{-4, -3, 20, 20},
              std::array{30, 20, 33, 17}, std::array{100, 0, 9, 9}}) {
            cJpeg encoder;
            encoder.Quality(95);
            ASSERT_EQ(encoder.SampleHDC(&picture, width, height, left, top), cJpeg::Sampled);
            EXPECT_NO_THROW(
                checkCoefficients(readCoefficients(encode(encoder)), picture.view(), left, top))
                << bits << " bits at " << left << ", " << top;
        }
    }
}

TEST(EncodeState, PicturesDoNotInfluenceEachOther)
{
    const DeviceContext first = makePicture(Kind::Noise, 70, 50);
    const DeviceContext second = makePicture(Kind::Smooth, 33, 80);
    cJpeg fresh;
    ASSERT_EQ(fresh.SampleHDC(&second, 33, 80), cJpeg::Sampled);
    const Bytes expected = encode(fresh);

    cJpeg used;
    used.Quality(20);
    ASSERT_EQ(used.SampleHDC(&first, 70, 50), cJpeg::Sampled);
    const Bytes coarse = encode(used);
    used.Quality(75);
    EXPECT_NE(encode(used), coarse) << "the quality of the moment counts, not that of sampling";
    ASSERT_EQ(used.SampleHDC(&second, 33, 80), cJpeg::Sampled);
    used.SetSamplingFrequencies(1, 1, 1, 1, 1, 1);
    EXPECT_EQ(encode(used), expected);
}

/// Blocks with one coefficient each, so chosen that AC symbols occur as often as the numbers
/// of Fibonacci say: the case in which Huffman codes grow longest, here to 20 bits and more.
TEST(EncodeHuffman, CodesLongerThan16BitsAreShortened)
{
    constexpr int kSymbolKinds = 20;
    constexpr int kAcross = 140;
    std::vector<std::pair<std::size_t, int>> wanted; // zigzag index, value
    std::size_t count = 1;
    std::size_t previous = 1;
    for (int i = 0; i < kSymbolKinds; ++i) {
        wanted.insert(wanted.end(), count, {static_cast<std::size_t>(i / 2 + 1), i % 2 + 1});
        previous = std::exchange(count, count + previous);
    }
    const int down = (static_cast<int>(wanted.size()) + kAcross - 1) / kAcross;
    DeviceContext picture = makePicture(Kind::Flat, kAcross * 8, down * 8);
    const QuantTable table = scaledQuantTable(baseQuantTable(0), 50);
    for (std::size_t i = 0; i < static_cast<std::size_t>(kAcross * down); ++i) {
        const auto [k, value] = wanted[std::min(i, wanted.size() - 1)];
        for (int p = 0; p < 64; ++p) {
            const int u = kZigzag[k] % 8;
            const int v = kZigzag[k] / 8;
            const auto wave = [](int x, int frequency) {
                return frequency == 0
                           ? std::sqrt(0.125)
                           : 0.5 * std::cos((2 * x + 1) * frequency * std::acos(-1.0) / 16);
            };
            const double level = 128 + value * table[k] * wave(p % 8, u) * wave(p / 8, v);
            const int x = static_cast<int>(i) % kAcross * 8 + p % 8;
            const int y = static_cast<int>(i) / kAcross * 8 + p / 8;
            std::uint8_t* pixel =
                picture.DIBits() +
                picture.BytesPerScanLine() * static_cast<std::size_t>(picture.Height() - 1 - y) +
                static_cast<std::size_t>(3 * x);
            std::fill_n(pixel, 3, static_cast<std::uint8_t>(std::lround(level)));
        }
    }
    cJpeg encoder = encoderFor({1, 1, 0, 0, 0, 0}, 50);
    ASSERT_EQ(encoder.SampleHDC(&picture, picture.Width(), picture.Height()), cJpeg::Sampled);
    const Bytes file = encode(encoder);
    const Coefficients found = readCoefficients(file);
    for (std::size_t i = 0; i < wanted.size(); ++i) {
        std::array<int, 64> expected{};
        expected[kZigzag[wanted[i].first]] = wanted[i].second;
        ASSERT_EQ(found.components[0].blocks[i], expected) << i;
    }
    for (const Segment& segment : segments(file)) {
        if (segment.marker == 0xC4) {
            const auto dcCodes = static_cast<std::size_t>(
                std::accumulate(segment.content.begin() + 1, segment.content.begin() + 17, 0));
            const std::size_t ac = 17 + dcCodes;
            ASSERT_EQ(segment.content[ac], 0x10);
            EXPECT_GE(segment.content[ac + 16], 4) << "codes of 16 bits";
        }
    }
}

} // namespace
} // namespace varnholt::test
