#include "imaging/reference_jpeg.h"

#include "imaging/test_pictures.h"

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <numbers>
#include <stdexcept>
#include <utility>

#include <jpeglib.h>

namespace varnholt::test {

namespace {

void require(bool condition, const std::string& what)
{
    if (!condition)
        throw std::runtime_error(what);
}

[[noreturn]] void raise(j_common_ptr info)
{
    char text[JMSG_LENGTH_MAX];
    info->err->format_message(info, text);
    throw std::runtime_error(text);
}

struct Reader
{
    jpeg_decompress_struct info{};
    jpeg_error_mgr errors{};

    explicit Reader(const Bytes& file)
    {
        info.err = jpeg_std_error(&errors);
        errors.error_exit = raise;
        errors.emit_message = [](j_common_ptr common, int level) {
            if (level < 0)
                raise(common);
        };
        jpeg_create_decompress(&info);
        jpeg_mem_src(&info, file.data(), static_cast<unsigned long>(file.size()));
        jpeg_read_header(&info, TRUE);
    }
    ~Reader() { jpeg_destroy_decompress(&info); }
    Reader(const Reader&) = delete;
    Reader& operator=(const Reader&) = delete;
};

using Block = std::array<double, 64>;

/// Each row to frequencies, and rows to columns: twice is the transform of the block, by the
/// cosines of T.81 A.3.3.
Block turnedRows(const Block& in)
{
    static const Block waves = [] {
        Block table{};
        for (std::size_t i = 0; i < 64; ++i)
            table[i] =
                (i < 8 ? std::sqrt(0.125) : 0.5) *
                std::cos(static_cast<double>((2 * (i % 8) + 1) * (i / 8)) * std::numbers::pi / 16);
        return table;
    }();
    Block out{};
    for (std::size_t y = 0; y < 8; ++y)
        for (std::size_t u = 0; u < 8; ++u)
            for (std::size_t x = 0; x < 8; ++x)
                out[8 * u + y] += in[8 * y + x] * waves[8 * u + x];
    return out;
}

/// Computes the samples of a component from the region's pixels.
struct Plane
{
    const BitmapView& view;
    const Region& region;
    const Component& component;
    std::size_t number;
    int mostH;
    int mostV;

    /// Adds 1 to `nearTies` for a value so near to a half that it may be rounded either way.
    double sample(int x, int y, int& nearTies) const
    {
        x = std::min(x, (region.width * component.h - 1) / mostH);
        y = std::min(y, (region.height * component.v - 1) / mostV);
        // In cells of 1/h by 1/v pixel, of which a sample covers mostH by mostV.
        const int cells = mostH * mostV;
        std::array<int, 3> sums{};
        for (int i = 0; i < cells; ++i) {
            const Bgr colour =
                pixel((x * mostH + i % mostH) / component.h, (y * mostV + i / mostH) / component.v);
            sums[0] += colour.red;
            sums[1] += colour.green;
            sums[2] += colour.blue;
        }
        static constexpr double kFactors[3][3] = {
            {0.299, 0.587, 0.114}, {-0.16874, -0.33126, 0.5}, {0.5, -0.41869, -0.08131}};
        double value = 0;
        for (std::size_t c = 0; c < 3; ++c)
            value += kFactors[number][c] * ((2 * sums[c] + cells) / (2 * cells));
        const double rounded = std::floor(value + 0.5);
        nearTies += std::abs(std::abs(value - rounded) - 0.5) < 0.005 ? 1 : 0;
        return std::min(rounded - (number == 0 ? 128 : 0), 127.0);
    }

