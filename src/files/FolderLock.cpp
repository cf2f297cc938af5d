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
    // A file beside it, which the system removes: who lists the folder, or puts a file there under
    // another name, opens the folder itself, and need not share all that a lock would take.
    const HANDLE handle =
        ::CreateFileW((folder.wstring() + L".lock").c_str(), GENERIC_WRITE, 0, nullptr, OPEN_ALWAYS,
                      FILE_ATTRIBUTE_HIDDEN | FILE_FLAG_DELETE_ON_CLOSE, nullptr);
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
