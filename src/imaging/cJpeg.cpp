#include "imaging/cJpeg.h"

#include "files/NewFile.h"
#include "imaging/jpeg_markers.h"

#include <algorithm>
#include <initializer_list>
#include <new>

namespace varnholt {

namespace {

constexpr std::int32_t kLargestSide = 65535;
constexpr std::size_t kLongestComment = 65535;
constexpr std::int32_t kDefaultQuality = 75;

constexpr std::string_view kAuthorText = "JPEG Encoder Class\r\n"
                                         "Varnholt question libraries\r\n"
                                         "Baseline DCT, optimised Huffman tables";

bool allValid(std::initializer_list<std::int32_t> factors)
{
    return std::all_of(factors.begin(), factors.end(),
                       [](std::int32_t f) { return f >= 1 && f <= 4; });
}

SamplingFactors pairOf(std::int32_t h, std::int32_t v)
{
    return {static_cast<int>(h), static_cast<int>(v)};
}

} // namespace

cJpeg::cJpeg()
{
    SetSamplingFrequencies(2, 2, 1, 1, 1, 1);
    Quality(kDefaultQuality);
}

void cJpeg::Quality(std::int32_t value)
{
    if (value < 1 || value > 100)
        return;
    m_quality = value;
    for (std::size_t i = 0; i < m_tables.size(); ++i) {
        m_tables[i] = scaledQuantTable(baseQuantTable(static_cast<int>(i)), value);
        m_scales[i] = dctScale(m_tables[i]);
    }
}

void cJpeg::SetSamplingFrequencies(std::int32_t H1, std::int32_t V1, std::int32_t H2,
                                   std::int32_t V2, std::int32_t H3, std::int32_t V3)
{
    if (!allValid({H1, V1}))
        throw cJpegError("Invalid Sampling Value");
    if (H2 == 0 && V2 == 0 && H3 == 0 && V3 == 0) {
        m_factors = {pairOf(1, 1)};
        return;
    }
    if (!allValid({H2, V2, H3, V3}))
        throw cJpegError("Invalid Sampling Value");
    m_factors = {pairOf(H1, V1), pairOf(H2, V2), pairOf(H3, V3)};
}

cJpeg::SampleResult cJpeg::SampleHDC(const DeviceContext* hDC, std::int32_t width,
                                     std::int32_t height, std::int32_t left, std::int32_t top)
{
    m_picture.reset();
    if (!hDC || !hDC->DIBits())
        return NoContext;
    if (width < 1 || height < 1 || width > kLargestSide || height > kLargestSide)
        return BadSize;
    try {
        m_picture = sampleContext(*hDC, left, top, width, height, m_factors);
    } catch (const std::bad_alloc&) {
        return NoMemoryToSample;
    }
    return Sampled;
}

void cJpeg::Comment(std::string text)
{
    if (text.size() > kLongestComment)
        throw cJpegError("Illegal Comment Length");
    m_comment = std::move(text);
}

cJpeg::SaveResult cJpeg::SaveFile(const std::filesystem::path& name) const
{
    if (name.empty())
        return EmptyName;
    std::error_code error;
    if (std::filesystem::exists(std::filesystem::symlink_status(name, error)))
        return FileExists;
    if (!m_picture)
        return NothingSampled;
    NewFile file(name);
    if (!file.isOpen())
        return CannotCreate;
    const SaveResult encoded =
        Encode([&file](std::span<const std::uint8_t> bytes) { return file.write(bytes); });
    if (encoded != Written)
        return encoded;
    switch (file.finish()) {
    case NewFile::Outcome::Done:
        return Written;
    case NewFile::Outcome::NameTaken:
        return FileExists;
    case NewFile::Outcome::NotWritten:
        break;
    }
    return NotWritten;
}

cJpeg::SaveResult cJpeg::Encode(const jpeg::ByteSink& sink) const
try {
    if (!m_picture)
        return NothingSampled;
    const jpeg::EntropyCoder coder(*m_picture, m_scales);
    std::vector<jpeg::TablePair> tables;
    tables.push_back(coder.optimalTables(0));
    if (m_picture->components.size() > 1)
        tables.push_back(coder.optimalTables(1));

    jpeg::ByteWriter out(sink);
    jpeg::writeStart(out);
    jpeg::writeComment(out, m_comment);
    jpeg::writeComment(out, kAuthorText);
    for (std::size_t i = 0; i < tables.size(); ++i)
        jpeg::writeQuantTable(out, static_cast<int>(i), m_tables[i]);
    jpeg::writeFrame(out, *m_picture);
    for (std::size_t i = 0; i < tables.size(); ++i)
        jpeg::writeHuffmanTables(out, static_cast<int>(i), tables[i]);
    for (std::size_t scan = 0; scan < coder.scanCount(); ++scan) {
        jpeg::writeScanHeader(out, coder.scanComponents(scan));
        coder.writeScan(scan, tables, out);
    }
    jpeg::writeEnd(out);
    return out.finish() ? Written : NotWritten;
} catch (const std::bad_alloc&) {
    return NoMemoryToSave;
}

} // namespace varnholt
