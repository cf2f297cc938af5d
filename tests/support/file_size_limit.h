#pragma once

#ifndef _WIN32
#include <csignal>

#include <sys/resource.h>

namespace varnholt::test {

/// While it lives no file grows past `bytes`: what a full disk does.
class FileSizeLimit
{
public:
    explicit FileSizeLimit(rlim_t bytes)
    {
        std::signal(SIGXFSZ, SIG_IGN);
        getrlimit(RLIMIT_FSIZE, &before_);
        const rlimit now{bytes, before_.rlim_max};
        setrlimit(RLIMIT_FSIZE, &now);
    }
    FileSizeLimit(const FileSizeLimit&) = delete;
    FileSizeLimit& operator=(const FileSizeLimit&) = delete;
    ~FileSizeLimit() { setrlimit(RLIMIT_FSIZE, &before_); }

private:
    rlimit before_{};
};

} // namespace varnholt::test

/// For what only systems of the Unix family can be made to do.
#define VARNHOLT_SKIP_ON_WINDOWS(reason) static_assert(true)

#else

namespace varnholt::test {

/// Windows knows no such limit.
class FileSizeLimit
{
public:
    explicit FileSizeLimit(unsigned long long) {}
    ~FileSizeLimit() {}
};

} // namespace varnholt::test

#define VARNHOLT_SKIP_ON_WINDOWS(reason) GTEST_SKIP() << (reason)

#endif
