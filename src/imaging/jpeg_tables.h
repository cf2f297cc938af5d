#pragma once

#include <array>
#include <cstdint>
#include <stdexcept>

namespace varnholt {

/// An error of the encoder's, with the number and the text a caller may show.
class cJpegError : public std::runtime_error
{
public:
    static constexpr int kNumber = 1;

    explicit cJpegError(const char* text)
        : std::runtime_error(text)
    {}
    int number() const { return kNumber; }
};

/// 64 entries in zigzag order.
using QuantTable = std::array<std::uint16_t, 64>;

/// Walks the zigzag path of ITU-T T.81, figure 5: entry k is the place (8·row + column) of
/// the k-th coefficient.
constexpr std::array<std::uint8_t, 64> walkZigzag()
{
    std::array<std::uint8_t, 64> order{};
    int row = 0;
    int column = 0;
    for (std::uint8_t& place : order) {
        place = static_cast<std::uint8_t>(8 * row + column);
        const bool upwards = (row + column) % 2 == 0;
        if (upwards ? column == 7 : row == 7)
            ++(upwards ? row : column);
        else if (upwards ? row == 0 : column == 0)
            ++(upwards ? column : row);
        else {
            row += upwards ? -1 : 1;
            column += upwards ? 1 : -1;
        }
    }
    return order;
}

inline constexpr std::array<std::uint8_t, 64> kZigzag = walkZigzag();

/// The example tables of T.81 Annex K, K.1 (luminance) for 0, K.2 (chrominance) for 1.
const QuantTable& baseQuantTable(int number);

/// A base table for `quality` 1 to 100: entries (base·scale + 50) / 100 to the nearest whole
/// number, halves to even, limited to 1…255. scale is 200 − 2·quality from 50 on, below that
/// 5000 / quality to the nearest whole number. Rounding after adding 50 is meant: entries
/// come out up to one higher than by the usual rule.
QuantTable scaledQuantTable(const QuantTable& base, int quality);

/// What the output of the unnormalised AAN transform is multiplied with to be quantised.
/// Transposed: entry 8·u + v belongs to horizontal frequency u and vertical frequency v.
/// Raises "Bad Quantization Table" for a table with a zero.
using DctScale = std::array<float, 64>;
DctScale dctScale(const QuantTable& table);

} // namespace varnholt
