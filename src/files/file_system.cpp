#include "files/file_system.h"

#if defined(_WIN32)
#include <string>

#include <windows.h>
#elif defined(__linux__)
#include <algorithm>
#include <array>

#include <sys/vfs.h>
#endif

namespace varnholt {

#if defined(_WIN32)

namespace {

/// \\server\share, also as \\?\UNC\server\share
bool isShare(std::filesystem::path path)
{
    const std::wstring name = path.make_preferred().native();
    return name.starts_with(LR"(\\?\UNC\)") ||
           (name.starts_with(LR"(\\)") && !name.starts_with(LR"(\\?\)") &&
            !name.starts_with(LR"(\\.\)"));
}

} // namespace

bool IsOnNetwork(const std::filesystem::path& path)
{
    wchar_t volume[MAX_PATH + 1] = {};
    return isShare(path) || (::GetVolumePathNameW(path.c_str(), volume, MAX_PATH) &&
                             ::GetDriveTypeW(volume) == DRIVE_REMOTE);
}

#elif defined(__linux__)

bool IsOnNetwork(const std::filesystem::path& path)
{
    // NFS, SMB in its three versions, FUSE (as for drives over SSH), 9P, Ceph, AFS, Coda and the
    // shared folders of virtual machines.
    constexpr std::array<unsigned, 10> types{0x6969,     0x517b,     0xff534d42, 0xfe534d42,
                                             0x65735546, 0x01021997, 0x00c36400, 0x5346414f,
                                             0x73757245, 0x786f4256};
    struct statfs system = {};
    return ::statfs(path.c_str(), &system) == 0 &&
           std::find(types.begin(), types.end(), static_cast<unsigned>(system.f_type)) !=
               types.end();
}

#else

bool IsOnNetwork(const std::filesystem::path& /*path*/)
{
    return false;
}

#endif

} // namespace varnholt
