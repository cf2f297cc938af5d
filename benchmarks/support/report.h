#pragma once

#include <algorithm>
#include <cstdio>
#include <cstring>
#include <ctime>
#include <functional>
#include <string>
#include <vector>

namespace varnholt::bench {

/// One figure of the table. `must` and `aim` are upper limits; negative where there is none.
struct Row
{
    std::string id;
    double value = 0;
    double must = -1;
    double aim = -1;
    std::string unit;
    std::string peer;
};

/// CPU time of this process so far, in seconds, all threads.
inline double cpuSeconds()
{
    timespec now{};
    clock_gettime(CLOCK_PROCESS_CPUTIME_ID, &now);
    return static_cast<double>(now.tv_sec) + 1e-9 * static_cast<double>(now.tv_nsec);
}

inline double cpuOf(const std::function<void()>& work)
{
    const double start = cpuSeconds();
    work();
    return cpuSeconds() - start;
}

inline double median(std::vector<double> values)
{
    const auto middle = values.begin() + static_cast<std::ptrdiff_t>(values.size() / 2);
    std::nth_element(values.begin(), middle, values.end());
    return *middle;
}

/// Runs both in turn and returns the median of the ratios of their CPU times: what disturbs
/// one round disturbs both.
inline double ratio(int rounds, const std::function<void()>& ours,
                    const std::function<void()>& peer)
{
    std::vector<double> ratios;
    ours();
    peer();
    for (int i = 0; i < rounds; ++i) {
        const double own = cpuOf(ours);
        ratios.push_back(own / cpuOf(peer));
    }
    return median(ratios);
}

/// Prints the rows as a table and, with "--json FILE" among the arguments, writes them as a
/// list of objects. Returns the exit code for main.
inline int report(const std::vector<Row>& rows, int argc, char** argv)
{
    std::printf("%-18s %10s %8s %8s  %-10s %s\n", "id", "value", "must", "aim", "unit", "against");
    const auto limit = [](double value) {
        char text[32] = "-";
        if (value >= 0) {
            std::snprintf(text, sizeof text, "%g", value);
        }
        return std::string(text);
    };
    for (const Row& row : rows) {
        std::printf("%-18s %10.3f %8s %8s  %-10s %s%s\n", row.id.c_str(), row.value,
                    limit(row.must).c_str(), limit(row.aim).c_str(), row.unit.c_str(),
                    row.peer.c_str(), row.must >= 0 && row.value > row.must ? "  MISSED" : "");
    }
    for (int i = 1; i + 1 < argc; ++i) {
        if (std::strcmp(argv[i], "--json") != 0) {
            continue;
        }
        std::FILE* file = std::fopen(argv[i + 1], "w");
        if (!file) {
            std::perror(argv[i + 1]);
            return 1;
        }
        const auto number = [](double value) {
            return value < 0 ? std::string("null") : std::to_string(value);
        };
        std::fputs("[\n", file);
        for (std::size_t k = 0; k < rows.size(); ++k) {
            const Row& row = rows[k];
            std::fprintf(file,
                         "  {\"id\": \"%s\", \"value\": %s, \"must\": %s, \"aim\": %s, "
                         "\"unit\": \"%s\", \"peer\": \"%s\"}%s\n",
                         row.id.c_str(), std::to_string(row.value).c_str(),
                         number(row.must).c_str(), number(row.aim).c_str(), row.unit.c_str(),
                         row.peer.c_str(), k + 1 < rows.size() ? "," : "");
        }
        std::fputs("]\n", file);
        if (std::fclose(file) != 0) {
            std::perror(argv[i + 1]);
            return 1;
        }
    }
    return 0;
}

} // namespace varnholt::bench
