// Many threads on one session and on many, with everything that may happen beside them.
#include "ov_sys/Interface/connection/BoardConnection.h"
#include "ov_sys/Interface/discovery/BoardFinder.h"
#include "tests/faults/scenarios/Process.h"
#include "tests/faults/scenarios/Scenario.h"
#include "tests/faults/scenarios/SessionsOnBoards.h"

#include <atomic>
#include <mutex>
#include <thread>

namespace OrvaneFaults {
namespace {

constexpr unsigned kThreads = 16;

// Repeats `work` until the readers are done.
template <class Work>
std::thread meanwhile(const std::atomic<bool>& over, std::atomic<std::size_t>& done, Work work) {
    return std::thread([&over, &done, work]() mutable {
        while (!over) {
            work();
            ++done;
        }
    });
}

void searchOnce() {
    std::vector<Orvane::AddressResponse*> found;
    Orvane::BoardFinder::find("", found, 100, 1000);
    for (const Orvane::AddressResponse* each : found)
        delete each;
}

// Reads on the session until it made `calls` calls; a session that a reset killed is revived, as another
// thread cannot be told to open it anew.
Outcomes readShared(Orvane::PhySession& session, unsigned boardNumber, std::uint64_t seed, unsigned calls) {
    CheckedCalls checked(boardNumber, seed);
    for (unsigned i = 0; i < calls; ++i) {
        checked.read(session);
        if (session.getSessionState() != Orvane::PhySession::SESSION_VALID)
            session.setSessionState(Orvane::PhySession::SESSION_VALID);
    }
    return checked.take();
}

// What a race consists of, and what came of it.
struct Race {
    Run& run;
    unsigned calls; // of each thread on the shared session
    std::atomic<bool> over{false};
    std::atomic<std::size_t> resets{0};
    std::atomic<std::size_t> closes{0};
    std::atomic<std::size_t> searches{0};
    std::mutex mutex{}; // guards the rest
    Outcomes shared{};
    Outcomes alone{};

    void add(Outcomes& sum, const Outcomes& more) {
        const std::lock_guard<std::mutex> lock(mutex);
        sum += more;
    }

    // Sixteen readers, one who resets their clients, one who searches; the race is over when the readers are
    // done.
    void onSharedSession(Orvane::PhySession& session, unsigned boardNumber) {
        std::thread resetter = meanwhile(over, resets, [&] {
            session.connection->resetClients();
            session.connection->updateClients();
        });
        std::thread searcher = meanwhile(over, searches, searchOnce);
        std::vector<std::thread> readers;
        for (unsigned i = 0; i < kThreads; ++i)
            readers.emplace_back(
                [&, i] { add(shared, readShared(session, boardNumber, run.seed + i, calls)); });
        for (std::thread& reader : readers)
            reader.join();
        over = true;
        resetter.join();
        searcher.join();
    }

    void onOwnSession(SessionOnBoard& each) {
        while (!over)
            each.calls.one(*each.session);
        add(alone, each.calls.take());
    }

    void show() {
        Table table(
            "Races: 16 threads on one session, 16 on sixteen boards",
            {"threads", "calls", "good", "in a documented error", "wrong", "slowest call", "beside them"});
        table.row("16 on one session", shared.calls, shared.good, shared.failed(), shared.wrong,
                  seconds(shared.slowestMs) + " s", std::to_string(resets) + " resets of its eight clients");
        table.row("16 on a session each", alone.calls, alone.good, alone.failed(), alone.wrong,
                  seconds(alone.slowestMs) + " s",
                  std::to_string(closes) + " closes and opens of another board, " + std::to_string(searches) +
                      " searches");
        run.report.show(table);
        run.report.expect(shared.wrong == 0 && alone.wrong == 0, "a wrong value or an undocumented error");
        run.report.expect(alone.good == alone.calls, "sessions were disturbed by what happened to another");
        run.report.expect(shared.good > 0 && resets > 0 && closes > 0 && searches > 0, "nothing raced");
    }
};

} // namespace

void races(Run& run) {
    // Board 0 is shared by 16 threads, the next 16 have one each, the last is opened and closed all the time.
    SessionsOnBoards boards(kThreads + 2, run.seed);
    boards.onAll([](SessionOnBoard& each, unsigned number) {
        if (number == 0) // connects ADC and thermal clients, too, which an opening leaves alone
            each.session->connection->updateClients();
    });
    const Holdings before = Holdings::now();
    Race race{run, run.size(10000U, 300U)};
    boards.onAll([&](SessionOnBoard& each, unsigned number) {
        if (number == 0)
            race.onSharedSession(*each.session, number);
        else if (number <= kThreads)
            race.onOwnSession(each);
        else
            meanwhile(race.over, race.closes, [&] { each.reopen(); }).join();
    });
    race.show();
    expectFlat(run.report, "races", before, 1024 * 1024);
}

} // namespace OrvaneFaults
