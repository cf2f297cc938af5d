// From the start of the process to the first paint, and until the selection window has been
// painted, in CPU time of the whole process, against the first paint of an empty main window
// that opens an SQLite file. All run in turn on the supplied library and on the display given.

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
    std::vector<double> paint;
    std::vector<double> ready;
    for (int i = 0; i < 31; ++i) {
        const double peer = run(folder + "bench_start_peer", folder + "Varnholt.mdb");
        paint.push_back(run(folder + "bench_start_own", "paint") / peer);
        ready.push_back(run(folder + "bench_start_own", "ready") / peer);
    }
    const std::string peer = "an empty Qt main window opening an SQLite file";
    return varnholt::bench::report(
        {{"start.paint", varnholt::bench::median(paint), 2, 1.3, "ratio", peer},
         {"start.ready", varnholt::bench::median(ready), -1, -1, "ratio", peer}},
        argc, argv);
}
