// Requests and replies that are lost, on many boards at once so that the waits for them run side by side.
#include "tests/faults/scenarios/Process.h"
#include "tests/faults/scenarios/Scenario.h"
#include "tests/faults/scenarios/SessionsOnBoards.h"

namespace OrvaneFaults {
namespace {

using OrvaneSim::Fault;

// In milliseconds: eight attempts of 2 s, and behind each a recovery of up to 12.5 s.
constexpr double kLongestLossyCall = 100000;

constexpr unsigned kWarmUp = 10; // calls

// Bytes: what malloc keeps for a thread from its first allocation on (656), rounded up. The thread that pings
// a board allocates nothing before it first reports a loss.
constexpr std::size_t kThreadsOwn = 1024;

std::vector<Fault> lossOf(double share) {
    std::vector<Fault> faults;
    for (const char* program : {"mdio", "keepAlive"}) // what travels by UDP
        for (const Fault::Kind kind : {Fault::Kind::LoseRequest, Fault::Kind::LoseReply})
            faults.push_back({program, "", kind, -1, 0, share});
    return faults;
}

struct Figures {
    Outcomes under;
    Outcomes after;
    OrvaneSim::CallCounts counts;
};

Figures loseOn(SessionsOnBoards& boards, double share, unsigned callsEach) {
    Figures figures;
    const auto countsBefore = boards.counts();
    boards.showFaults(lossOf(share));
    boards.onAll([&](SessionOnBoard& each, unsigned) {
        for (unsigned i = 0; i < callsEach; ++i)
            each.calls.one(*each.session);
    });
    boards.clearFaults();
    figures.under = boards.takeOutcomes();
    figures.counts = boards.counts() - countsBefore;
    boards.onAll([](SessionOnBoard& each, unsigned) {
        if (each.session->isValid())
            each.calls.read(*each.session);
    });
    figures.after = boards.takeOutcomes();
    return figures;
}

void judge(Report& report, const Figures& figures, double share, std::size_t leastLosses) {
    const auto& [under, after, counts] = figures;
    const std::string at = "at " + percent(share) + " loss: ";
    const std::size_t losses = counts.lostRequests + counts.lostReplies;
    report.expect(under.wrong == 0, at, under.wrong, " calls with a wrong value or an undocumented error");
    report.expect(under.good + under.failed() == under.calls, at, "calls without an end");
    report.expect(under.slowestMs < kLongestLossyCall, at, "a call took ", under.slowestMs, " ms");
    report.expect(losses >= leastLosses, at, "only ", losses, " losses");
    report.expect(after.good == after.calls, at, after.calls - after.good,
                  " first calls failed after the fault");
    report.expect(counts.received == counts.executed + counts.lostRequests, at, "requests unaccounted for");
    // Each good call was executed for its answer, and each lost reply is one execution more; what is over
    // was answered too late, on a busy machine.
    report.expect(counts.executed >= under.good + counts.lostReplies, at, "answers without execution");
    report.expect(counts.executed - under.good - counts.lostReplies <= under.calls / 100, at,
                  counts.executed - under.good - counts.lostReplies, " executions that nobody asked for");
}

} // namespace

void loss(Run& run) {
    SessionsOnBoards boards(run.size(400U, 12U), run.seed);
    const unsigned callsEach = run.size(50U, 12U);
    Table table("Lost requests and replies: " + std::to_string(boards.size()) + " boards, a thread each",
                {"lost, each way", "calls", "losses", "good", "`Remote error.`", "invalid session", "wrong",
                 "slowest call", "good at once afterwards", "executions", "good + lost replies"});
    loseOn(boards, 0, kWarmUp); // what a session, its threads and a board make at their first calls
    const Holdings before = Holdings::now();
    for (const double share : run.full ? std::vector<double>{0.001, 0.01, 0.05, 0.2} : std::vector{0.05}) {
        const Figures figures = loseOn(boards, share, callsEach);
        judge(run.report, figures, share, run.full && share >= 0.01 ? 200 : 1);
        const auto& [under, after, counts] = figures;
        table.row(percent(share), under.calls, counts.lostRequests + counts.lostReplies, under.good,
                  under.remoteErrors, under.invalidSessions, under.wrong, seconds(under.slowestMs) + " s",
                  std::to_string(after.good) + " of " + std::to_string(boards.size()), counts.executed,
                  under.good + counts.lostReplies);
        expectFlat(run.report, "loss", before, 256 * 1024 + boards.size() * kThreadsOwn);
    }
    run.report.show(table);
}

} // namespace OrvaneFaults
