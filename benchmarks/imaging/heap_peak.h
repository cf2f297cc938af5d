#pragma once

#include <cstddef>

namespace varnholt::bench {

/// Counts every block the whole program takes from the heap, whichever library asks, by
/// standing in for the allocation functions. glibc only.
class HeapPeak
{
public:
    /// Forgets the past: the peak is what is in use now.
    HeapPeak();
    /// The most bytes in use since, above what was in use at the start.
    std::size_t bytes() const;

private:
    std::size_t m_before;
};

} // namespace varnholt::bench
