// A thousand boards in one process: what each costs, and what happens to the one that does not fit.
#include "tests/faults/scenarios/Children.h"
#include "tests/faults/scenarios/Process.h"
#include "tests/faults/scenarios/Scenario.h"

#include "tests/faults/scenarios/CheckedCalls.h"

#include <algorithm>
#include <atomic>
#include <mutex>
#include <sys/resource.h>
#include <thread>
#include <unistd.h>

namespace OrvaneFaults {
namespace {

constexpr std::size_t kDescriptorsPerBoard = 6;
constexpr std::size_t kThreadsPerBoard = 1;

using Session = std::unique_ptr<Orvane::PhySession>;

// Calls `work` with every number below `count`, a few at a time.
template <class Work>
void someAtATime(std::size_t count, Work work) {
    constexpr unsigned kWorkers = 16;
    std::atomic<std::size_t> next{0};
    std::vector<std::thread> workers;
    for (unsigned i = 0; i < kWorkers; ++i)
        workers.emplace_back([&] {
            for (std::size_t number = next++; number < count; number = next++)
                work(number);
        });
    for (std::thread& worker : workers)
        worker.join();
}

Outcomes readAll(const std::vector<NamedBoard>& boards, std::vector<Session>& sessions) {
    Outcomes sum;
    std::mutex mutex;
    someAtATime(boards.size(), [&](std::size_t number) {
        if (!sessions[number])
            return;
        CheckedCalls calls(boards[number].number, 1);
        calls.read(*sessions[number]);
        const std::lock_guard<std::mutex> lock(mutex);
        sum += calls.take();
    });
    return sum;
}

std::string perBoard(std::size_t total, std::size_t boards) {
    return std::to_string(total) + " (" + std::to_string(total / boards) + ")";
}

void holdAll(Run& run, const std::vector<NamedBoard>& boards) {
    Table table(std::to_string(boards.size()) + " boards in one process",
                {"moment", "descriptors (per board)", "threads (per board)", "heap bytes (per board)",
                 "resident bytes (per board)", "good reads"});
    { // whatever is made once and kept
        const Session first = openSession(boards[0].serial, boards[0].address);
        static_cast<void>(first);
    }
    const Holdings before = Holdings::now();
    const auto show = [&](const char* moment, const std::string& reads) {
        const Holdings now = Holdings::now();
        const auto more = [](std::size_t a, std::size_t b) { return a > b ? a - b : 0; };
        table.row(moment, perBoard(more(now.descriptors, before.descriptors), boards.size()),
                  perBoard(more(now.threads, before.threads), boards.size()),
                  perBoard(more(now.heapBytes, before.heapBytes), boards.size()),
                  perBoard(more(now.residentBytes, before.residentBytes), boards.size()), reads);
        return now;
    };
    std::vector<Session> sessions(boards.size());
    someAtATime(boards.size(), [&](std::size_t number) {
        try {
            sessions[number] = openSession(boards[number].serial, boards[number].address);
        } catch (const std::exception& problem) {
            run.report.expect(false, "board ", number, ": ", problem.what());
        }
    });
    const Outcomes first = readAll(boards, sessions);
    run.report.expect(first.good == boards.size(), first.good, " boards were read");
    const Holdings open = show("all open, each read once", std::to_string(first.good));
    run.report.expect(open.descriptors - before.descriptors == kDescriptorsPerBoard * boards.size(),
                      "descriptors: ", open.descriptors - before.descriptors);
    run.report.expect(open.threads - before.threads == kThreadsPerBoard * boards.size(),
                      "threads: ", open.threads - before.threads);
    std::this_thread::sleep_for(std::chrono::seconds(run.size(60, 5)));
    const Outcomes later = readAll(boards, sessions);
    run.report.expect(later.good == boards.size(), later.good, " boards were read after a while");
    std::size_t pings = 0;
    for (const Session& session : sessions)
        pings += session && session->pingSequence > 0 ? 1U : 0U;
    run.report.expect(pings == boards.size(), pings, " boards were pinged");
    show(run.full ? "kept alive for a minute" : "kept alive for five seconds", std::to_string(later.good));
    expectFlat(run.report, "keeping alive", open, 64 * boards.size());
    someAtATime(boards.size(), [&](std::size_t number) { sessions[number].reset(); });
    expectFlat(run.report, "closing", before);
    show("all closed", "");
    run.report.show(table);
}

// Opens boards until one does not fit, and a few more; every one that was opened must go on, but for the
// last, in which perhaps not every client found a descriptor: its calls end in an error.
int openWithLimit(const std::vector<NamedBoard>& boards, int words) {
    constexpr rlim_t kLimit = 1024;
    const rlimit limit{kLimit, kLimit};
    if (setrlimit(RLIMIT_NOFILE, &limit) != 0)
        return 2;
    std::vector<Session> sessions(boards.size());
    std::vector<std::string> refusals;
    constexpr std::size_t kRefusals = 5;
    for (std::size_t i = 0; i < boards.size() && refusals.size() < kRefusals; ++i)
        try {
            sessions[i] = openSession(boards[i].serial, boards[i].address);
        } catch (const std::exception& problem) {
            refusals.emplace_back(problem.what());
        }
    const auto open = static_cast<std::size_t>(
        std::count_if(sessions.begin(), sessions.end(), [](const Session& each) { return each != nullptr; }));
    const Outcomes outcomes = readAll(boards, sessions);
    std::sort(refusals.begin(), refusals.end());
    refusals.erase(std::unique(refusals.begin(), refusals.end()), refusals.end());
    std::string text = std::to_string(open) + " open, " + std::to_string(outcomes.good) +
                       " of them read meanwhile; refused with:";
    for (const std::string& refusal : refusals)
        text += " " + refusal;
    sessions.clear();
    const bool flat = Holdings::now().threads == 1;
    if (write(words, text.data(), text.size()) < 0)
        return 2;
    return flat && !refusals.empty() && outcomes.good + 1 >= open && outcomes.wrong == 0 ? 0 : 1;
}

} // namespace

void manyBoards(Run& run) {
    const BoardProcesses processes(run.size(1000U, 200U));
    const auto end = inChild([&](int words) { return openWithLimit(processes.boards(), words); },
                             std::chrono::seconds(120));
    Table table("With a limit of 1,024 descriptors", {"outcome", "what happened"});
    const bool good = end.how == ChildEnd::How::Exited && end.value == 0;
    table.row(good ? "exited" : "BROKEN", end.words);
    run.report.expect(good, "with 1,024 descriptors: ended with ", end.value, " after: ", end.words);
    run.report.show(table);
    holdAll(run, processes.boards());
}

} // namespace OrvaneFaults
