#pragma once

#include <cstdint>
#include <filesystem>
#include <optional>

namespace varnholt {

/// How many bytes this user may still write to the file system that holds the folder; nothing
/// where the file system does not tell. Asks the folder itself, so that no table of mounted
/// file systems is needed.
[[nodiscard]] std::optional<std::int64_t> FreeBytes(const std::filesystem::path& folder);

} // namespace varnholt
