#include "files/disk_space.h"

#include <limits>

namespace varnholt {

std::optional<std::int64_t> FreeBytes(const std::filesystem::path& folder)
{
    constexpr auto most = std::numeric_limits<std::int64_t>::max();
    std::error_code error;
    const std::filesystem::space_info space = std::filesystem::space(folder, error);
    if (error || space.available == static_cast<std::uintmax_t>(-1)) {
        return std::nullopt;
    }
    return space.available > static_cast<std::uintmax_t>(most)
               ? most
               : static_cast<std::int64_t>(space.available);
}

} // namespace varnholt
