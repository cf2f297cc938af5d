#include "imaging/heap_peak.h"

#include <atomic>
#include <cerrno>

#include <malloc.h>

extern "C" {
void* __libc_malloc(std::size_t size);
void* __libc_calloc(std::size_t count, std::size_t size);
void* __libc_realloc(void* block, std::size_t size);
void* __libc_memalign(std::size_t alignment, std::size_t size);
void __libc_free(void* block);
}

namespace {

std::atomic<std::size_t> inUse{0};
std::atomic<std::size_t> peak{0};

void* taken(void* block)
{
    const std::size_t now = inUse += malloc_usable_size(block);
    std::size_t most = peak;
    while (now > most && !peak.compare_exchange_weak(most, now)) {
    }
    return block;
}

} // namespace

extern "C" {
void* malloc(std::size_t size)
{
    return taken(__libc_malloc(size));
}

void* calloc(std::size_t count, std::size_t size)
{
    return taken(__libc_calloc(count, size));
}

void* realloc(void* block, std::size_t size)
{
    inUse -= malloc_usable_size(block);
    return taken(__libc_realloc(block, size));
}

void* memalign(std::size_t alignment, std::size_t size)
{
    return taken(__libc_memalign(alignment, size));
}

void* aligned_alloc(std::size_t alignment, std::size_t size)
{
    return taken(__libc_memalign(alignment, size));
}

int posix_memalign(void** block, std::size_t alignment, std::size_t size)
{
    *block = taken(__libc_memalign(alignment, size));
    return *block || size == 0 ? 0 : ENOMEM;
}

void free(void* block)
{
    inUse -= malloc_usable_size(block);
    __libc_free(block);
}
}

namespace varnholt::bench {

HeapPeak::HeapPeak()
    : m_before(inUse)
{
    peak = m_before;
}

std::size_t HeapPeak::bytes() const
{
    return peak - m_before;
}

} // namespace varnholt::bench
