#include "files/placing.h"

#ifdef _WIN32
#include <windows.h>
#else
#include <cerrno>

#include <unistd.h>
#endif

namespace varnholt {

namespace fs = std::filesystem;

namespace {

/// A link made of a file that cannot be read would fail whoever reads it later.
std::error_code checkReadable(const fs::path& file)
{
    std::error_code error;
    if (!fs::is_regular_file(file, error)) {
        return error ? error : std::make_error_code(std::errc::no_such_file_or_directory);
    }
#ifndef _WIN32
    if (::access(file.c_str(), R_OK) != 0) {
        return {errno, std::generic_category()};
    }
#endif
    return {};
}

} // namespace

std::error_code RenameFile(const fs::path& from, const fs::path& to)
{
#ifdef _WIN32
    constexpr int attempts = 12;
    constexpr DWORD pauseMs = 50;
    for (int i = 1;; ++i) {
        if (::MoveFileExW(from.c_str(), to.c_str(), MOVEFILE_REPLACE_EXISTING)) {
            return {};
        }
        const DWORD error = ::GetLastError();
        // The second is what an open file that is to be replaced leads to.
        if ((error != ERROR_SHARING_VIOLATION && error != ERROR_ACCESS_DENIED) || i == attempts) {
            return {static_cast<int>(error), std::system_category()};
        }
        ::Sleep(pauseMs);
    }
#else
    std::error_code error;
    fs::rename(from, to, error);
    return error;
#endif
}

std::error_code PlaceFile(const fs::path& from, const fs::path& to, Placing placing)
{
    std::error_code error = checkReadable(from);
    if (error) {
        return error;
    }
    // A link made of a symbolic link would be one more symbolic link.
    const fs::path original = fs::is_symlink(from, error) ? fs::canonical(from, error) : from;
    if (placing == Placing::MayShare) {
        fs::create_hard_link(original, to, error);
        if (!error) {
            return {};
        }
    }
    fs::path part = to;
    part += ".part";
    fs::remove(part, error);
    if (placing == Placing::MayShare) {
        fs::create_hard_link(original, part, error);
    }
    if (placing == Placing::Copy || error) {
        fs::copy_file(original, part, error);
    }
    if (!error) {
        error = RenameFile(part, to);
    }
    // Renaming one link of a file onto another does nothing and leaves both.
    std::error_code ignored;
    fs::remove(part, ignored);
    return error;
}

std::error_code TakeFileTo(const fs::path& from, const fs::path& to)
{
    std::error_code error;
    const bool isFile = fs::is_regular_file(fs::symlink_status(from, error));
    if (isFile) {
        error = RenameFile(from, to);
    }
    return isFile && !error ? error : PlaceFile(from, to, Placing::Copy);
}

} // namespace varnholt
