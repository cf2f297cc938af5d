// Compares the JPEG encoder with libjpeg-turbo's API on the same pictures in memory: same
// quantisation tables, 4:2:0, float DCT, optimised Huffman tables. Both take turns in one
// process; times are CPU times of the thread, medians over the rounds.
//
//   bench_jpeg [--rounds N] [--quality Q] [--kernels NAME] [--json FILE]

#include "imaging/bench_pictures.h"
#include "imaging/cJpeg.h"
#include "imaging/heap_peak.h"
#include "imaging/jpeg_kernels.h"
#include "imaging/peer_encoder.h"

#include <QGuiApplication>

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <cstring>
#include <fstream>
#include <stdexcept>

#include <time.h>

namespace varnholt::bench {
namespace {

struct Options
{
    int rounds = 0; // 0: as many as take a fair time
    int quality = 75;
    std::string json;
};

double cpuSeconds()
{
    timespec time{};
    clock_gettime(CLOCK_THREAD_CPUTIME_ID, &time);
    return static_cast<double>(time.tv_sec) + 1e-9 * static_cast<double>(time.tv_nsec);
}

double median(std::vector<double> values)
{
    const auto middle = values.begin() + static_cast<std::ptrdiff_t>(values.size() / 2);
    std::nth_element(values.begin(), middle, values.end());
    return *middle;
}

double psnr(const DeviceContext& context, std::span<const std::uint8_t> file)
{
    int width = 0;
    int height = 0;
    const std::vector<std::uint8_t> decoded = peerDecode(file, width, height);
    if (width != context.Width() || height != context.Height())
        throw std::runtime_error("the decoded size differs");
    double squares = 0;
    const std::size_t rowBytes = static_cast<std::size_t>(width) * 3;
    for (std::int32_t y = 0; y < height; ++y) {
        const std::uint8_t* row = context.view().row(y);
        const std::uint8_t* other = decoded.data() + rowBytes * static_cast<std::size_t>(y);
        for (std::size_t i = 0; i < rowBytes; ++i)
            squares += (row[i] - other[i]) * (row[i] - other[i]);
    }
    const double mean = squares / static_cast<double>(decoded.size());
    return mean == 0 ? 99.0 : 10 * std::log10(255.0 * 255.0 / mean);
}

std::size_t encode(const DeviceContext& context, int quality, std::vector<std::uint8_t>& out)
{
    cJpeg encoder;
    encoder.Quality(quality);
    if (encoder.SampleHDC(&context, context.Width(), context.Height()) != cJpeg::Sampled)
        throw std::runtime_error("the picture cannot be sampled");
    std::size_t size = 0;
    const auto result = encoder.Encode([&](std::span<const std::uint8_t> bytes) {
        if (bytes.size() > out.size() - size)
            return false;
        std::memcpy(out.data() + size, bytes.data(), bytes.size());
        size += bytes.size();
        return true;
    });
    if (result != cJpeg::Written)
        throw std::runtime_error("the picture cannot be encoded");
    return size;
}

/// One way of encoding: what it took and what came out.
struct Side
{
    std::vector<double> seconds;
    std::size_t bytes = 0;
    std::size_t memory = 0;
    double psnr = 0;
};

struct Comparison
{
    Side ours;
    Side peer;
    Side fast; // the peer's integer DCT with the standard's tables, for information
};

Comparison compare(const DeviceContext& context, const Options& options)
{
    std::vector<std::uint8_t> out(static_cast<std::size_t>(context.Width()) *
                                      static_cast<std::size_t>(context.Height()) * 4 +
                                  100000);
    const QuantTable luminance = scaledQuantTable(baseQuantTable(0), options.quality);
    const QuantTable chrominance = scaledQuantTable(baseQuantTable(1), options.quality);
    const auto peer = [&](PeerMode mode) {
        return peerEncode(context, luminance, chrominance, mode, out);
    };
    Comparison result;
    {
        const HeapPeak heap;
        result.ours.bytes = encode(context, options.quality, out);
        result.ours.memory = heap.bytes();
        result.ours.psnr = psnr(context, std::span(out).first(result.ours.bytes));
    }
    {
        const HeapPeak heap;
        result.peer.bytes = peer(PeerMode::FloatOptimised);
        result.peer.memory = heap.bytes();
        result.peer.psnr = psnr(context, std::span(out).first(result.peer.bytes));
    }
    result.fast.bytes = peer(PeerMode::IntegerStandard);

    const auto time = [](Side& side, auto&& work) {
        const double start = cpuSeconds();
        work();
        side.seconds.push_back(cpuSeconds() - start);
    };
    const double megapixels = 1e-6 * context.Width() * context.Height();
    const int rounds = options.rounds > 0 ? options.rounds
                                          : std::clamp(static_cast<int>(60 / megapixels), 15, 101);
    for (int i = 0; i < rounds; ++i) {
        time(result.ours, [&] { encode(context, options.quality, out); });
        time(result.peer, [&] { peer(PeerMode::FloatOptimised); });
        if (i % 3 == 0)
            time(result.fast, [&] { peer(PeerMode::IntegerStandard); });
    }
    return result;
}

struct Line
{
    const char* id;
    double value;
    const char* must;
    const char* aim;
    const char* unit;
    const char* peer;
};

void writeJson(const std::string& path, const std::vector<Line>& lines)
{
    std::ofstream file(path);
    file << "[\n";
    for (std::size_t i = 0; i < lines.size(); ++i) {
        const Line& line = lines[i];
        file << "  {\"id\": \"" << line.id << "\", \"value\": " << line.value
             << ", \"must\": " << line.must << ", \"aim\": " << line.aim << ", \"unit\": \""
             << line.unit << "\", \"peer\": \"" << line.peer << "\"}"
             << (i + 1 < lines.size() ? "," : "") << "\n";
    }
    file << "]\n";
    if (!file.flush())
        throw std::runtime_error("cannot write " + path);
}

void run(const Options& options)
{
    std::printf("quality %d, 4:2:0, kernels %s; ours / libjpeg-turbo float+optimised\n",
                options.quality, jpeg::kernels().name);
    std::printf("%-22s %8s %8s %6s %6s %7s %7s %8s %8s %6s\n", "picture", "ours ms", "peer ms",
                "cpu", "islow", "bytes", "psnr", "peer psn", "kB ours", "memory");
    double oursTotal = 0;
    double peerTotal = 0;
    double fastTotal = 0;
    double oursBytes = 0;
    double peerBytes = 0;
    double psnrSum = 0;
    double psnrWorst = 0;
    double memoryWorst = 0;
    const std::vector<BenchPicture> pictures = benchPictures();
    for (const BenchPicture& picture : pictures) {
        const DeviceContext context = picture.make();
        const Comparison c = compare(context, options);
        const double ours = median(c.ours.seconds);
        const double peer = median(c.peer.seconds);
        const double fast = median(c.fast.seconds);
        const double memory =
            static_cast<double>(c.ours.memory) / static_cast<double>(c.peer.memory);
        std::printf("%-22s %8.3f %8.3f %6.3f %6.3f %7.4f %7.3f %8.3f %8zu %6.3f\n",
                    picture.name.c_str(), ours * 1e3, peer * 1e3, ours / peer, ours / fast,
                    static_cast<double>(c.ours.bytes) / static_cast<double>(c.peer.bytes),
                    c.ours.psnr, c.peer.psnr, c.ours.memory / 1024, memory);
        std::fflush(stdout);
        oursTotal += ours;
        peerTotal += peer;
        fastTotal += fast;
        oursBytes += static_cast<double>(c.ours.bytes);
        peerBytes += static_cast<double>(c.peer.bytes);
        psnrSum += c.ours.psnr - c.peer.psnr;
        psnrWorst = std::min(psnrWorst, c.ours.psnr - c.peer.psnr);
        memoryWorst = std::max(memoryWorst, memory);
    }
    const double psnrMean = psnrSum / static_cast<double>(pictures.size());
    std::printf("overall: cpu %.3f (%.3f of islow with standard tables), bytes %.4f, "
                "psnr %+.4f dB in the mean, %+.4f at worst, memory %.3f at worst\n",
                oursTotal / peerTotal, oursTotal / fastTotal, oursBytes / peerBytes, psnrMean,
                psnrWorst, memoryWorst);
    if (options.json.empty())
        return;
    const char* peer = "libjpeg-turbo, same tables, 4:2:0, float DCT, optimised Huffman";
    writeJson(options.json,
              {{"jpeg.cpu", oursTotal / peerTotal, "1.0", "0.36", "ratio of CPU time", peer},
               {"jpeg.bytes", oursBytes / peerBytes, "1.002", "null", "ratio of bytes", peer},
               {"jpeg.psnr", psnrMean, "-0.02", "null", "dB against the peer, mean", peer},
               {"jpeg.psnr.worst", psnrWorst, "-0.05", "null", "dB against the peer, worst", peer},
               {"jpeg.memory", memoryWorst, "0.6", "null", "ratio of peak heap, worst", peer}});
}

Options parse(int argc, char** argv)
{
    Options options;
    for (int i = 1; i < argc; ++i) {
        const std::string name = argv[i];
        if (i + 1 == argc)
            throw std::runtime_error(name + " needs a value");
        const std::string value = argv[++i];
        if (name == "--rounds")
            options.rounds = std::stoi(value);
        else if (name == "--quality")
            options.quality = std::stoi(value);
        else if (name == "--json")
            options.json = value;
        else if (name == "--kernels") {
            const jpeg::KernelList& list = jpeg::availableKernels();
            const auto* end = list.sets + list.count;
            const auto* set = std::find_if(
                list.sets, end, [&](const jpeg::Kernels* k) { return value == k->name; });
            if (set == end)
                throw std::runtime_error("no kernels " + value);
            jpeg::forceKernels(*set);
        } else
            throw std::runtime_error("unknown option " + name);
    }
    return options;
}

} // namespace
} // namespace varnholt::bench

int main(int argc, char** argv)
{
    qputenv("QT_QPA_PLATFORM", "offscreen");
    const QGuiApplication application(argc, argv); // fonts
    try {
        varnholt::bench::run(varnholt::bench::parse(argc, argv));
        return 0;
    } catch (const std::exception& error) {
        std::fprintf(stderr, "bench_jpeg: %s\n", error.what());
        return 1;
    }
}
