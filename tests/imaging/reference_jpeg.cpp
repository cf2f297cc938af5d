#include "imaging/reference_jpeg.h"

#include "imaging/test_pictures.h"

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <numbers>
#include <stdexcept>

#include <jpeglib.h>

namespace varnholt::test {

namespace {

[[noreturn]] void raise(j_common_ptr info)
{
    char text[JMSG_LENGTH_MAX];
    info->err->format_message(info, text);
    throw std::runtime_error(text);
}

void raiseOnWarning(j_common_ptr info, int level)
{
    if (level < 0)
        raise(info);
}

struct Reader
{
    jpeg_decompress_struct info{};
    jpeg_error_mgr errors{};

    explicit Reader(const Bytes& file)
    {
        info.err = jpeg_std_error(&errors);
        errors.error_exit = raise;
        errors.emit_message = raiseOnWarning;
        jpeg_create_decompress(&info);
        jpeg_mem_src(&info, file.data(), file.size());
        jpeg_read_header(&info, TRUE);
    }
    ~Reader() { jpeg_destroy_decompress(&info); }
    Reader(const Reader&) = delete;
    Reader& operator=(const Reader&) = delete;
};

using Block = std::array<double, 64>;

/// T.81 A.3.3, one dimension after the other.
Block transformed(const Block& samples)
{
    static const auto basis = [] {
        Block table{};
        for (std::size_t u = 0; u < 8; ++u)
            for (std::size_t x = 0; x < 8; ++x)
                table[8 * u + x] = (u == 0 ? std::sqrt(0.125) : 0.5) *
                                   std::cos((2.0 * static_cast<double>(x) + 1) *
                                            static_cast<double>(u) * std::numbers::pi / 16);
        return table;
    }();
    Block rows{};
    Block result{};
    for (std::size_t y = 0; y < 8; ++y)
        for (std::size_t u = 0; u < 8; ++u)
            for (std::size_t x = 0; x < 8; ++x)
                rows[8 * y + u] += samples[8 * y + x] * basis[8 * u + x];
    for (std::size_t v = 0; v < 8; ++v)
        for (std::size_t u = 0; u < 8; ++u)
            for (std::size_t y = 0; y < 8; ++y)
                result[8 * v + u] += rows[8 * y + u] * basis[8 * v + y];
    return result;
}

/// Mean colour of what sample (x, y) covers: from·x/to to from·(x+1)/to across, and down.
struct Area
{
    int fromX, toX, fromY, toY;
};

double overlap(int pixel, int sample, int from, int to, int size)
{
    const double begin = static_cast<double>(sample) * from / to;
    const double end = static_cast<double>(sample + 1) * from / to;
    const double low = std::max<double>(begin, pixel);
    const double high = pixel == size - 1 ? end : std::min<double>(end, pixel + 1);
    return std::max(0.0, high - low);
}

struct SampleValue
{
    double value;
    bool nearTie; // so near to a half that it may well be rounded the other way
};

SampleValue sampleAt(const Coefficients& file, const BitmapView& picture, int left, int top,
                     const Area& area, std::size_t component, int x, int y)
{
    std::array<double, 3> mean{};
    double weights = 0;
    const int firstX = std::min(x * area.fromX / area.toX, file.width - 1);
    const int firstY = std::min(y * area.fromY / area.toY, file.height - 1);
    for (int py = firstY; py < file.height && py * area.toY < (y + 1) * area.fromY; ++py) {
        for (int px = firstX; px < file.width && px * area.toX < (x + 1) * area.fromX; ++px) {
            const double weight = overlap(px, x, area.fromX, area.toX, file.width) *
                                  overlap(py, y, area.fromY, area.toY, file.height);
            const bool inside = left + px >= 0 && top + py >= 0 && left + px < picture.width &&
                                top + py < picture.height;
            const Bgr colour = inside ? colourAt(picture, left + px, top + py) : Bgr{};
            mean[0] += weight * colour.red;
            mean[1] += weight * colour.green;
            mean[2] += weight * colour.blue;
            weights += weight;
        }
    }
    for (double& value : mean)
        value = std::floor(value / weights + 0.5 + 1e-9);
    static constexpr double kFactors[3][3] = {
        {0.299, 0.587, 0.114}, {-0.16874, -0.33126, 0.5}, {0.5, -0.41869, -0.08131}};
    const auto& factors = kFactors[component];
    const double value = factors[0] * mean[0] + factors[1] * mean[1] + factors[2] * mean[2];
    const double shift = component == 0 ? 128 : 0;
    const double rounded = std::floor(value + 0.5);
    return {std::min(rounded - shift, 127.0), std::abs(std::abs(value - rounded) - 0.5) < 0.005};
}

} // namespace

Bytes encode(const cJpeg& encoder)
{
    Bytes file;
    const auto result = encoder.Encode([&](std::span<const std::uint8_t> bytes) {
        file.insert(file.end(), bytes.begin(), bytes.end());
        return true;
    });
    if (result != cJpeg::Written)
        throw std::runtime_error("not encoded");
    return file;
}

Decoded decode(const Bytes& file)
{
    Reader reader(file);
    reader.info.out_color_space = JCS_EXT_BGR;
    jpeg_start_decompress(&reader.info);
    Decoded result;
    result.width = static_cast<int>(reader.info.output_width);
    result.height = static_cast<int>(reader.info.output_height);
    const std::size_t rowBytes = std::size_t{reader.info.output_width} * 3;
    result.pixels.resize(rowBytes * reader.info.output_height);
    while (reader.info.output_scanline < reader.info.output_height) {
        JSAMPROW row = result.pixels.data() + rowBytes * reader.info.output_scanline;
        jpeg_read_scanlines(&reader.info, &row, 1);
    }
    jpeg_finish_decompress(&reader.info);
    return result;
}

Coefficients readCoefficients(const Bytes& file)
{
    Reader reader(file);
    jpeg_decompress_struct& info = reader.info;
    jvirt_barray_ptr* arrays = jpeg_read_coefficients(&info);
    Coefficients result;
    result.width = static_cast<int>(info.image_width);
    result.height = static_cast<int>(info.image_height);
    for (int c = 0; c < info.num_components; ++c) {
        const jpeg_component_info& from = info.comp_info[c];
        Coefficients::Component component;
        component.h = from.h_samp_factor;
        component.v = from.v_samp_factor;
        component.blocksWide = static_cast<int>(from.width_in_blocks);
        component.blocksHigh = static_cast<int>(from.height_in_blocks);
        std::copy_n(from.quant_table->quantval, 64, component.table.begin());
        for (int y = 0; y < component.blocksHigh; ++y) {
            JBLOCKARRAY rows =
                info.mem->access_virt_barray(reinterpret_cast<j_common_ptr>(&info), arrays[c],
                                             static_cast<JDIMENSION>(y), 1, FALSE);
            for (int x = 0; x < component.blocksWide; ++x) {
                std::array<int, 64> block{};
                std::copy_n(rows[0][x], 64, block.begin());
                component.blocks.push_back(block);
            }
        }
        result.components.push_back(std::move(component));
    }
    jpeg_finish_decompress(&info);
    return result;
}

void checkCoefficients(const Coefficients& file, const BitmapView& picture, int left, int top)
{
    int mostH = 1;
    int mostV = 1;
    for (const Coefficients::Component& component : file.components) {
        mostH = std::max(mostH, component.h);
        mostV = std::max(mostV, component.v);
    }
    for (std::size_t c = 0; c < file.components.size(); ++c) {
        const Coefficients::Component& component = file.components[c];
        const Area area{mostH, component.h, mostV, component.v};
        const int width = (file.width * component.h + mostH - 1) / mostH;
        const int height = (file.height * component.v + mostV - 1) / mostV;
        for (std::size_t b = 0; b < component.blocks.size(); ++b) {
            const int blockX = static_cast<int>(b) % component.blocksWide;
            const int blockY = static_cast<int>(b) / component.blocksWide;
            Block samples{};
            int nearTies = 0;
            for (int i = 0; i < 64; ++i) {
                const int x = std::min(8 * blockX + i % 8, width - 1);
                const int y = std::min(8 * blockY + i / 8, height - 1);
                const SampleValue sample = sampleAt(file, picture, left, top, area, c, x, y);
                samples[static_cast<std::size_t>(i)] = sample.value;
                nearTies += sample.nearTie ? 1 : 0;
            }
            const Block expected = transformed(samples);
            for (std::size_t i = 0; i < 64; ++i) {
                // A sample rounded the other way moves a coefficient by a quarter at most.
                const double step = component.table[i];
                const double found = component.blocks[b][i] * step;
                if (std::abs(found - expected[i]) > step / 2 + 0.25 * nearTies + 0.01)
                    throw std::runtime_error("component " + std::to_string(c) + ", block " +
                                             std::to_string(b) + ", coefficient " +
                                             std::to_string(i) + ": " + std::to_string(found) +
                                             " instead of " + std::to_string(expected[i]));
            }
        }
    }
}

std::vector<Segment> segments(const Bytes& file)
{
    std::vector<Segment> result;
    std::size_t at = 0;
    while (at + 1 < file.size()) {
        if (file[at] != 0xFF)
            throw std::runtime_error("no marker where one must be");
        Segment segment{file[at + 1], {}};
        at += 2;
        const bool alone = segment.marker == 0xD8 || segment.marker == 0xD9;
        if (!alone) {
            const std::size_t length = static_cast<std::size_t>(file.at(at) << 8) + file.at(at + 1);
            segment.content.assign(reinterpret_cast<const char*>(&file.at(at + 2)), length - 2);
            at += length;
        }
        while (segment.marker == 0xDA && (file.at(at) != 0xFF || file.at(at + 1) == 0))
            ++at;
        result.push_back(std::move(segment));
    }
    if (at != file.size())
        throw std::runtime_error("bytes after the end");
    return result;
}

} // namespace varnholt::test
