#include "presentation/pptx/quick_deflate.h"

#include <QtEndian>

#include <algorithm>
#include <bit>

namespace varnholt {

namespace {

constexpr qsizetype shortestMatch = 4;
constexpr qsizetype longestMatch = 258;
constexpr quint32 farthestMatch = 32'768;
constexpr quint32 endOfBlock = 256;

/// Bits of the stream, the first one lowest.
struct Code
{
    quint32 bits = 0;
    int count = 0;
};

constexpr Code reversed(quint32 bits, int count)
{
    Code code{0, count};
    for (int i = 0; i < count; ++i) {
        code.bits = code.bits << 1 | (bits >> i & 1);
    }
    return code;
}

/// RFC 1951 3.2.6.
constexpr Code symbolCode(quint32 symbol)
{
    return symbol < 144   ? reversed(0x30 + symbol, 8)
           : symbol < 256 ? reversed(0x190 + symbol - 144, 9)
           : symbol < 280 ? reversed(symbol - 256, 7)
                          : reversed(0xC0 + symbol - 280, 8);
}

/// The tables of 3.2.5: of `value` the highest bit and `more` bits after it choose the symbol,
/// counted from `first`; those below are extra bits.
struct Split
{
    quint32 symbol = 0;
    Code extra;
};

constexpr Split split(quint32 value, int more)
{
    const int extra = std::max(int(std::bit_width(value)) - 1 - more, 0);
    return {(quint32(extra) << more) + (value >> extra), {value & ((1U << extra) - 1), extra}};
}

constexpr Code joined(const Code& first, const Code& second)
{
    return {first.bits | second.bits << first.count, first.count + second.count};
}

constexpr auto literalCodes = [] {
    std::array<Code, 256> codes;
    for (quint32 byte = 0; byte < codes.size(); ++byte) {
        codes[byte] = symbolCode(byte);
    }
    return codes;
}();

constexpr auto lengthCodes = [] {
    std::array<Code, longestMatch + 1> codes;
    for (quint32 length = 3; length < longestMatch; ++length) {
        const Split parts = split(length - 3, 2);
        codes[length] = joined(symbolCode(257 + parts.symbol), parts.extra);
    }
    codes[longestMatch] = symbolCode(285);
    return codes;
}();

constexpr auto distanceCodes = [] {
    std::array<Code, 30> codes;
    for (quint32 symbol = 0; symbol < codes.size(); ++symbol) {
        codes[symbol] = reversed(symbol, 5);
    }
    return codes;
}();

Code distanceCode(quint32 distance)
{
    const Split parts = split(distance - 1, 1);
    return joined(distanceCodes[parts.symbol], parts.extra);
}

/// Of bytes that repeat those so far before them; no farther than `most`.
const char* endOfMatch(const char* at, const char* most, quint32 distance)
{
    constexpr int step = sizeof(quint64);
    for (; most - at >= step; at += step) {
        const quint64 differences =
            qFromLittleEndian<quint64>(at) ^ qFromLittleEndian<quint64>(at - distance);
        if (differences != 0) {
            return at + std::countr_zero(differences) / 8;
        }
    }
    return std::mismatch(at, most, at - distance).first;
}

} // namespace

/// Whole bytes go to memory, up to seven bits wait for more.
class QuickDeflate::Stream
{
public:
    explicit Stream(char* to, quint64 bits = 0, int count = 0)
        : to_(to)
        , bits_(bits)
        , count_(count)
    {}

    void put(const Code& code)
    {
        bits_ |= quint64{code.bits} << count_;
        count_ += code.count;
        qToLittleEndian(bits_, to_);
        to_ += count_ / 8;
        bits_ >>= count_ / 8 * 8;
        count_ %= 8;
    }
    [[nodiscard]] char* end() const { return to_; }
    [[nodiscard]] quint64 bits() const { return bits_; }
    [[nodiscard]] int count() const { return count_; }

private:
    char* to_;
    quint64 bits_;
    int count_;
};

/// What stands before `from` has been written.
void QuickDeflate::putRange(Stream& stream, QByteArrayView bytes, qsizetype from)
{
    // In registers.
    Stream out = stream;
    const char* const begin = bytes.data();
    const char* const end = begin + bytes.size();
    const char* at = begin + from;
    while (end - at >= shortestMatch) {
        const auto four = qFromUnaligned<quint32>(at);
        const size_t hash = four * 2'654'435'761U >> (32 - hashBits);
        const auto here = quint32(at - begin);
        const quint32 place = places_[hash] - start_;
        const quint32 distance = here - (place < here ? place : begunPlaces_[hash]);
        places_[hash] = start_ + here;
        if (distance - 1 < std::min(here, farthestMatch) &&
            qFromUnaligned<quint32>(at - distance) == four) {
            const char* const most = at + std::min<qsizetype>(end - at, longestMatch);
            const char* const after = endOfMatch(at + shortestMatch, most, distance);
            out.put(joined(lengthCodes[size_t(after - at)], distanceCode(distance)));
            at = after;
        } else {
            out.put(literalCodes[quint8(*at++)]);
        }
    }
    while (at < end) {
        out.put(literalCodes[quint8(*at++)]);
    }
    stream = out;
    start_ += quint32(bytes.size());
}

void QuickDeflate::learnFrom(QByteArrayView bytes)
{
    if (learnt_ && bytes.startsWith(beginning_)) {
        return;
    }
    const qsizetype same = learnt_ ? std::mismatch(beginning_.cbegin(), beginning_.cend(),
                                                   bytes.cbegin(), bytes.cend())
                                             .first -
                                         beginning_.cbegin()
                                   : bytes.size();
    constexpr Code lastBlockOfFixedCodes{0b011, 3};
    learnt_ = true;
    beginning_ = bytes.first(same).toByteArray();
    begun_.resize(mostFor(same));
    begunPlaces_ = {};
    places_ = {};
    start_ = 0;
    Stream stream(begun_.data());
    stream.put(lastBlockOfFixedCodes);
    putRange(stream, beginning_, 0);
    begunPlaces_ = places_;
    begun_.truncate(stream.end() - begun_.constData());
    begunBits_ = stream.bits();
    begunCount_ = stream.count();
}

char* QuickDeflate::deflate(QByteArrayView bytes, char* to)
{
    learnFrom(bytes);
    Stream stream(std::copy(begun_.cbegin(), begun_.cend(), to), begunBits_, begunCount_);
    putRange(stream, bytes, beginning_.size());
    stream.put(symbolCode(endOfBlock));
    return stream.end() + (stream.count() > 0 ? 1 : 0);
}

} // namespace varnholt
