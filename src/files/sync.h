#pragma once

#include <filesystem>
#include <span>
#include <system_error>

/// Requests to have on the disk what was written so far, so that a power cut does not take it
/// back. They return an empty error when that is done; a file system that knows no such
/// request counts as done.
namespace varnholt {

/// The bytes of an open file. What the program itself still buffers is not looked at.
[[nodiscard]] std::error_code SyncFile(int descriptor);

/// The names in a folder: files made, renamed or removed there. Nothing to do on Windows,
/// where names are kept in a journal.
[[nodiscard]] std::error_code SyncFolder(const std::filesystem::path& folder);

/// These files, their names included. Where the system can be asked for a whole file system it is,
/// which costs less than a request for each of many; all must lie on the first one's.
[[nodiscard]] std::error_code SyncFiles(std::span<const std::filesystem::path> files);

} // namespace varnholt
