// From the start of the process to the first paint, in CPU time of the whole process, against
// an empty main window that opens an SQLite file. Both run in turn on the supplied library.

#include "support/report.h"

#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cstdlib>
#include <string>

namespace {

/// CPU seconds of a finished child.
double run(const std::string& program, const std::string& argument)
{
    const pid_t child = fork();
    if (child == 0) {
        setenv("QT_QPA_PLATFORM", "offscreen", 1);
        execl(program.c_str(), program.c_str(), argument.c_str(), nullptr);
        _exit(127);
    }
    int status = 0;
    rusage usage{};
    wait4(child, &status, 0, &usage);
    if (status != 0) {
        std::fprintf(stderr, "%s ended with %d\n", program.c_str(), status);
        std::exit(1);
    }
    const auto seconds = [](const timeval& time) {
        return static_cast<double>(time.tv_sec) + 1e-6 * static_cast<double>(time.tv_usec);
    };
    return seconds(usage.ru_utime) + seconds(usage.ru_stime);
}

} // namespace

int main(int argc, char** argv)
{
    std::string folder = argv[0];
    folder = folder.substr(0, folder.rfind('/') + 1);
    std::vector<double> ratios;
    for (int i = 0; i < 31; ++i) {
        const double own = run(folder + "bench_start_own", folder + "Varnholt.mdb");
        ratios.push_back(own / run(folder + "bench_start_peer", folder + "Varnholt.mdb"));
    }
    return varnholt::bench::report({{"start.paint", varnholt::bench::median(ratios), 2, 1.3,
                                     "ratio", "an empty Qt main window opening an SQLite file"}},
                                   argc, argv);
}
