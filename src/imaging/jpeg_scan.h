#pragma once

#include "imaging/jpeg_huffman.h"
#include "imaging/jpeg_kernels.h"
#include "imaging/jpeg_sampler.h"
#include "imaging/jpeg_tables.h"

#include <functional>
#include <span>

namespace varnholt::jpeg {

/// Takes bytes of the file as they come; false when it cannot, which ends the encoding.
using ByteSink = std::function<bool(std::span<const std::uint8_t>)>;

/// Collects bytes into large pieces for a sink, and remembers a failure.
class ByteWriter
{
public:
    explicit ByteWriter(const ByteSink& sink);

    void put(std::initializer_list<int> bytes);
    void put(std::span<const std::uint8_t> bytes);
    /// Entropy-coded bytes: every FF is followed by a 00 (T.81 B.1.1.5).
    void putStuffed(const std::uint8_t* bytes, std::size_t count);
    /// Passes on what is left. False when the sink failed at any time.
    bool finish();
    bool failed() const { return m_failed; }

private:
    void makeRoom(std::size_t count);

    const ByteSink& m_sink;
    std::vector<std::uint8_t> m_buffer;
    std::size_t m_used = 0;
    bool m_failed = false;
};

/// The Huffman tables of one table number.
struct TablePair
{
    HuffmanList dc;
    HuffmanList ac;
};

/// The entropy-coded part of a picture: the first pass transforms and quantises every block
/// into tokens and counts the symbols, from which the tables are made; the second pass writes
/// the tokens. Tokens of the first pass are kept as long as they fit a buffer of a fraction
/// of the planes' size; those beyond are made a second time. So memory stays bounded even
/// for noise, whose tokens take more room than its samples.
///
/// Components are interleaved in one scan when an MCU may hold their blocks (up to ten, T.81
/// B.2.3), and get a scan each otherwise.
class EntropyCoder
{
public:
    /// `picture` must outlive the coder; `scales` has an entry for each table number.
    EntropyCoder(const SampledPicture& picture, std::span<const DctScale> scales);

    std::size_t scanCount() const { return m_scans.size(); }
    /// The numbers (0 to 2) of the components of a scan.
    std::vector<int> scanComponents(std::size_t scan) const;

    TablePair optimalTables(int table) const;

    /// Writes a scan's entropy-coded segment with the tables given, in their order.
    void writeScan(std::size_t scan, std::span<const TablePair> tables, ByteWriter& out) const;

private:
    struct Position
    {
        std::int32_t mcuRow = 0;
        std::int32_t mcu = 0;
        ScanState state;
    };
    struct Scan
    {
        int firstComponent = 0;
        int componentCount = 1;
        std::int32_t mcusWide = 0;
        std::int32_t mcusHigh = 0;
        int blocksInMcu = 0;
        std::size_t firstToken = 0;
        std::size_t tokenCount = 0; // kept ones
        Position resume;            // where the kept tokens end
    };

    void addScan(int firstComponent, int componentCount);
    void countAndKeep(Scan& scan);
    McuRow mcuRow(const Scan& scan, std::int32_t row) const;
    /// Tokenises MCUs from `position` on, as many as `out` has room for; returns the end.
    Token* advance(const Scan& scan, Position& position, std::uint64_t* counts, Token* out,
                   std::size_t room) const;

    const Kernels& m_kernels = kernels();
    const SampledPicture& m_picture;
    std::span<const DctScale> m_scales;
    std::vector<Scan> m_scans;
    std::unique_ptr<Token[]> m_tokens;
    std::size_t m_capacity = 0;
    std::size_t m_used = 0;
    bool m_keeping = true;
    std::uint64_t m_counts[kSymbols] = {};
};

/// 0 for Y, 1 for Cb and Cr: the number of a component's quantisation and Huffman tables.
constexpr int tableOf(int component)
{
    return component == 0 ? 0 : 1;
}

} // namespace varnholt::jpeg
