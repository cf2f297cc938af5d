#pragma once

#include <cstddef>
#include <filesystem>
#include <functional>
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

/// So many files, their names included; `file` gives the path of each, counted from 0. Where the
/// system can be asked for a whole file system it is, which costs less than a request for each
/// file; all must lie on the first one's.
[[nodiscard]] std::error_code
SyncFiles(std::size_t count, const std::function<std::filesystem::path(std::size_t)>& file);

/// All files of the folder's file system, their names included; where the system has no such
/// request the files in the folder.
[[nodiscard]] std::error_code SyncFileSystem(const std::filesystem::path& folder);

} // namespace varnholt
