#pragma once

#include <filesystem>

namespace varnholt {

/// True when the file or folder may be shared with other machines: it stands on a network drive,
/// or on a file system that a program provides and that may be one.
[[nodiscard]] bool IsOnNetwork(const std::filesystem::path& path);

} // namespace varnholt
