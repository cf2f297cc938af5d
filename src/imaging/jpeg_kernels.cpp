#include "imaging/jpeg_kernels_impl.h"

#include "imaging/jpeg_kernel_sets.h"

#include <cmath>

namespace varnholt::jpeg {

namespace {

struct PlainBlock
{
    int dc;
    bool large;
    std::uint64_t mask;
    int coefficients[64]; // transposed: 8·u + v

    static bool isFlat(const std::int8_t* samples) { return allAlike(samples); }
    static int quantised(float value) { return static_cast<int>(std::lrintf(value)); }

    static void transform(const Pending* pending, PlainBlock* const* blocks, int count)
    {
        for (int i = 0; i < count; ++i)
            blocks[i]->transformOne(pending[i].samples, pending[i].scale);
    }

    void transformOne(const std::int8_t* samples, const float* scale)
    {
        float columns[8][8];
        for (std::size_t x = 0; x < 8; ++x) {
            float line[8];
            for (std::size_t y = 0; y < 8; ++y)
                line[y] = static_cast<float>(samples[y * 8 + x]);
            transformEight(line);
            for (std::size_t v = 0; v < 8; ++v)
                columns[v][x] = line[v];
        }
        for (std::size_t v = 0; v < 8; ++v) {
            transformEight(columns[v]);
            for (std::size_t u = 0; u < 8; ++u)
                coefficients[8 * u + v] = quantised(columns[v][u] * scale[8 * u + v]);
        }
        mask = 0;
        large = false;
        for (int k = 1; k < 64; ++k) {
            if (value(k) != 0)
                mask |= std::uint64_t{1} << k;
            large = large || value(k) < -126 || value(k) > 126;
        }
        dc = coefficients[0];
    }

    int value(int k) const
    {
        const int place = kZigzag[static_cast<std::size_t>(k)];
        return coefficients[8 * (place % 8) + place / 8];
    }

    Token small(int k) const { return kSmallTokens.of[value(k) & 255]; }
};

const Kernels kPlain = {"plain",       lumaSpan,      chromaSpan,
                        chromaSpan2x2, storeBlockRow, tokeniseMcus<PlainBlock>,
                        writeTokenBits};

KernelList detect()
{
    KernelList list{{&kPlain}, 1};
    for (const Kernels* set : {sse2Kernels(), avx2Kernels()}) {
        if (set)
            list.sets[list.count++] = set;
    }
    return list;
}

const Kernels* forced = nullptr;

} // namespace

const KernelList& availableKernels()
{
    static const KernelList list = detect();
    return list;
}

const Kernels& kernels()
{
    const KernelList& list = availableKernels();
    return forced ? *forced : *list.sets[list.count - 1];
}

void forceKernels(const Kernels* set)
{
    forced = set;
}

} // namespace varnholt::jpeg
