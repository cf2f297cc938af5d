#include "imaging/reference_jpeg.h"
#include "imaging/test_pictures.h"

#include <gtest/gtest.h>

#include <utility>

namespace varnholt::test {
namespace {

using Factors = std::array<int, 6>;

cJpeg encoderFor(const Factors& f, int quality)
{
    cJpeg encoder;
    encoder.SetSamplingFrequencies(f[0], f[1], f[2], f[3], f[4], f[5]);
    encoder.Quality(quality);
    return encoder;
}

TEST(Encode, EveryCoefficientIsRightAndEveryByteTheSameEverywhere)
{
    constexpr Factors kSamplings[] = {
        {1, 1, 0, 0, 0, 0}, {1, 1, 1, 1, 1, 1}, {2, 1, 1, 1, 1, 1}, {1, 2, 1, 1, 1, 1},
        {4, 1, 1, 1, 1, 1}, {2, 2, 1, 1, 1, 1}, {2, 2, 2, 1, 2, 1}, {2, 2, 2, 1, 1, 2},
        {1, 1, 2, 2, 1, 1}, {4, 2, 1, 1, 1, 1}, {4, 4, 1, 1, 1, 1}, {4, 4, 4, 4, 4, 4},
        {3, 3, 1, 1, 1, 1}, {3, 2, 2, 1, 1, 1}, {2, 3, 3, 2, 1, 1}, {4, 3, 3, 4, 2, 1}};
    constexpr std::pair<int, int> kSizes[] = {{1, 1},   {2, 3},  {8, 8},  {17, 15},
                                              {31, 34}, {1, 40}, {83, 2}, {139, 71}};
    std::uint64_t checksum = 0xCBF29CE484222325; // FNV-1a
    int turn = 0;
    for (const Factors& f : kSamplings) {
        for (const auto& [width, height] : kSizes) {
            for (const int quality : {1, 50, 75, 100}) {
                SCOPED_TRACE(testing::Message() << testing::PrintToString(f) << " " << width << "x"
                                                << height << ", quality " << quality);
                const auto kind = static_cast<Kind>((turn + turn / 4) % 4);
                ++turn;
                const DeviceContext picture = makePicture(kind, width, height, 3);
                cJpeg encoder = encoderFor(f, quality);
                Bytes file;
                ASSERT_NO_THROW(file = encode(encoder, picture, {width, height}));
                ASSERT_NO_THROW(check(file, picture, {width, height}));
                const auto components = readCoefficients(file);
                for (std::size_t c = 0; c < components.size() && f[2] > 0; ++c)
                    ASSERT_EQ(std::pair(components[c].h, components[c].v),
                              std::pair(f[2 * c], f[2 * c + 1]));
                for (const std::uint8_t byte : file)
                    checksum = (checksum ^ byte) * 0x100000001B3;
            }
        }
    }
    EXPECT_EQ(checksum, 16249782055156982383U) << "other bytes than in other builds";
}

TEST(Encode, TheLongestSidesAndMuchNoiseWorkAndLongerSidesAreRefused)
{
    cJpeg encoder;
    // libjpeg-turbo reads up to 65500 and no more; beyond that the frame header must do. The
    // noise is more than the token buffer holds.
    for (const auto& [width, height, kind, f] :
         {std::tuple(65500, 3, Kind::Smooth, Factors{2, 2, 1, 1, 1, 1}),
          {3, 65500, Kind::Smooth, Factors{2, 2, 1, 1, 1, 1}},
          {403, 301, Kind::Noise, Factors{2, 2, 1, 1, 1, 1}},
          {403, 301, Kind::Noise, Factors{4, 4, 4, 4, 4, 4}}}) {
        const DeviceContext picture = makePicture(kind, width, height);
        cJpeg large = encoderFor(f, kind == Kind::Noise ? 100 : 75);
        check(encode(large, picture, {width, height}), picture, {width, height});
    }
    const DeviceContext wide = makePicture(Kind::Flat, 65536, 1);
    const Bytes longest = encode(encoder, wide, {65535, 1});
    EXPECT_EQ(segments(longest).at(5).content.substr(0, 5), std::string("\x08\0\1\xFF\xFF", 5));
    const Bytes highest = encode(encoder, wide, {1, 65535});
    EXPECT_EQ(segments(highest).at(5).content.substr(0, 5), std::string("\x08\xFF\xFF\0\1", 5));
    EXPECT_EQ(encoder.SampleHDC(&wide, 65536, 1), cJpeg::BadSize);
    EXPECT_EQ(encoder.Encode([](auto) { return true; }), cJpeg::NothingSampled)
        << "of the picture before nothing must be left";
    EXPECT_EQ(encoder.SampleHDC(&wide, 1, 65536), cJpeg::BadSize);
    EXPECT_EQ(encoder.SampleHDC(&wide, 0, 1), cJpeg::BadSize);
    EXPECT_EQ(encoder.SampleHDC(nullptr, 1, 1), cJpeg::NoContext);
}

TEST(Encode, AnyPartOfAnyContextIsSampled)
{
    cJpeg encoder;
    for (const int bits : {1, 4, 8, 24}) {
        const DeviceContext picture = makeNoise(40, 30, bits);
        for (const Region& region : {Region{40, 30, 0, 0}, Region{21, 18, 3, 5},
                                     Region{20, 20, -4, -3}, Region{33, 17, 30, 20}}) {
            EXPECT_NO_THROW(check(encode(encoder, picture, region), picture, region))
                << bits << " bits at " << region.left << ", " << region.top;
        }
    }
}

} // namespace
} // namespace varnholt::test
