// Replies that come twice, in another order, or after their call has given up.
#include "tests/faults/scenarios/Process.h"
#include "tests/faults/scenarios/Scenario.h"
#include "tests/faults/scenarios/SessionsOnBoards.h"

#include <atomic>
#include <chrono>
#include <utility>

namespace OrvaneFaults {
namespace {

using OrvaneSim::Fault;

std::string totalOf(const Outcomes& outcomes) {
    return std::to_string(outcomes.good) + " of " + std::to_string(outcomes.calls);
}

void expectAllGood(Report& report, const std::string& under, const Outcomes& outcomes) {
    report.expect(outcomes.good == outcomes.calls, under, ": ", outcomes.calls - outcomes.good,
                  " calls failed, ", outcomes.wrong, " of them with a wrong answer");
}

} // namespace

void duplicatesAndOrder(Run& run) {
    SessionsOnBoards boards(run.size(200U, 12U), run.seed);
    const unsigned callsEach = run.size(100U, 30U);
    Table table("Duplicated and reordered replies: " + std::to_string(boards.size()) +
                    " boards, a thread each",
                {"fault", "share", "calls that met it", "good calls", "executions", "slowest call"});
    const auto measure = [&](const char* name, Fault::Kind kind, std::int64_t value, double share) {
        const Holdings before = Holdings::now();
        const auto countsBefore = boards.counts();
        boards.showFaults({{"mdio", "", kind, -1, value, share}});
        boards.onAll([&](SessionOnBoard& each, unsigned) {
            for (unsigned i = 0; i < callsEach; ++i)
                each.calls.one(*each.session);
        });
        const auto counts = boards.counts() - countsBefore;
        const Outcomes outcomes = boards.takeOutcomes();
        expectAllGood(run.report, name, outcomes);
        run.report.expect(counts.executed == outcomes.calls, name, ": ", counts.executed, " executions of ",
                          outcomes.calls, " calls");
        run.report.expect(counts.faults > 0, name, ": no call met the fault");
        expectFlat(run.report, name, before);
        table.row(name, percent(share), counts.faults, totalOf(outcomes), counts.executed,
                  seconds(outcomes.slowestMs) + " s");
    };
    for (const double share : {0.01, 0.1, 1.0})
        measure("answered twice", Fault::Kind::DuplicateReply, 0, share);
    constexpr std::int64_t kHoldMs = 50;
    measure("answered after the next", Fault::Kind::ReorderReply, kHoldMs, 0.25);
    run.report.show(table);
}

void lateReplies(Run& run) {
    SessionsOnBoards boards(run.size(50U, 4U), run.seed);
    const unsigned callsEach = run.size(1000U, 200U);
    constexpr std::int64_t kDelayMs = 2300; // the call waits for 2,000
    Table table(
        "Replies " + std::to_string(kDelayMs) + " ms late: " + std::to_string(boards.size()) +
            " boards, a thread each",
        {"late replies", "calls until all had come, on the same handles", "good", "wrong", "slowest call"});
    const auto countsBefore = boards.counts();
    boards.showFaults({{"mdio", "", Fault::Kind::DelayReply, 1, kDelayMs}});
    boards.onAll([&](SessionOnBoard& each, unsigned) {
        const Orvane::PhySession* const session = each.session.get();
        each.calls.read(*each.session); // ends by its own repetition after 2 s
        const auto late = std::chrono::steady_clock::now() + std::chrono::milliseconds(kDelayMs);
        for (unsigned i = 1; i < callsEach || std::chrono::steady_clock::now() < late; ++i)
            each.calls.one(*each.session);
        run.report.expect(session == each.session.get() && each.session->isValid(), "a session was lost");
    });
    const auto counts = boards.counts() - countsBefore;
    const Outcomes outcomes = boards.takeOutcomes();
    run.report.expect(counts.faults == boards.size(), "late: ", counts.faults, " replies were delayed");
    run.report.expect(counts.executed == outcomes.calls + counts.faults, "late: ", counts.executed,
                      " executions of ", outcomes.calls, " calls, ", counts.faults, " of them repeated");
    expectAllGood(run.report, "late", outcomes);
    table.row(counts.faults, outcomes.calls, outcomes.good, outcomes.wrong,
              seconds(outcomes.slowestMs) + " s");
    run.report.show(table);
}

void strayDatagrams(Run& run) {
    SessionsOnBoards boards(run.size(20U, 4U), run.seed);
    constexpr unsigned kPerSecond = 1000;
    const unsigned strays = run.size(5U, 1U) * kPerSecond;
    Table table("Stray datagrams, " + std::to_string(kPerSecond) + " a second to each of " +
                    std::to_string(boards.size()) + " boards' clients",
                {"kind", "strays", "calls meanwhile", "good", "slowest call"});
    using Kind = OrvaneSim::StrayDatagrams::Kind;
    const std::vector<std::pair<const char*, Kind>> kinds{{"another id", Kind::WrongTransaction},
                                                          {"another port", Kind::WrongPort},
                                                          {"0 to 3 bytes", Kind::Short},
                                                          {"made up", Kind::Random},
                                                          {"all kinds", Kind::Mixed}};
    for (const auto& [name, kind] : kinds) {
        if (!run.full && kind != Kind::Mixed)
            continue;
        boards.onAll([](SessionOnBoard& each, unsigned) { // the board's own sockets for strays
            constexpr unsigned kOfEveryKind = 40;
            const std::uint64_t sentBefore = each.board.straysSent();
            each.calls.read(*each.session);
            each.board.sendStrays({Kind::Mixed, kPerSecond, kOfEveryKind});
            while (each.board.straysSent() - sentBefore < kOfEveryKind)
                each.calls.read(*each.session);
        });
        const Holdings before = Holdings::now();
        std::atomic<std::uint64_t> sent{0};
        boards.onAll([&, kind = kind](SessionOnBoard& each, unsigned) {
            const std::uint64_t sentBefore = each.board.straysSent();
            each.board.sendStrays({kind, kPerSecond, strays});
            while (each.board.straysSent() - sentBefore < strays)
                for (int i = 0; i < 20; ++i)
                    each.calls.one(*each.session);
            sent += each.board.straysSent() - sentBefore;
        });
        const Outcomes outcomes = boards.takeOutcomes();
        expectAllGood(run.report, name, outcomes);
        expectFlat(run.report, name, before);
        table.row(name, sent.load(), outcomes.calls, outcomes.good, seconds(outcomes.slowestMs) + " s");
    }
    run.report.show(table);
}

} // namespace OrvaneFaults
