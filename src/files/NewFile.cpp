#include "files/NewFile.h"

#include "files/sync.h"

#include <cerrno>
#include <random>
#include <string>

#include <fcntl.h>
#if defined(_WIN32)
#include <io.h>
#include <sys/stat.h>
#include <windows.h>
#else
#include <unistd.h>
#endif

namespace varnholt {

namespace {

constexpr int attempts = 16;

#if defined(_WIN32)
int openNew(const std::filesystem::path& path)
{
    return ::_wopen(path.c_str(), _O_CREAT | _O_EXCL | _O_WRONLY | _O_BINARY, _S_IREAD | _S_IWRITE);
}

std::ptrdiff_t writeSome(int handle, const std::uint8_t* bytes, std::size_t count)
{
    return ::_write(handle, bytes, static_cast<unsigned>(count));
}

void closeHandle(int handle)
{
    ::_close(handle);
}
#else
int openNew(const std::filesystem::path& path)
{
    return ::open(path.c_str(), O_CREAT | O_EXCL | O_WRONLY | O_CLOEXEC, 0666);
}

std::ptrdiff_t writeSome(int handle, const std::uint8_t* bytes, std::size_t count)
{
    return ::write(handle, bytes, count);
}

void closeHandle(int handle)
{
    ::close(handle);
}
#endif

} // namespace

NewFile::NewFile(const std::filesystem::path& path)
    : path_(path)
{
    std::random_device random;
    for (int i = 0; i < attempts && handle_ < 0; ++i) {
        // Not derived from the name, which may be as long as names can be.
        temporary_ = path.parent_path() / (".new-" + std::to_string(random()) + ".part");
        handle_ = openNew(temporary_);
        if (handle_ < 0 && errno != EEXIST) {
            return;
        }
    }
}

NewFile::~NewFile()
{
    if (handle_ < 0) {
        return;
    }
    closeHandle(handle_);
    std::error_code ignored;
    std::filesystem::remove(temporary_, ignored);
}

bool NewFile::write(std::span<const std::uint8_t> bytes)
{
    while (!bytes.empty() && !failed_) {
        const std::ptrdiff_t n = writeSome(handle_, bytes.data(), bytes.size());
        if (n > 0) {
            bytes = bytes.subspan(static_cast<std::size_t>(n));
        } else if (n == 0 || errno != EINTR) {
            failed_ = true;
        }
    }
    return !failed_;
}

NewFile::Outcome NewFile::finish()
{
    if (failed_ || SyncFile(handle_)) {
        return Outcome::NotWritten;
    }
    return giveName();
}

#if defined(_WIN32)

NewFile::Outcome NewFile::giveName()
{
    closeHandle(handle_);
    handle_ = -1;
    if (::MoveFileExW(temporary_.c_str(), path_.c_str(), MOVEFILE_WRITE_THROUGH)) {
        return Outcome::Done;
    }
    const DWORD error = ::GetLastError();
    ::DeleteFileW(temporary_.c_str());
    return error == ERROR_ALREADY_EXISTS || error == ERROR_FILE_EXISTS ? Outcome::NameTaken
                                                                       : Outcome::NotWritten;
}

#else

NewFile::Outcome NewFile::giveName()
{
    // A second name for the finished file, which fails when the name is taken; the first
    // goes with this object.
    if (::link(temporary_.c_str(), path_.c_str()) != 0) {
        if (errno == EEXIST) {
            return Outcome::NameTaken;
        }
        // No second names on this file system. Here the name might be taken in between.
        std::error_code error;
        if (std::filesystem::exists(std::filesystem::symlink_status(path_, error))) {
            return Outcome::NameTaken;
        }
        if (::rename(temporary_.c_str(), path_.c_str()) != 0) {
            return Outcome::NotWritten;
        }
    }
    if (SyncFolder(path_.parent_path())) {
        ::unlink(path_.c_str());
        return Outcome::NotWritten;
    }
    return Outcome::Done;
}

#endif

} // namespace varnholt
