// bench_calls: takes measurements in a private network with simulated boards; a line of JSON for each.
#include "bench/calls/BoardProcess.h"
#include "bench/calls/Measure.h"

#include <algorithm>
#include <CLI/CLI.hpp>
#include <cstdio>
#include <exception>

namespace {

using namespace OrvaneBench;

constexpr unsigned kBoards = 16;

constexpr Measurement kMeasurements[] = {
    {"class", compareClassReads},       {"flat", compareFlatReads},          {"logged", compareLoggedReads},
    {"block", compareBlocks},           {"first", compareFirstReads},        {"open", measureOpening},
    {"boards", compareThreadsOnBoards}, {"board", compareThreadsOnOneBoard}, {"idle", measureIdleSessions},
    {"listener", measureListener},
};

void run(const std::vector<std::string>& names, int rounds) {
    const BoardProcess boards(kBoards);
    const Arrangement arrangement{boards.addresses(), rounds};
    for (const Measurement& measurement : kMeasurements)
        if (names.empty() || std::find(names.begin(), names.end(), measurement.name) != names.end())
            measurement.run(arrangement);
}

} // namespace

int main(int argc, char** argv) {
    CLI::App app{"Measures the library beside bare libtirpc calls; prints a line of JSON for each measure."};
    std::vector<std::string> names;
    std::vector<std::string> known;
    for (const Measurement& measurement : kMeasurements)
        known.emplace_back(measurement.name);
    int rounds = 201;
    app.add_option("measure", names, "What to measure (everything)")->check(CLI::IsMember(known));
    app.add_option("--rounds", rounds, "Rounds of each comparison")
        ->check(CLI::PositiveNumber)
        ->capture_default_str();
    CLI11_PARSE(app, argc, argv);
    try {
        run(names, rounds);
        return 0;
    } catch (const std::exception& problem) {
        std::fprintf(stderr, "bench_calls: %s\n", problem.what());
        return 1;
    }
}
