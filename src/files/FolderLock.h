#pragma once

#include <filesystem>

namespace varnholt {

/// A lock of the operating system on a folder: of all programs, on one machine or several
/// that share the file system, one holds it. It leaves nothing behind, also not when the
/// program is killed.
class FolderLock
{
public:
    /// Tries to take the lock; does not wait.
    explicit FolderLock(const std::filesystem::path& folder);
    FolderLock(const FolderLock&) = delete;
    FolderLock& operator=(const FolderLock&) = delete;
    ~FolderLock();

    /// True when another holds the lock. False when it is ours, but also when the folder
    /// cannot be opened or its file system knows no locks.
    [[nodiscard]] bool isHeldByAnother() const { return heldByAnother_; }

private:
#ifdef _WIN32
    void* handle_ = nullptr;
#else
    int handle_ = -1;
#endif
    bool heldByAnother_ = false;
};

} // namespace varnholt
