#pragma once

#include "imaging/jpeg_kernels.h"

namespace varnholt::jpeg {

/// The vector sets; null where the compiler or the processor does not have them.
const Kernels* sse2Kernels();
const Kernels* avx2Kernels();

} // namespace varnholt::jpeg
