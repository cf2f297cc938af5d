// Stands before the C library's calls that change files, also for the libraries that it links.

#include "library/file_steps.h"

#include <cerrno>
#include <csignal>

#include <dlfcn.h>
#include <sys/types.h>
#include <unistd.h>

namespace varnholt::test {
namespace {

AtStep mode = AtStep::Nothing;
int target = 0;
int steps = 0;

/// True when the step is to fail for want of space.
bool step(bool writesBytes)
{
    ++steps;
    if (mode == AtStep::Kill && steps == target) {
        kill(getpid(), SIGKILL);
    }
    errno = ENOSPC;
    return mode == AtStep::DiskFull && steps >= target && writesBytes;
}

template <typename Call>
Call next(const char* name)
{
    return reinterpret_cast<Call>(dlsym(RTLD_NEXT, name));
}

} // namespace

void setFileSteps(AtStep what, int number)
{
    mode = what;
    target = number;
    steps = 0;
}

int fileSteps()
{
    return steps;
}

} // namespace varnholt::test

using varnholt::test::step;

#define STEP(result, name, parameters, arguments, writesBytes)                                     \
    extern "C" result name parameters                                                              \
    {                                                                                              \
        using Call = result(*) parameters;                                                         \
        static const auto original = varnholt::test::next<Call>(#name);                            \
        return step(writesBytes) ? result(-1) : original arguments;                                \
    }

STEP(ssize_t, write, (int file, const void* bytes, size_t count), (file, bytes, count), file > 2)
STEP(ssize_t, pwrite64, (int file, const void* bytes, size_t count, off64_t at),
     (file, bytes, count, at), true)
STEP(ssize_t, pwrite, (int file, const void* bytes, size_t count, off_t at),
     (file, bytes, count, at), true)
STEP(ssize_t, sendfile, (int to, int from, off_t* at, size_t count), (to, from, at, count), true)
STEP(ssize_t, sendfile64, (int to, int from, off64_t* at, size_t count), (to, from, at, count),
     true)
STEP(ssize_t, copy_file_range,
     (int from, off64_t* fromAt, int to, off64_t* toAt, size_t count, unsigned flags),
     (from, fromAt, to, toAt, count, flags), true)
STEP(int, rename, (const char* from, const char* to) noexcept, (from, to), false)
STEP(int, unlink, (const char* path) noexcept, (path), false)
STEP(int, remove, (const char* path) noexcept, (path), false)
STEP(int, ftruncate64, (int file, off64_t size) noexcept, (file, size), false)
STEP(int, fsync, (int file), (file), false)
STEP(int, fdatasync, (int file), (file), false)
STEP(int, mkdir, (const char* path, mode_t mode) noexcept, (path, mode), false)

extern "C" int link(const char* from, const char* to) noexcept
{
    using Call = int (*)(const char*, const char*);
    static const auto original = varnholt::test::next<Call>("link");
    step(false);
    if (varnholt::test::mode == varnholt::test::AtStep::NoLinks) {
        errno = EPERM;
        return -1;
    }
    return original(from, to);
}
