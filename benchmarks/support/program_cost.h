#pragma once

#include <QProcess>
#include <QStringList>

#include <cstdio>
#include <cstdlib>

#include <sys/resource.h>

namespace varnholt::bench {

inline double childSeconds()
{
    rusage usage{};
    getrusage(RUSAGE_CHILDREN, &usage);
    const auto seconds = [](const timeval& time) {
        return static_cast<double>(time.tv_sec) + 1e-6 * static_cast<double>(time.tv_usec);
    };
    return seconds(usage.ru_utime) + seconds(usage.ru_stime);
}

/// CPU time of another program, which must succeed.
inline double cpuOfProgram(const QString& program, const QStringList& arguments)
{
    const double start = childSeconds();
    if (QProcess::execute(program, arguments) != 0) {
        std::fprintf(stderr, "%s failed\n", qPrintable(program));
        std::exit(1);
    }
    return childSeconds() - start;
}

} // namespace varnholt::bench
