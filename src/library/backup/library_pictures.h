#pragma once

#include "library/backup/BackupManifest.h"

#include <filesystem>
#include <vector>

namespace varnholt {

/// A picture in `Files`; its `sha` is not filled in.
struct LibraryPicture
{
    std::filesystem::path path;
    BackedPicture facts;
};

/// The questions' pictures in a program folder, by rising key. Other files there do not count, nor
/// a second spelling of a name. Throws `Error` when the folder cannot be read.
[[nodiscard]] std::vector<LibraryPicture> LibraryPictures(const QString& programFolder);

} // namespace varnholt
