#pragma once

#include <QString>

#include <cstdint>

namespace varnholt {

/// Whether anything stands under the name of a question's picture, whatever it is.
[[nodiscard]] bool HasPictureFile(const QString& programFolder, std::int32_t key);

/// Renames whatever has the name of a question's picture to "<name>.bak", "<name>.bak2" and so on.
/// Throws `Error` when that fails.
void SetOldPictureAside(const QString& programFolder, std::int32_t key);

} // namespace varnholt
