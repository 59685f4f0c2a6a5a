// A client that runs out of descriptors, of memory, or of the system's files.
#include "simulator/network/PrivateFiles.h"
#include "tests/faults/scenarios/CheckedCalls.h"
#include "tests/faults/scenarios/Children.h"
#include "tests/faults/scenarios/Process.h"
#include "tests/faults/scenarios/Scenario.h"

#include "ov_sys/Interface/discovery/BoardFinder.h"

#include <fstream>
#include <map>
#include <sched.h>
#include <sys/mount.h>
#include <sys/resource.h>
#include <unistd.h>

namespace OrvaneFaults {
namespace {

constexpr std::chrono::seconds kPatience{90};

void tell(int words, const std::string& text) {
    static_cast<void>(!write(words, text.data(), text.size()));
}

// Everything that a short-lived tool does: looks for boards, opens one, reads, closes.
int lifeOfATool(const NamedBoard& board, int words) {
    std::vector<Orvane::AddressResponse*> found;
    std::string outcome = "worked";
    try {
        Orvane::BoardFinder::find(board.serial, found, 200, 0);
    } catch (const std::exception&) {
        outcome = "error in the search";
    }
    for (const Orvane::AddressResponse* each : found)
        delete each;
    try {
        const auto session = openSession(board.serial, board.address);
        CheckedCalls calls(board.number, 1);
        calls.read(*session);
        const Outcomes outcomes = calls.take();
        if (outcomes.wrong != 0)
            return 1;
        if (outcomes.good == 0)
            outcome = "error in the call";
    } catch (const std::exception&) {
        outcome = "error in the opening";
    }
    tell(words, outcome);
    return 0;
}

// Runs a tool once for each value and counts how the lives ended.
template <class Prepare>
void sweep(Run& run, Table& table, const std::string& name, const NamedBoard& board,
           const std::vector<rlim_t>& values, Prepare prepare) {
    std::map<std::string, std::size_t> ends;
    for (const rlim_t value : values) {
        const ChildEnd end =
            inChild([&](int words) { return prepare(value) ? lifeOfATool(board, words) : 2; }, kPatience);
        run.report.expect(end.how == ChildEnd::How::Exited && end.value == 0, name, " ", value, ": ",
                          end.how == ChildEnd::How::Hung ? "hung" : "crashed", " with ", end.value);
        ++ends[end.words];
    }
    std::string text;
    for (const auto& [words, count] : ends)
        text +=
            (text.empty() ? "" : ", ") + std::to_string(count) + " x " + (words.empty() ? "BROKEN" : words);
    table.row(name, values.size(), text);
}

std::vector<rlim_t> range(rlim_t first, rlim_t last, rlim_t step) {
    std::vector<rlim_t> values;
    for (rlim_t value = first; value <= last; value += step)
        values.push_back(value);
    return values;
}

bool limitTo(decltype(RLIMIT_NOFILE) what, rlim_t value) {
    const rlimit limit{value, value};
    return setrlimit(what, &limit) == 0;
}

rlim_t addressSpace() {
    std::size_t pages = 0;
    std::ifstream("/proc/self/statm") >> pages;
    return pages * static_cast<rlim_t>(sysconf(_SC_PAGESIZE));
}

// What a child mounts from now on is its own.
bool ownMounts() {
    return unshare(CLONE_NEWNS) == 0;
}

} // namespace

void exhaustion(Run& run) {
    const BoardProcesses processes(1);
    const NamedBoard& board = processes.boards().front();
    Table table("Running out", {"of what", "runs", "ends"});
    sweep(run, table, "descriptors, 3 to 200", board, range(3, 200, run.size(1U, 12U)),
          [](rlim_t value) { return limitTo(RLIMIT_NOFILE, value); });
    constexpr rlim_t kKilobyte = 1024;
    sweep(run, table, "address space, in kilobytes above what was there at first", board,
          range(0, 24 * kKilobyte, run.size(256U, 2048U)),
          [](rlim_t value) { return limitTo(RLIMIT_AS, addressSpace() + value * kKilobyte); });
    sweep(run, table, "/etc/services (empty)", board, {0}, [](rlim_t) {
        if (!ownMounts())
            return false;
        OrvaneSim::replaceFile("/etc/services", "\n");
        return true;
    });
    sweep(run, table, "/etc/services, /etc/protocols, /etc/rpc, /etc/netconfig (unreadable)", board, {0},
          [](rlim_t) {
              if (!ownMounts())
                  return false;
              for (const char* path : {"/etc/services", "/etc/protocols", "/etc/rpc", "/etc/netconfig"})
                  if (access(path, F_OK) == 0)
                      mount("/dev/null", path, nullptr, MS_BIND, nullptr);
              return true;
          });
    run.report.show(table);
}

} // namespace OrvaneFaults
