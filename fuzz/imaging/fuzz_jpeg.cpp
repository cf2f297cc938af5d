// Any picture, encoded in any way, must decode without a warning to a picture of the same size
// whose coefficients are as near to the source's as the quantisation steps allow; every kernel
// set must write the same bytes.
//
//   fuzz_jpeg -max_total_time=1200 corpus/

#include "imaging/cJpeg.h"
#include "imaging/reference_jpeg.h"

#include <fuzzer/FuzzedDataProvider.h>

#include <algorithm>

using namespace varnholt;

namespace {

constexpr int kLargestSide = 70;

DeviceContext pictureFrom(FuzzedDataProvider& data)
{
    DeviceContext context;
    const int bitCount = data.PickValueInArray({1, 4, 8, 24, 24, 24});
    context.Create(data.ConsumeIntegralInRange(1, kLargestSide),
                   data.ConsumeIntegralInRange(1, kLargestSide), bitCount);
    Bgr table[256];
    for (int i = 0; bitCount < 24 && i < 1 << bitCount; i += 7)
        table[i] = {data.ConsumeIntegral<std::uint8_t>(), data.ConsumeIntegral<std::uint8_t>(),
                    data.ConsumeIntegral<std::uint8_t>(), 0};
    if (bitCount < 24)
        context.SetDIBColorTable(0, 1 << bitCount, table);
    // What is left is the pixels, over and over, so that a few bytes make a whole picture.
    const std::vector<std::uint8_t> bytes = data.ConsumeRemainingBytes<std::uint8_t>();
    const std::size_t size =
        context.BytesPerScanLine() * static_cast<std::size_t>(context.Height());
    for (std::size_t i = 0; i < size && !bytes.empty(); ++i)
        context.DIBits()[i] = bytes[i % bytes.size()];
    return context;
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* bytes, std::size_t count)
{
    FuzzedDataProvider data(bytes, count);
    cJpeg encoder;
    encoder.Quality(data.ConsumeIntegralInRange(1, 100));
    int f[6];
    for (int& factor : f)
        factor = data.PickValueInArray({1, 2, 1, 4, 3});
    if (data.ConsumeProbability<float>() < 0.2F)
        std::fill_n(f + 2, 4, 0);
    encoder.SetSamplingFrequencies(f[0], f[1], f[2], f[3], f[4], f[5]);
    encoder.Comment(data.ConsumeRandomLengthString(20));
    const bool whole = data.ConsumeBool();
    const int left = whole ? 0 : data.ConsumeIntegralInRange(-9, 40);
    const int top = whole ? 0 : data.ConsumeIntegralInRange(-9, 40);
    const int across = data.ConsumeIntegralInRange(1, kLargestSide);
    const int down = data.ConsumeIntegralInRange(1, kLargestSide);
    const DeviceContext picture = pictureFrom(data);
    const test::Region region = whole ? test::Region{picture.Width(), picture.Height()}
                                      : test::Region{across, down, left, top};
    const test::Bytes file = test::encode(encoder, picture, region);
    test::check(file, picture, region);
    test::segments(file);
    return 0;
}
