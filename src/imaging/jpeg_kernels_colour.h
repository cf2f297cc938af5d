#pragma once

// From pixels to luma and chroma, one pixel at a time: what every kernel set shares. Internal
// linkage for the reason given in jpeg_kernels_impl.h.

#include <cstdint>

namespace varnholt::jpeg {
namespace {

// 16-bit fractions of the conversion's factors, negated: −32768 fits the 16 bits that the
// vector multiplications take, 32768 would not. Green's are halved for the same reason, as it
// is multiplied twice. Each four add to −1 or 0 exactly.
constexpr int kLumaBlue = -7471;
constexpr int kLumaGreen[2] = {-19235, -19235};
constexpr int kLumaRed = -19595;
constexpr int kCbBlue = -32768;
constexpr int kCbGreen[2] = {10855, 10855};
constexpr int kCbRed = 11058;
constexpr int kCrBlue = 5329;
constexpr int kCrGreen[2] = {13720, 13719};
constexpr int kCrRed = -32768;
constexpr int kColourShift = 16;
constexpr int kChromaOffset = 1 << (kColourShift - 1);
constexpr int kLumaOffset = kChromaOffset - (128 << kColourShift);

inline std::int8_t lumaOf(int blue, int green, int red)
{
    const int sum = kLumaBlue * blue + (kLumaGreen[0] + kLumaGreen[1]) * green + kLumaRed * red;
    return static_cast<std::int8_t>((kLumaOffset - sum) >> kColourShift);
}

inline std::int8_t limited(int value)
{
    return static_cast<std::int8_t>(value > 127 ? 127 : value);
}

inline std::int8_t cbOf(int blue, int green, int red)
{
    const int sum = kCbBlue * blue + (kCbGreen[0] + kCbGreen[1]) * green + kCbRed * red;
    return limited((kChromaOffset - sum) >> kColourShift);
}

inline std::int8_t crOf(int blue, int green, int red)
{
    const int sum = kCrBlue * blue + (kCrGreen[0] + kCrGreen[1]) * green + kCrRed * red;
    return limited((kChromaOffset - sum) >> kColourShift);
}

inline void lumaSpan(const std::uint8_t* in, std::int32_t count, std::int8_t* y)
{
    for (std::int32_t i = 0; i < count; ++i, in += 3)
        y[i] = lumaOf(in[0], in[1], in[2]);
}

inline void chromaSpan(const std::uint8_t* in, std::int32_t count, std::int8_t* cb, std::int8_t* cr)
{
    for (std::int32_t i = 0; i < count; ++i, in += 3) {
        cb[i] = cbOf(in[0], in[1], in[2]);
        cr[i] = crOf(in[0], in[1], in[2]);
    }
}

inline void chromaSpan2x2(const std::uint8_t* upper, const std::uint8_t* lower, std::int32_t count,
                          std::int8_t* cb, std::int8_t* cr)
{
    for (std::int32_t i = 0; i < count; ++i, upper += 6, lower += 6) {
        int mean[3];
        for (int c = 0; c < 3; ++c)
            mean[c] = (upper[c] + upper[c + 3] + lower[c] + lower[c + 3] + 2) >> 2;
        cb[i] = cbOf(mean[0], mean[1], mean[2]);
        cr[i] = crOf(mean[0], mean[1], mean[2]);
    }
}

} // namespace
} // namespace varnholt::jpeg
