#pragma once

#include "imaging/DeviceContext.h"

#include <functional>
#include <string>
#include <vector>

namespace varnholt::bench {

/// A picture to encode, made when it is needed so that one at a time is in memory.
struct BenchPicture
{
    std::string name;
    std::function<DeviceContext()> make;
};

/// Photographs and screenshots from Debian packages (cut or scaled down to the sizes wanted),
/// pages drawn with the fonts of packages, and made-up extremes. A missing package is an
/// error that names it, thrown as std::runtime_error when the picture is made.
std::vector<BenchPicture> benchPictures();

} // namespace varnholt::bench
