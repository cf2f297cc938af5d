#include "files/LockFile.h"

#ifdef _WIN32
#include <windows.h>
#else
#include <cerrno>

#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>
#endif

namespace varnholt {

namespace fs = std::filesystem;

#ifdef _WIN32

LockFile::Outcome LockFile::take(const fs::path& path, const fs::path& /*like*/)
{
    const HANDLE handle = ::CreateFileW(path.c_str(), GENERIC_READ | GENERIC_WRITE,
                                        FILE_SHARE_READ | FILE_SHARE_WRITE, nullptr, OPEN_ALWAYS,
                                        FILE_ATTRIBUTE_HIDDEN, nullptr);
    if (handle == INVALID_HANDLE_VALUE) {
        return Outcome::NotPossible;
    }
    // A byte behind all text, because others cannot read what is locked.
    OVERLAPPED place = {};
    place.OffsetHigh = 1;
    if (!::LockFileEx(handle, LOCKFILE_EXCLUSIVE_LOCK | LOCKFILE_FAIL_IMMEDIATELY, 0, 1, 0,
                      &place)) {
        const bool held = ::GetLastError() == ERROR_LOCK_VIOLATION;
        ::CloseHandle(handle);
        return held ? Outcome::HeldByAnother : Outcome::NotPossible;
    }
    handle_ = handle;
    path_ = path;
    return Outcome::Taken;
}

LockFile::~LockFile()
{
    if (handle_) {
        ::CloseHandle(handle_);
        ::DeleteFileW(path_.c_str());
    }
}

void LockFile::setText(const std::string& text)
{
    DWORD written = 0;
    ::SetFilePointer(handle_, 0, nullptr, FILE_BEGIN);
    ::SetEndOfFile(handle_);
    ::WriteFile(handle_, text.data(), static_cast<DWORD>(text.size()), &written, nullptr);
}

#else

LockFile::Outcome LockFile::take(const fs::path& path, const fs::path& like)
{
    // The one who frees the lock takes the file away; what was opened just before is no lock then.
    constexpr int attempts = 16;
    for (int i = 0; i < attempts; ++i) {
        constexpr int flags = O_CLOEXEC | O_NOFOLLOW;
        int handle = ::open(path.c_str(), O_RDWR | O_CREAT | flags, 0666);
        if (handle < 0) {
            handle = ::open(path.c_str(), O_RDONLY | flags);
        }
        if (handle < 0) {
            return Outcome::NotPossible;
        }
        if (::flock(handle, LOCK_EX | LOCK_NB) != 0) {
            const bool held = errno == EWOULDBLOCK;
            ::close(handle);
            return held ? Outcome::HeldByAnother : Outcome::NotPossible;
        }
        struct stat locked = {};
        struct stat there = {};
        if (::fstat(handle, &locked) == 0 && ::stat(path.c_str(), &there) == 0 &&
            locked.st_ino == there.st_ino && locked.st_dev == there.st_dev) {
            handle_ = handle;
            path_ = path;
            struct stat example = {};
            if (::stat(like.c_str(), &example) == 0) {
                // Of use to other accounts only; without it they read.
                [[maybe_unused]] const int done =
                    ::fchmod(handle, (example.st_mode & 0666) | S_IRUSR | S_IWUSR);
            }
            return Outcome::Taken;
        }
        ::close(handle);
    }
    return Outcome::NotPossible;
}

LockFile::~LockFile()
{
    if (handle_ >= 0) {
        ::unlink(path_.c_str());
        ::close(handle_);
    }
}

void LockFile::setText(const std::string& text)
{
    if (::ftruncate(handle_, 0) == 0) {
        [[maybe_unused]] const auto written = ::pwrite(handle_, text.data(), text.size(), 0);
    }
}

#endif

} // namespace varnholt
