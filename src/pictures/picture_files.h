#pragma once

#include <QString>

#include <cstdint>

namespace varnholt {

/// Path of a question's picture: "Files/<key>.jpg" in the program folder, whatever the case
/// of the folder's name and of the extension. When there is no such file the path that a new
/// picture would get (so that opening it fails as a missing file does).
[[nodiscard]] QString FindPictureFile(const QString& programFolder, std::int32_t pictureIndex);

/// Path under which a new picture is written: "Files/<key>.jpg", in an existing folder of
/// that name in any case.
[[nodiscard]] QString NewPictureFile(const QString& programFolder, std::int32_t pictureIndex);

} // namespace varnholt
