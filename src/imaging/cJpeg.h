#pragma once

#include "imaging/jpeg_sampler.h"
#include "imaging/jpeg_scan.h"
#include "imaging/jpeg_tables.h"

#include <filesystem>
#include <optional>
#include <string>

namespace varnholt {

/// Turns the pixels of a drawing context into a baseline JPEG file: JFIF, 8 bits, Huffman
/// tables made for the picture. One object may encode any number of pictures one after
/// another; each takes the quality and the comment as they are when it is written.
///
/// Errors of use are raised as cJpegError; everything else is a result code.
class cJpeg
{
public:
    /// Results of SampleHDC.
    enum SampleResult : std::int32_t
    {
        Sampled = 0,
        NoContext = 1, ///< a null or empty context
        BadSize = 2,   ///< width and height must be 1 to 65535, what the format can hold
        NoMemoryToSample = 3,
    };

    /// Results of SaveFile and Encode.
    enum SaveResult : std::int32_t
    {
        Written = 0,
        EmptyName = 1,
        FileExists = 2,     ///< whatever has the name: a file, a folder, a link
        NothingSampled = 3, ///< SampleHDC has not succeeded yet
        CannotCreate = 4,   ///< no such folder, or it takes no files
        NotWritten = 5,     ///< the disk is full or has failed; nothing is left behind
        NoMemoryToSave = 6,
    };

    /// Sampling 2×2, 1×1, 1×1; quality 75; no comment.
    cJpeg();

    /// 1 to 100; other values are ignored.
    void Quality(std::int32_t value);
    std::int32_t Quality() const { return m_quality; }

    /// Factors of Y, Cb and Cr, for the next SampleHDC. Each is 1 to 4, or raises "Invalid
    /// Sampling Value"; all four of Cb and Cr 0 make a grey picture. With more than ten
    /// blocks in an MCU the file gets a scan for each component instead of one for all.
    /// Ratios such as 3 to 2 make a valid file that some common decoders refuse.
    void SetSamplingFrequencies(std::int32_t H1, std::int32_t V1, std::int32_t H2, std::int32_t V2,
                                std::int32_t H3, std::int32_t V3);

    /// Copies the region's pixels; the context is not needed afterwards. On failure the
    /// object holds no picture.
    SampleResult SampleHDC(const DeviceContext* hDC, std::int32_t width, std::int32_t height,
                           std::int32_t left = 0, std::int32_t top = 0);

    /// Up to 65535 bytes, UTF-8 by convention; a longer one raises "Illegal Comment Length"
    /// and changes nothing. A COM segment holds 65533, so the longest go into two.
    void Comment(std::string text);
    const std::string& Comment() const { return m_comment; }

    /// Writes the file, which appears under its name only when it is complete, and never in
    /// the place of another.
    SaveResult SaveFile(const std::filesystem::path& name) const;

    /// The same bytes into `sink`, in pieces of some kilobytes; NotWritten when it fails.
    SaveResult Encode(const jpeg::ByteSink& sink) const;

private:
    std::int32_t m_quality = 0;
    std::vector<SamplingFactors> m_factors;
    std::string m_comment;
    std::array<QuantTable, 2> m_tables{};
    std::array<DctScale, 2> m_scales{};
    std::optional<SampledPicture> m_picture;
};

} // namespace varnholt
