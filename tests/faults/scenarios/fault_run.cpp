// Runs the fault scenarios beside simulated boards in a private network and prints their figures.
#include "simulator/network/PrivateNetwork.h"
#include "tests/faults/scenarios/Scenario.h"
#include "tests/faults/scenarios/SideBySide.h"

#include <algorithm>
#include <chrono>
#include <CLI/CLI.hpp>
#include <cstdio>
#include <cstdlib>
#include <unistd.h>

namespace OrvaneFaults {

const std::vector<Scenario>& scenarios() {
    static const std::vector<Scenario> all{
        {"exhaustion", "RunningOutOfAnythingIsAnErrorAndNoCrash", false, exhaustion},
        {"many", "ManyBoardsAreHeldAtOnce", false, manyBoards},
        {"rack", "ARackOfBoardsGivesNoWrongValueAndLosesNobody", false, rackFaults},
        {"loss", "LostRequestsAndRepliesCostTimeAndNothingElse", false, loss},
        {"duplicates", "DuplicatedAndReorderedRepliesChangeNoAnswer", true, duplicatesAndOrder},
        {"late", "ALateReplyIsNotTakenForALaterAnswer", true, lateReplies},
        {"strays", "AFloodOfStrayDatagramsChangesNoAnswer", true, strayDatagrams},
        {"dead", "ABoardThatDiesAtAnyMomentIsReportedAndFoundAgain", false, deadBoards},
        {"refusals", "EveryRefusalEndsInItsDocumentedError", false, refusals},
        {"bounds", "NoWaitIsLongerThanDocumented", false, bounds},
        {"races", "ThreadsResetsClosesAndDiscoveryTogetherChangeNoAnswer", true, races},
    };
    return all;
}

namespace {

// True when every invariant of the scenario held.
bool runOne(const Scenario& scenario, std::uint64_t seed, bool full) {
    const auto start = std::chrono::steady_clock::now();
    say(std::string("\n## ") + scenario.name + ": " + scenario.claim + "\n");
    Report report;
    Run run{report, seed, full};
    try {
        scenario.run(run);
    } catch (const std::exception& problem) {
        report.expect(false, "the scenario itself failed: ", problem.what());
    }
    const std::chrono::duration<double, std::milli> took = std::chrono::steady_clock::now() - start;
    const bool held = report.brokenInvariants() == 0;
    say((held ? "held after " : "BROKEN after ") + seconds(took.count()) + " s");
    return held;
}

// All when there are no names; none when one of them is no scenario's.
std::vector<const Scenario*> scenariosNamed(const std::vector<std::string>& names) {
    std::vector<const Scenario*> found;
    for (const Scenario& each : scenarios())
        if (names.empty() || std::find(names.begin(), names.end(), each.name) != names.end())
            found.push_back(&each);
    if (!names.empty() && found.size() != names.size())
        found.clear();
    return found;
}

// Starts this program anew with a malloc whose figures are exact: what threads keep to themselves of the
// memory that they gave back would count as in use.
void countMemoryExactly(char** argv) {
    constexpr const char* kVariable = "GLIBC_TUNABLES";
    if (getenv(kVariable) != nullptr) // NOLINT(concurrency-mt-unsafe): there is one thread yet
        return;
    setenv(kVariable, "glibc.malloc.tcache_count=0", 1); // NOLINT(concurrency-mt-unsafe)
    execv("/proc/self/exe", argv);
}

} // namespace
} // namespace OrvaneFaults

int main(int argc, char** argv) {
    using OrvaneFaults::say;
    using OrvaneFaults::Scenario;
    OrvaneFaults::countMemoryExactly(argv);
    CLI::App app{"Runs fault scenarios beside simulated boards and prints their figures as tables."};
    bool full = false;
    std::uint64_t seed = 1;
    std::string diagnostics = "/dev/null";
    std::vector<std::string> chosen;
    app.add_flag("--full", full, "the sizes of the published figures (minutes), not those of a quick test");
    app.add_option("--seed", seed, "whatever is left to chance follows from it")->capture_default_str();
    app.add_option("--diagnostics", diagnostics, "file for what the library itself writes")
        ->capture_default_str();
    app.add_option("scenario", chosen, "names of scenarios; none for all");
    CLI11_PARSE(app, argc, argv);

    const std::vector<const Scenario*> wanted = OrvaneFaults::scenariosNamed(chosen);
    OrvaneFaults::figuresTo(fdopen(dup(STDOUT_FILENO), "w"));
    if (wanted.empty()) {
        say("there is no such scenario");
        return 2;
    }
    if (!std::freopen(diagnostics.c_str(), "a", stderr) || !std::freopen(diagnostics.c_str(), "a", stdout))
        return 2;
    const auto run = [&](const Scenario& scenario) {
        OrvaneSim::PrivateNetwork::enter({});
        return OrvaneFaults::runOne(scenario, seed, full) ? 0 : 1;
    };
    const int broken = wanted.size() == 1 ? run(*wanted.front()) : OrvaneFaults::runSideBySide(wanted, run);
    say("\n" + std::to_string(wanted.size()) + " scenarios, " + std::to_string(broken) +
        " with broken invariants");
    return broken == 0 ? 0 : 1;
}
