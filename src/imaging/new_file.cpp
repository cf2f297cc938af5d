#include "imaging/new_file.h"

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

constexpr int kAttempts = 16;

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
    : m_path(path)
{
    std::random_device random;
    for (int i = 0; i < kAttempts && m_handle < 0; ++i) {
        // Not derived from the name, which may be as long as names can be.
        m_temporary = path.parent_path() / (".new-" + std::to_string(random()) + ".part");
        m_handle = openNew(m_temporary);
        if (m_handle < 0 && errno != EEXIST)
            return;
    }
}

NewFile::~NewFile()
{
    if (m_handle < 0)
        return;
    closeHandle(m_handle);
    std::error_code ignored;
    std::filesystem::remove(m_temporary, ignored);
}

bool NewFile::write(std::span<const std::uint8_t> bytes)
{
    while (!bytes.empty() && !m_failed) {
        const std::ptrdiff_t n = writeSome(m_handle, bytes.data(), bytes.size());
        if (n > 0)
            bytes = bytes.subspan(static_cast<std::size_t>(n));
        else if (n == 0 || errno != EINTR)
            m_failed = true;
    }
    return !m_failed;
}

NewFile::Outcome NewFile::finish()
{
    if (m_failed || !flush())
        return Outcome::NotWritten;
    return giveName();
}

#if defined(_WIN32)

bool NewFile::flush()
{
    return ::_commit(m_handle) == 0;
}

NewFile::Outcome NewFile::giveName()
{
    closeHandle(m_handle);
    m_handle = -1;
    if (::MoveFileExW(m_temporary.c_str(), m_path.c_str(), MOVEFILE_WRITE_THROUGH))
        return Outcome::Done;
    const DWORD error = ::GetLastError();
    ::DeleteFileW(m_temporary.c_str());
    return error == ERROR_ALREADY_EXISTS || error == ERROR_FILE_EXISTS ? Outcome::NameTaken
                                                                       : Outcome::NotWritten;
}

#else

bool NewFile::flush()
{
    return ::fsync(m_handle) == 0;
}

NewFile::Outcome NewFile::giveName()
{
    // A second name for the finished file, which fails when the name is taken; the first
    // goes with this object.
    if (::link(m_temporary.c_str(), m_path.c_str()) != 0) {
        if (errno == EEXIST)
            return Outcome::NameTaken;
        // No second names on this file system. Here the name might be taken in between.
        std::error_code error;
        if (std::filesystem::exists(std::filesystem::symlink_status(m_path, error)))
            return Outcome::NameTaken;
        if (::rename(m_temporary.c_str(), m_path.c_str()) != 0)
            return Outcome::NotWritten;
    }
    const std::filesystem::path folder =
        m_path.has_parent_path() ? m_path.parent_path() : std::filesystem::path(".");
    const int handle = ::open(folder.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
    if (handle >= 0) {
        ::fsync(handle);
        ::close(handle);
    }
    return Outcome::Done;
}

#endif

} // namespace varnholt
