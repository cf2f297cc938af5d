#include "files/FolderLock.h"

#ifdef _WIN32
#include <windows.h>
#else
#include <cerrno>

#include <fcntl.h>
#include <sys/file.h>
#include <unistd.h>
#endif

namespace varnholt {

#ifdef _WIN32

FolderLock::FolderLock(const std::filesystem::path& folder)
{
    // Who may delete the folder and lets nobody else have that right is alone; listing the
    // folder and the files in it stay open to all.
    const HANDLE handle =
        ::CreateFileW(folder.c_str(), DELETE, FILE_SHARE_READ | FILE_SHARE_WRITE, nullptr,
                      OPEN_EXISTING, FILE_FLAG_BACKUP_SEMANTICS, nullptr);
    if (handle != INVALID_HANDLE_VALUE) {
        handle_ = handle;
    } else {
        heldByAnother_ = ::GetLastError() == ERROR_SHARING_VIOLATION;
    }
}

FolderLock::~FolderLock()
{
    if (handle_) {
        ::CloseHandle(handle_);
    }
}

#else

FolderLock::FolderLock(const std::filesystem::path& folder)
    : handle_(::open(folder.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC))
{
    heldByAnother_ =
        handle_ >= 0 && ::flock(handle_, LOCK_EX | LOCK_NB) != 0 && errno == EWOULDBLOCK;
}

FolderLock::~FolderLock()
{
    if (handle_ >= 0) {
        ::close(handle_);
    }
}

#endif

} // namespace varnholt
