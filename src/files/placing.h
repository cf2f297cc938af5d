#pragma once

#include <filesystem>
#include <system_error>

namespace varnholt {

/// How a file gets to a second place.
enum class Placing
{
    /// The bytes may be shared with the original (a hard link) where the file system can.
    /// Neither file may then be written to in place, only replaced.
    MayShare,
    /// Bytes of its own.
    Copy
};

/// Puts the file `from` at `to` as well; a file at `to` is replaced in one step. `to` is
/// there whole or not at all, whatever happens on the way. An error when `from` is not a
/// readable file or `to` cannot be written.
[[nodiscard]] std::error_code PlaceFile(const std::filesystem::path& from,
                                        const std::filesystem::path& to, Placing placing);

/// Gives the file `from` the name `to`, whose file it replaces in one step; both are on one file
/// system. Windows refuses that while somebody has either open: who reads one for a moment, as a
/// scanner for viruses does, is waited for.
[[nodiscard]] std::error_code RenameFile(const std::filesystem::path& from,
                                         const std::filesystem::path& to);

/// Takes the file `from` to `to`, whose file it replaces in one step. Where the two are on
/// different file systems `from` stays. Errors as `PlaceFile`'s.
[[nodiscard]] std::error_code TakeFileTo(const std::filesystem::path& from,
                                         const std::filesystem::path& to);

} // namespace varnholt
