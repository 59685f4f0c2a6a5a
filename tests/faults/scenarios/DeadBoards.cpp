// Boards that are killed and restarted at every bad moment, while a session is open on them.
#include "tests/faults/scenarios/Process.h"
#include "tests/faults/scenarios/Scenario.h"
#include "tests/faults/scenarios/SessionsOnBoards.h"

#include <atomic>
#include <chrono>
#include <functional>
#include <memory>
#include <mutex>
#include <thread>

namespace OrvaneFaults {
namespace {

using OrvaneSim::Action;
using OrvaneSim::Board;
using OrvaneSim::Fault;
using OrvaneSim::Request;

// In milliseconds: the time-out of the call and of two pings, a search of 4 s that finds nothing, the pauses
// between, and the connecting of six clients to a board whose port mapper is silent.
constexpr double kLongestStruckCall = 30000;

// One way of dying. `strike` is done before the call that meets it, `revive` after that call.
struct Death {
    const char* name;
    std::function<void(Board&)> strike;
    std::function<void(Board&)> revive;
    bool keepsSession; // the session must survive
    bool isFoundAgain; // while the call is under way, by a search
};

std::string otherAddress() {
    static std::atomic<unsigned> next{0};
    const unsigned number = next++;
    return "10.83." + std::to_string(64 + number / 250 % 60) + "." + std::to_string(1 + number % 250);
}

// Does `action` as soon as the next MDIO request has come, which also meets `fault`.
void duringTheNextCall(Board& board, Fault::Kind fault, const Action& action) {
    auto armed = std::make_shared<std::atomic<bool>>(true);
    board.inject({"mdio", "", fault, 1});
    board.onRequest([&board, action, armed](const Request& request) {
        if (request.program == "mdio" && armed->exchange(false))
            board.apply(action);
    });
}

void start(Board& board) {
    board.start();
}
void nothing(Board&) {}

// After a restart in the same place the clients still have the old ports, which is why the session is lost:
// they are made anew only for another address.
const std::vector<Death>& deaths() {
    static const std::vector<Death> all{
        {"idle: restarted in place", [](Board& b) { b.restart(); }, nothing, false, true},
        {"idle: restarted, sessions forgotten", [](Board& b) { b.restart(true); }, nothing, false, true},
        {"idle: moved", [](Board& b) { b.moveTo(otherAddress()); }, nothing, true, true},
        {"request lost: restarted in place",
         [](Board& b) { duringTheNextCall(b, Fault::Kind::LoseRequest, OrvaneSim::Restart{}); }, nothing,
         false, true},
        {"request lost: moved",
         [](Board& b) { duringTheNextCall(b, Fault::Kind::LoseRequest, OrvaneSim::MoveTo{otherAddress()}); },
         nothing, true, true},
        {"reply lost: moved",
         [](Board& b) { duringTheNextCall(b, Fault::Kind::LoseReply, OrvaneSim::MoveTo{otherAddress()}); },
         nothing, true, true},
        {"killed, started after the call", [](Board& b) { b.stop(); }, start, false, false},
        {"never answers, until after the call", [](Board& b) { b.hang(); }, start, false, false},
        {"moved, port mapper refuses until after the call",
         [](Board& b) {
             b.closePortMapper();
             b.moveTo(otherAddress());
         },
         [](Board& b) { b.openPortMapper(); }, false, false},
        {"moved, port mapper silent until after the call",
         [](Board& b) {
             b.inject({"portmap", "", Fault::Kind::Silent, -1});
             b.moveTo(otherAddress());
         },
         [](Board& b) { b.clearFaults(); }, false, false},
    };
    return all;
}

struct Tally {
    Outcomes struck;
    std::size_t cycles = 0;
    std::size_t sessionsKept = 0;
    std::size_t goodAfterwards = 0;
};

// The ping of the keep-alive thread may have been first to fail; then the call has ended in an error while
// that thread is still looking for the board.
void awaitVerdict(const Orvane::PhySession& session) {
    while (session.getSessionState() == Orvane::PhySession::SESSION_ERROR_HANDLING)
        std::this_thread::sleep_for(std::chrono::milliseconds(10));
}

void dieOnce(Report& report, SessionOnBoard& each, const Death& death, Tally& tally) {
    {
        // Of searches on one host at the same time only one gets the answers: they bind the same port.
        static std::mutex oneSearch;
        std::unique_lock<std::mutex> lock(oneSearch, std::defer_lock);
        if (death.isFoundAgain)
            lock.lock();
        death.strike(each.board);
        each.calls.read(*each.session);
    }
    tally.struck += each.calls.take();
    death.revive(each.board);
    awaitVerdict(*each.session);
    const bool kept = each.session->isValid();
    report.expect(kept || !death.keepsSession, death.name, ": the session was lost");
    tally.sessionsKept += kept ? 1U : 0U;
    if (!kept)
        each.reopen();
    tally.goodAfterwards += each.calls.read(*each.session) ? 1U : 0U;
    each.calls.take();
    ++tally.cycles;
    // Both sides whole again for what comes next.
    each.board.clearFaults();
    each.reopen();
}

} // namespace

void deadBoards(Run& run) {
    const unsigned perDeath = run.size(5U, 1U);
    const auto count = static_cast<unsigned>(deaths().size()) * perDeath;
    SessionsOnBoards boards(count, run.seed);
    const unsigned cycles = run.size(2U, 1U);
    const Holdings before = Holdings::now();
    const std::size_t heardBefore = boards.searchesHeard();
    std::vector<Tally> tallies(count);
    for (const bool found : {true, false})
        boards.onAll([&](SessionOnBoard& each, unsigned number) {
            const Death& death = deaths()[number / perDeath];
            for (unsigned cycle = 0; cycle < cycles && death.isFoundAgain == found; ++cycle)
                dieOnce(run.report, each, death, tallies[number]);
        });

    Table table("Boards that die, " + std::to_string(count * cycles) + " times",
                {"how", "times", "call good", "call in error", "undocumented", "slowest call", "session kept",
                 "next call good (on a new session where lost)"});
    for (std::size_t i = 0; i < deaths().size(); ++i) {
        Tally sum;
        for (unsigned j = 0; j < perDeath; ++j) {
            const Tally& tally = tallies[i * perDeath + j];
            sum.struck += tally.struck;
            sum.cycles += tally.cycles;
            sum.sessionsKept += tally.sessionsKept;
            sum.goodAfterwards += tally.goodAfterwards;
        }
        const char* const name = deaths()[i].name;
        table.row(name, sum.cycles, sum.struck.good, sum.struck.failed(), sum.struck.wrong,
                  seconds(sum.struck.slowestMs) + " s", sum.sessionsKept, sum.goodAfterwards);
        run.report.expect(sum.struck.wrong == 0, name, ": a wrong value or an undocumented error");
        run.report.expect(sum.struck.slowestMs < kLongestStruckCall, name, ": took ", sum.struck.slowestMs,
                          " ms");
        run.report.expect(sum.goodAfterwards == sum.cycles, name, ": not every board was reached again");
    }
    run.report.show(table);
    constexpr std::size_t kRemembered = 64; // bytes that a board keeps of each search that it heard
    const std::size_t heard = boards.searchesHeard() - heardBefore;
    expectFlat(run.report, "deaths", before, 256 * 1024 + kRemembered * heard);
}

} // namespace OrvaneFaults
