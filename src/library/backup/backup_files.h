#pragma once

#include "library/backup/BackupManifest.h"

#include <filesystem>
#include <optional>
#include <system_error>

/// What backups ask of single files.
namespace varnholt {

[[nodiscard]] std::filesystem::path PathOf(const QString& path);
[[nodiscard]] QString Shown(const std::filesystem::path& path);

[[nodiscard]] Sha ShaOf(const QByteArray& bytes);
/// Nothing when the file cannot be read to its end.
[[nodiscard]] std::optional<Sha> ShaOfFile(const std::filesystem::path& path);

/// Nothing when the file cannot be read.
[[nodiscard]] std::optional<QByteArray> ReadWhole(const std::filesystem::path& path);

/// A file's last change in nanoseconds of the file system's clock.
[[nodiscard]] std::int64_t ModifiedAt(const std::filesystem::path& path, std::error_code& error);

/// Has a file's bytes on the disk. Throws `Error`.
void SyncOrThrow(const std::filesystem::path& file);

/// Throws an `Error` that says, as a user can read it, what went wrong with the file or folder.
[[noreturn]] void ThrowFileError(const std::error_code& error, const std::filesystem::path& path);
inline void Require(const std::error_code& error, const std::filesystem::path& path)
{
    if (error) {
        ThrowFileError(error, path);
    }
}

} // namespace varnholt
