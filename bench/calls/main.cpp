// bench_calls: takes measurements in a private network with simulated boards; a line of JSON for each.
#include "bench/calls/BoardProcess.h"
#include "bench/calls/Measure.h"

#include <algorithm>
#include <CLI/CLI.hpp>
#include <cstdio>
#include <exception>

namespace {

using namespace OrvaneBench;

constexpr Measurement kMeasurements[] = {
    {"class", compareClassReads},         {"flat", compareFlatReads},
    {"logged", compareLoggedReads},       {"block", compareBlocks},
    {"first", compareFirstReads},         {"open", measureOpening},
    {"boards", compareThreadsOnBoards},   {"board", compareThreadsOnOneBoard},
    {"idle", measureIdleSessions},        {"listener", measureListener},
    {"rack", compareRackReads},           {"rack-block", compareRackBlocks},
    {"flight", compareFlightsOverBoards}, {"blocks-in-flight", compareBlocksInFlight},
};

// Wants as many boards as it is to measure, and disturbs what searches for boards.
constexpr Measurement kMany{"many", measureRackOfBoards};

void run(const std::vector<std::string>& names, unsigned count, int rounds) {
    const BoardProcess boards(count);
    const Arrangement arrangement{boards.addresses(), rounds};
    if (std::find(names.begin(), names.end(), kMany.name) != names.end())
        kMany.run(arrangement);
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
    known.emplace_back(kMany.name);
    unsigned count = 16;
    int rounds = 201;
    app.add_option("measure", names, "What to measure (everything but many)")->check(CLI::IsMember(known));
    app.add_option("--rounds", rounds, "Rounds of each comparison")
        ->check(CLI::PositiveNumber)
        ->capture_default_str();
    app.add_option("--boards", count, "Boards, 16 and up")
        ->check(CLI::Range(16, 30000))
        ->capture_default_str();
    CLI11_PARSE(app, argc, argv);
    try {
        run(names, count, rounds);
        return 0;
    } catch (const std::exception& problem) {
        std::fprintf(stderr, "bench_calls: %s\n", problem.what());
        return 1;
    }
}
