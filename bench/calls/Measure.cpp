// Repetitions, their figures, and the lines that are compared.
#include "bench/calls/Measure.h"

#include <cstdio>
#include <fstream>
#include <stdexcept>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

namespace OrvaneBench {
namespace {

int runAndReport(const ChildWork& work) {
    try {
        report(work.name, work.run());
        return 0;
    } catch (const std::exception& problem) {
        std::fprintf(stderr, "%s: %s\n", work.name.c_str(), problem.what());
        return 1;
    }
}

} // namespace

double secondsOf(const std::function<void()>& work) {
    const auto start = std::chrono::steady_clock::now();
    work();
    return std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
}

double processorSeconds() {
    rusage usage{};
    getrusage(RUSAGE_SELF, &usage);
    const auto seconds = [](const timeval& time) {
        return static_cast<double>(time.tv_sec) + static_cast<double>(time.tv_usec) / 1e6;
    };
    return seconds(usage.ru_utime) + seconds(usage.ru_stime);
}

double residentKilobytes() {
    std::ifstream file("/proc/self/statm");
    double total = 0;
    double resident = 0;
    file >> total >> resident;
    return resident * static_cast<double>(sysconf(_SC_PAGESIZE)) / 1024;
}

void comparePair(const Pair& pair, int rounds) {
    std::vector<double> ours;
    std::vector<double> bare;
    const auto measure = [&pair](const std::function<void()>& side, std::vector<double>& times) {
        times.push_back(secondsOf(side) * 1e9 / static_cast<double>(pair.operations));
    };
    pair.ours();
    pair.bare();
    for (int round = 0; round < rounds; ++round) {
        if (round % 2 == 0)
            measure(pair.ours, ours);
        measure(pair.bare, bare);
        if (round % 2 != 0)
            measure(pair.ours, ours);
    }
    report(pair.name, {{"ours", ours}, {"bare", bare}});
}

void report(const std::string& name, nlohmann::json content) {
    content["name"] = name;
    std::printf("%s\n", content.dump().c_str());
    std::fflush(stdout);
}

void reportFromChild(const ChildWork& work) {
    const pid_t child = fork();
    if (child == 0)
        _exit(runAndReport(work));
    int status = 0;
    if (waitpid(child, &status, 0) != child || status != 0)
        throw std::runtime_error("the process that measures " + work.name + " failed");
}

} // namespace OrvaneBench
