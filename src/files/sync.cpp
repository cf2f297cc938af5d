#include "files/sync.h"

#include <cerrno>

#include <fcntl.h>
#ifdef _WIN32
#include <io.h>
#else
#include <unistd.h>
#endif

namespace varnholt {

namespace {

std::error_code lastError()
{
    return {errno, std::generic_category()};
}

std::error_code outcome(int result)
{
    const bool notOffered = errno == EINVAL || errno == ENOSYS || errno == ENOTSUP;
    return result == 0 || notOffered ? std::error_code() : lastError();
}

#ifdef _WIN32

int sync(int descriptor)
{
    return ::_commit(descriptor);
}

int openFile(const std::filesystem::path& path)
{
    return ::_wopen(path.c_str(), _O_RDWR | _O_BINARY);
}

void close(int descriptor)
{
    ::_close(descriptor);
}

#else

int sync(int descriptor)
{
    return ::fsync(descriptor);
}

int openFile(const std::filesystem::path& path)
{
    return ::open(path.c_str(), O_RDONLY | O_CLOEXEC);
}

void close(int descriptor)
{
    ::close(descriptor);
}

#endif

template <typename Request>
std::error_code withOpen(const std::filesystem::path& path, Request request)
{
    const int descriptor = openFile(path);
    if (descriptor < 0) {
        // Who may write to a folder without reading it cannot ask.
        return errno == EACCES ? std::error_code() : lastError();
    }
    const std::error_code result = outcome(request(descriptor));
    close(descriptor);
    return result;
}

} // namespace

std::error_code SyncFile(int descriptor)
{
    return outcome(sync(descriptor));
}

std::error_code SyncFolder([[maybe_unused]] const std::filesystem::path& folder)
{
#ifdef _WIN32
    return {};
#else
    return withOpen(folder.empty() ? "." : folder, &sync);
#endif
}

std::error_code SyncFiles(std::span<const std::filesystem::path> files)
{
    std::error_code error;
#ifdef __linux__
    if (!files.empty()) {
        error = withOpen(files.front().parent_path(), &::syncfs);
    }
#else
    for (const std::filesystem::path& file : files) {
        error = withOpen(file, &sync);
        if (!error) {
            error = SyncFolder(file.parent_path());
        }
        if (error) {
            break;
        }
    }
#endif
    return error;
}

} // namespace varnholt
