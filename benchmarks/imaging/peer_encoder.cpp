#include "imaging/peer_encoder.h"

#include "imaging/jpeg_tables.h"

#include <algorithm>
#include <cstdio>
#include <stdexcept>

#include <jpeglib.h>

namespace varnholt::bench {

namespace {

constexpr JDIMENSION kRowsAtATime = 16; // what an MCU row holds

[[noreturn]] void raise(j_common_ptr info)
{
    char text[JMSG_LENGTH_MAX];
    info->err->format_message(info, text);
    throw std::runtime_error(text);
}

struct Memory
{
    jpeg_destination_mgr manager{};
    std::vector<std::uint8_t>* out = nullptr;
};

void initDestination(j_compress_ptr info)
{
    auto* memory = reinterpret_cast<Memory*>(info->dest);
    memory->manager.next_output_byte = memory->out->data();
    memory->manager.free_in_buffer = memory->out->size();
}

boolean bufferFull(j_compress_ptr)
{
    throw std::runtime_error("the output buffer is too small");
}

void termDestination(j_compress_ptr) {}

void setTable(j_compress_ptr info, int number, std::span<const std::uint16_t> table)
{
    unsigned int rows[64];
    for (std::size_t k = 0; k < 64; ++k)
        rows[kZigzag[k]] = table[k];
    jpeg_add_quant_table(info, number, rows, 100, TRUE);
}

} // namespace

std::size_t peerEncode(const DeviceContext& context, std::span<const std::uint16_t> luminance,
                       std::span<const std::uint16_t> chrominance, PeerMode mode,
                       std::vector<std::uint8_t>& out)
{
    jpeg_compress_struct info;
    jpeg_error_mgr errors;
    info.err = jpeg_std_error(&errors);
    errors.error_exit = raise;
    jpeg_create_compress(&info);
    Memory memory;
    memory.manager = {nullptr, 0, initDestination, bufferFull, termDestination};
    memory.out = &out;
    info.dest = &memory.manager;

    info.image_width = static_cast<JDIMENSION>(context.Width());
    info.image_height = static_cast<JDIMENSION>(context.Height());
    info.input_components = 3;
    info.in_color_space = JCS_EXT_BGR;
    jpeg_set_defaults(&info); // 4:2:0
    setTable(&info, 0, luminance);
    setTable(&info, 1, chrominance);
    info.dct_method = mode == PeerMode::FloatOptimised ? JDCT_FLOAT : JDCT_ISLOW;
    info.optimize_coding = mode == PeerMode::FloatOptimised ? TRUE : FALSE;

    jpeg_start_compress(&info, TRUE);
    const BitmapView view = context.view();
    while (info.next_scanline < info.image_height) {
        JSAMPROW rows[kRowsAtATime];
        JDIMENSION count = 0;
        for (; count < std::min(kRowsAtATime, info.image_height - info.next_scanline); ++count)
            rows[count] = const_cast<JSAMPROW>(
                view.row(static_cast<std::int32_t>(info.next_scanline + count)));
        jpeg_write_scanlines(&info, rows, count);
    }
    jpeg_finish_compress(&info);
    const std::size_t size = out.size() - memory.manager.free_in_buffer;
    jpeg_destroy_compress(&info);
    return size;
}

std::vector<std::uint8_t> peerDecode(std::span<const std::uint8_t> file, int& width, int& height)
{
    jpeg_decompress_struct info;
    jpeg_error_mgr errors;
    info.err = jpeg_std_error(&errors);
    errors.error_exit = raise;
    jpeg_create_decompress(&info);
    jpeg_mem_src(&info, file.data(), file.size());
    jpeg_read_header(&info, TRUE);
    info.out_color_space = JCS_EXT_BGR;
    jpeg_start_decompress(&info);
    width = static_cast<int>(info.output_width);
    height = static_cast<int>(info.output_height);
    const std::size_t rowBytes = std::size_t{info.output_width} * 3;
    std::vector<std::uint8_t> pixels(rowBytes * info.output_height);
    while (info.output_scanline < info.output_height) {
        JSAMPROW row = pixels.data() + rowBytes * info.output_scanline;
        jpeg_read_scanlines(&info, &row, 1);
    }
    jpeg_finish_decompress(&info);
    if (errors.num_warnings != 0)
        throw std::runtime_error("the decoder warned");
    jpeg_destroy_decompress(&info);
    return pixels;
}

} // namespace varnholt::bench
