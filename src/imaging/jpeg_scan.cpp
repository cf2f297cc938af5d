#include "imaging/jpeg_scan.h"

#include <algorithm>
#include <cstring>

namespace varnholt::jpeg {

namespace {

constexpr std::size_t kWriterBytes = 8 * 1024;
/// A group of MCUs is tokenised at a time; this holds one of the largest MCUs at least.
constexpr std::ptrdiff_t kWorkTokens = 2048;
constexpr std::size_t kLeastCapacity = 4 * 1024;
/// Bytes of kept tokens against bytes of samples.
constexpr std::size_t kCapacityFactor = 3;
constexpr std::size_t kCapacityDivisor = 16;
constexpr int kMostBlocksInMcu = 10;

} // namespace

ByteWriter::ByteWriter(const ByteSink& sink)
    : m_sink(sink)
    , m_buffer(kWriterBytes)
{}

void ByteWriter::makeRoom(std::size_t count)
{
    if (m_buffer.size() - m_used >= count)
        return;
    if (!m_failed && m_used > 0)
        m_failed = !m_sink({m_buffer.data(), m_used});
    m_used = 0;
}

void ByteWriter::put(std::initializer_list<int> bytes)
{
    makeRoom(bytes.size());
    for (const int byte : bytes)
        m_buffer[m_used++] = static_cast<std::uint8_t>(byte);
}

void ByteWriter::put(std::span<const std::uint8_t> bytes)
{
    while (!bytes.empty()) {
        makeRoom(1);
        const std::size_t n = std::min(bytes.size(), m_buffer.size() - m_used);
        std::memcpy(m_buffer.data() + m_used, bytes.data(), n);
        m_used += n;
        bytes = bytes.subspan(n);
    }
}

void ByteWriter::putStuffed(const std::uint8_t* bytes, std::size_t count)
{
    constexpr std::uint64_t kLow = 0x7F7F7F7F7F7F7F7F;
    constexpr std::uint64_t kOnes = 0x0101010101010101;
    while (count > 0) {
        makeRoom(16);
        std::uint8_t* out = m_buffer.data() + m_used;
        std::uint8_t* const full = m_buffer.data() + m_buffer.size() - 16;
        while (count > 0 && out <= full) {
            if (count >= 8) {
                std::uint64_t eight;
                std::memcpy(&eight, bytes, 8);
                if ((((eight & kLow) + kOnes) & eight & ~kLow) == 0) {
                    std::memcpy(out, &eight, 8);
                    out += 8;
                    bytes += 8;
                    count -= 8;
                    continue;
                }
            }
            const std::size_t n = std::min<std::size_t>(count, 8);
            for (std::size_t i = 0; i < n; ++i) {
                *out++ = bytes[i];
                if (bytes[i] == 0xFF)
                    *out++ = 0;
            }
            bytes += n;
            count -= n;
        }
        m_used = static_cast<std::size_t>(out - m_buffer.data());
    }
}

bool ByteWriter::finish()
{
    makeRoom(m_buffer.size());
    return !m_failed;
}

EntropyCoder::EntropyCoder(const SampledPicture& picture, std::span<const DctScale> scales)
    : m_picture(picture)
    , m_scales(scales)
{
    std::size_t samples = 0;
    int blocks = 0;
    for (const ComponentPlane& plane : picture.components) {
        samples += 64 * static_cast<std::size_t>(plane.blocksWide) *
                   static_cast<std::size_t>(plane.blocksHigh);
        blocks += plane.factors.h * plane.factors.v;
    }
    m_capacity = (kLeastCapacity + samples / kCapacityDivisor * kCapacityFactor) / sizeof(Token);
    m_tokens = std::make_unique_for_overwrite<Token[]>(m_capacity);

    const int count = static_cast<int>(picture.components.size());
    if (count == 1 || blocks > kMostBlocksInMcu) {
        for (int c = 0; c < count; ++c)
            addScan(c, 1);
    } else {
        addScan(0, count);
    }
    for (Scan& scan : m_scans)
        countAndKeep(scan);
}

void EntropyCoder::addScan(int firstComponent, int componentCount)
{
    Scan scan;
    scan.firstComponent = firstComponent;
    scan.componentCount = componentCount;
    if (componentCount == 1) {
        // T.81 A.2.2: alone in its scan a component's MCU is one block.
        const ComponentPlane& plane =
            m_picture.components[static_cast<std::size_t>(firstComponent)];
        scan.mcusWide = plane.blocksWide;
        scan.mcusHigh = plane.blocksHigh;
        scan.blocksInMcu = 1;
    } else {
        const SamplingFactors most = m_picture.most;
        scan.mcusWide = (m_picture.width + 8 * most.h - 1) / (8 * most.h);
        scan.mcusHigh = (m_picture.height + 8 * most.v - 1) / (8 * most.v);
        for (const ComponentPlane& plane : m_picture.components)
            scan.blocksInMcu += plane.factors.h * plane.factors.v;
    }
    m_scans.push_back(scan);
}

std::vector<int> EntropyCoder::scanComponents(std::size_t scan) const
{
    std::vector<int> numbers;
    for (int i = 0; i < m_scans[scan].componentCount; ++i)
        numbers.push_back(m_scans[scan].firstComponent + i);
    return numbers;
}

McuRow EntropyCoder::mcuRow(const Scan& scan, std::int32_t row) const
{
    McuRow result;
    result.count = scan.componentCount;
    for (int i = 0; i < scan.componentCount; ++i) {
        const int number = scan.firstComponent + i;
        const ComponentPlane& plane = m_picture.components[static_cast<std::size_t>(number)];
        ScanComponent& component = result.components[i];
        if (scan.componentCount > 1) {
            component.h = plane.factors.h;
            component.v = plane.factors.v;
        }
        const std::int32_t blockRow = row * component.v;
        component.blocksWide = plane.blocksWide;
        component.blockRows = std::clamp(plane.blocksHigh - blockRow, 0, component.v);
        component.samples = component.blockRows > 0 ? plane.blockRow(blockRow) : nullptr;
        component.table = tableOf(number);
        component.scale = m_scales[static_cast<std::size_t>(component.table)].data();
    }
    return result;
}

Token* EntropyCoder::advance(const Scan& scan, Position& position, std::uint64_t* counts,
                             Token* out, std::size_t room) const
{
    const McuRow row = mcuRow(scan, position.mcuRow);
    const auto fitting = static_cast<std::int32_t>(std::min<std::size_t>(
        room / static_cast<std::size_t>(scan.blocksInMcu * kBlockTokens), INT32_MAX / 2));
    const std::int32_t last = std::min(scan.mcusWide, position.mcu + fitting);
    out = m_kernels.tokenise(row, position.mcu, last, position.state, counts, out);
    position.mcu = last;
    if (last == scan.mcusWide) {
        position.mcu = 0;
        ++position.mcuRow;
        if (position.mcuRow == scan.mcusHigh && position.state.open != 0) {
            const unsigned symbol = 256 * (position.state.open - 1);
            ++counts[symbol];
            *out++ = static_cast<Token>(symbol << kInlineBits);
        }
    }
    return out;
}

void EntropyCoder::countAndKeep(Scan& scan)
{
    Position position;
    scan.firstToken = m_used;
    const std::size_t mcuTokens = static_cast<std::size_t>(scan.blocksInMcu) * kBlockTokens;
    while (m_keeping && position.mcuRow < scan.mcusHigh) {
        if (m_capacity - m_used < mcuTokens) {
            m_keeping = false;
            break;
        }
        const Token* end =
            advance(scan, position, m_counts, m_tokens.get() + m_used, m_capacity - m_used);
        m_used = static_cast<std::size_t>(end - m_tokens.get());
    }
    scan.tokenCount = m_used - scan.firstToken;
    scan.resume = position;
    if (position.mcuRow == scan.mcusHigh)
        return;
    const auto work = std::make_unique_for_overwrite<Token[]>(kWorkTokens);
    while (position.mcuRow < scan.mcusHigh)
        advance(scan, position, m_counts, work.get(), kWorkTokens);
}

TablePair EntropyCoder::optimalTables(int table) const
{
    SymbolCounts dc{};
    SymbolCounts ac{};
    for (int symbol = 0; symbol < kSymbols; ++symbol) {
        const std::uint64_t count = m_counts[symbol];
        if (isDc(symbol) && (symbol & 15) - kDcMark == 1 + table)
            ac[0] += count; // closes a block of this table
        if (symbol / 256 != table)
            continue;
        if (isDc(symbol))
            dc[static_cast<std::size_t>(valueBits(symbol))] += count;
        else
            ac[static_cast<std::size_t>(symbol % 256)] += count;
    }
    return {optimalHuffmanList(dc), optimalHuffmanList(ac)};
}

namespace {

SymbolCodes symbolCodes(std::span<const TablePair> tables)
{
    std::array<HuffmanCode, 256> dc[2] = {};
    std::array<HuffmanCode, 256> ac[2] = {};
    for (std::size_t table = 0; table < tables.size(); ++table) {
        dc[table] = huffmanCodes(tables[table].dc);
        ac[table] = huffmanCodes(tables[table].ac);
    }
    SymbolCodes codes;
    for (int symbol = 0; symbol < kSymbols; ++symbol) {
        const auto table = static_cast<std::size_t>(symbol / 256);
        const int size = valueBits(symbol);
        HuffmanCode code = ac[table][static_cast<std::size_t>(symbol % 256)];
        HuffmanCode closing;
        if (isDc(symbol)) {
            code = dc[table][static_cast<std::size_t>(size)];
            const int open = (symbol & 15) - kDcMark;
            if (open > 0)
                closing = ac[open - 1][0];
        }
        const std::uint32_t bits = (std::uint32_t{closing.code} << code.length) | code.code;
        const int length = closing.length + code.length;
        codes.full[symbol] = (std::uint64_t{bits} << 8) | static_cast<unsigned>(length);
        if (size > kInlineBits || length + size > kQuickBits)
            codes.quick[symbol] = kNotQuick;
        else
            codes.quick[symbol] = (bits << (9 + size)) | static_cast<unsigned>(length + size);
    }
    return codes;
}

} // namespace

void EntropyCoder::writeScan(std::size_t number, std::span<const TablePair> tables,
                             ByteWriter& out) const
{
    const SymbolCodes codes = symbolCodes(tables);
    BitState bits;
    std::vector<std::uint8_t> raw(kWorkTokens * kTokenBytes + 16);
    const auto write = [&](const Token* tokens, const Token* end) {
        while (tokens < end && !out.failed()) {
            const Token* const pieceEnd =
                tokens + std::min<std::ptrdiff_t>(end - tokens, kWorkTokens);
            std::uint8_t* rawEnd = m_kernels.writeBits(tokens, pieceEnd, codes, bits, raw.data());
            out.putStuffed(raw.data(), static_cast<std::size_t>(rawEnd - raw.data()));
        }
    };

    const Scan& scan = m_scans[number];
    const Token* const kept = m_tokens.get() + scan.firstToken;
    write(kept, kept + scan.tokenCount);
    Position position = scan.resume;
    if (position.mcuRow < scan.mcusHigh) {
        const auto work = std::make_unique_for_overwrite<Token[]>(kWorkTokens);
        std::uint64_t counts[kSymbols] = {};
        while (position.mcuRow < scan.mcusHigh && !out.failed()) {
            const Token* end = advance(scan, position, counts, work.get(), kWorkTokens);
            write(work.get(), end);
        }
    }
    if (bits.count > 0) {
        // T.81 F.1.2.3: the last byte is filled up with ones.
        const unsigned fill = 8 - bits.count;
        const auto last = static_cast<std::uint8_t>((bits.bits << fill) | ((1U << fill) - 1U));
        out.putStuffed(&last, 1);
    }
}

} // namespace varnholt::jpeg