    Bgr pixel(int x, int y) const
    {
        x = std::min(x, region.width - 1) + region.left;
        y = std::min(y, region.height - 1) + region.top;
        const bool inside = x >= 0 && y >= 0 && x < view.width && y < view.height;
        return inside ? colourAt(view, x, y) : Bgr{};
    }
};

} // namespace

Bytes encode(const cJpeg& encoder)
{
    Bytes file;
    const auto result = encoder.Encode([&](std::span<const std::uint8_t> bytes) {
        file.insert(file.end(), bytes.begin(), bytes.end());
        return true;
    });
    require(result == cJpeg::Written, "not encoded");
    return file;
}

Bytes encode(cJpeg& encoder, const DeviceContext& picture, const Region& region)
{
    Bytes file;
    const jpeg::KernelList& list = jpeg::availableKernels();
    for (int i = 0; i < list.count; ++i) {
        jpeg::forceKernels(list.sets[i]);
        const auto result =
            encoder.SampleHDC(&picture, region.width, region.height, region.left, region.top);
        require(result == cJpeg::Sampled, "not sampled");
        const Bytes before = std::exchange(file, encode(encoder));
        require(i == 0 || file == before, list.sets[i]->name + std::string(" differs"));
    }
    jpeg::forceKernels(nullptr);
    return file;
}

std::vector<Component> readCoefficients(const Bytes& file)
{
    Reader reader(file);
    jpeg_decompress_struct& info = reader.info;
    jvirt_barray_ptr* arrays = jpeg_read_coefficients(&info);
    std::vector<Component> result;
    for (int c = 0; c < info.num_components; ++c) {
        const jpeg_component_info& from = info.comp_info[c];
        Component component{
            from.h_samp_factor, from.v_samp_factor, static_cast<int>(from.width_in_blocks), {}, {}};
        std::copy_n(from.quant_table->quantval, 64, component.table.begin());
        for (JDIMENSION y = 0; y < from.height_in_blocks; ++y) {
            const JBLOCKARRAY rows = info.mem->access_virt_barray(
                reinterpret_cast<j_common_ptr>(&info), arrays[c], y, 1, FALSE);
            for (JDIMENSION x = 0; x < from.width_in_blocks; ++x)
                std::copy_n(rows[0][x], 64, component.blocks.emplace_back().begin());
        }
        result.push_back(std::move(component));
    }
    jpeg_finish_decompress(&info);
    return result;
}

void check(const Bytes& file, const DeviceContext& picture, const Region& region)
{
    Reader reader(file);
    require(static_cast<int>(reader.info.image_width) == region.width &&
                static_cast<int>(reader.info.image_height) == region.height,
            "another size");
    const std::vector<Component> components = readCoefficients(file);
    const BitmapView view = picture.view();
    int mostH = 1;
    int mostV = 1;
    for (const Component& component : components) {
        mostH = std::max(mostH, component.h);
        mostV = std::max(mostV, component.v);
    }
    if (std::all_of(components.begin(), components.end(),
                    [&](const auto& c) { return mostH % c.h == 0 && mostV % c.v == 0; })) {
        jpeg_start_decompress(&reader.info);
        Bytes row(std::size_t{reader.info.output_width} * 3);
        JSAMPROW rows = row.data();
        while (reader.info.output_scanline < reader.info.output_height)
            jpeg_read_scanlines(&reader.info, &rows, 1);
        jpeg_finish_decompress(&reader.info);
    }
    for (std::size_t c = 0; c < components.size(); ++c) {
        const Component& component = components[c];
        const Plane plane{view, region, component, c, mostH, mostV};
        for (std::size_t b = 0; b < component.blocks.size(); ++b) {
            const int left = 8 * (static_cast<int>(b) % component.blocksWide);
            const int top = 8 * (static_cast<int>(b) / component.blocksWide);
            Block samples{};
            int nearTies = 0;
            for (int i = 0; i < 64; ++i)
                samples[static_cast<std::size_t>(i)] =
                    plane.sample(left + i % 8, top + i / 8, nearTies);
            const Block expected = turnedRows(turnedRows(samples));
            for (std::size_t i = 0; i < 64; ++i) {
                // A sample rounded the other way moves a coefficient by a quarter at most.
                const double step = component.table[i];
                const double found = component.blocks[b][i] * step;
                if (std::abs(found - expected[i]) > step / 2 + 0.25 * nearTies + 0.01)
                    throw std::runtime_error(std::to_string(found) + " instead of " +
                                             std::to_string(expected[i]) + " in component " +
                                             std::to_string(c) + ", block " + std::to_string(b));
            }
        }
    }
}

std::vector<Segment> segments(const Bytes& file)
{
    std::vector<Segment> result;
    std::size_t at = 0;
    while (at + 1 < file.size()) {
        require(file[at] == 0xFF, "no marker where one must be");
        Segment segment{file[at + 1], {}};
        at += 2;
        if (segment.marker != 0xD8 && segment.marker != 0xD9) {
            const std::size_t length = static_cast<std::size_t>(file.at(at) << 8) + file.at(at + 1);
            segment.content.assign(reinterpret_cast<const char*>(&file.at(at + 2)), length - 2);
            at += length;
        }
        while (segment.marker == 0xDA && (file.at(at) != 0xFF || file.at(at + 1) == 0))
            ++at;
        result.push_back(std::move(segment));
    }
    require(at == file.size(), "bytes after the end");
    return result;
}

} // namespace varnholt::test
