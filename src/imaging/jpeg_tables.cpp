#include "imaging/jpeg_tables.h"

#include <algorithm>
#include <cstddef>

namespace varnholt {

namespace {

// Row by row, as printed in the standard.
constexpr std::uint8_t kLuminance[64] = {
    16, 11, 10, 16, 24,  40,  51,  61,  //
    12, 12, 14, 19, 26,  58,  60,  55,  //
    14, 13, 16, 24, 40,  57,  69,  56,  //
    14, 17, 22, 29, 51,  87,  80,  62,  //
    18, 22, 37, 56, 68,  109, 103, 77,  //
    24, 35, 55, 64, 81,  104, 113, 92,  //
    49, 64, 78, 87, 103, 121, 120, 101, //
    72, 92, 95, 98, 112, 100, 103, 99,
};
constexpr std::uint8_t kChrominance[64] = {
    17, 18, 24, 47, 99, 99, 99, 99, //
    18, 21, 26, 66, 99, 99, 99, 99, //
    24, 26, 56, 99, 99, 99, 99, 99, //
    47, 66, 99, 99, 99, 99, 99, 99, //
    99, 99, 99, 99, 99, 99, 99, 99, //
    99, 99, 99, 99, 99, 99, 99, 99, //
    99, 99, 99, 99, 99, 99, 99, 99, //
    99, 99, 99, 99, 99, 99, 99, 99,
};

QuantTable inZigzag(const std::uint8_t (&rows)[64])
{
    QuantTable table{};
    for (std::size_t k = 0; k < 64; ++k)
        table[k] = rows[kZigzag[k]];
    return table;
}

int roundedQuotient(int dividend, int divisor)
{
    const int quotient = dividend / divisor;
    const int rest = dividend % divisor;
    const bool up = 2 * rest > divisor || (2 * rest == divisor && quotient % 2 != 0);
    return quotient + (up ? 1 : 0);
}

// factor[0] = 1/(2√2), factor[k] = 1/(4·cos(kπ/16)): turns the AAN output into the DCT.
constexpr double kAanFactors[8] = {0.353553390593273, 0.25489778955208,  0.270598050073098,
                                   0.300672443467523, 0.353553390593273, 0.449988111568207,
                                   0.653281482438186, 1.28145772387074};

} // namespace

const QuantTable& baseQuantTable(int number)
{
    static const QuantTable tables[2] = {inZigzag(kLuminance), inZigzag(kChrominance)};
    return tables[number];
}

QuantTable scaledQuantTable(const QuantTable& base, int quality)
{
    const int scale = quality >= 50 ? 200 - 2 * quality : roundedQuotient(5000, quality);
    QuantTable table{};
    std::transform(base.begin(), base.end(), table.begin(), [scale](std::uint16_t entry) {
        const int value = roundedQuotient(entry * scale + 50, 100);
        return static_cast<std::uint16_t>(std::clamp(value, 1, 255));
    });
    return table;
}

DctScale dctScale(const QuantTable& table)
{
    DctScale scale{};
    for (std::size_t k = 0; k < 64; ++k) {
        if (table[k] == 0)
            throw cJpegError("Bad Quantization Table");
        const std::size_t v = kZigzag[k] / 8;
        const std::size_t u = kZigzag[k] % 8;
        scale[8 * u + v] = static_cast<float>(kAanFactors[u] * kAanFactors[v] / table[k]);
    }
    return scale;
}

} // namespace varnholt
