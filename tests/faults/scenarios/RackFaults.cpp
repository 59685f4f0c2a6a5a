// What a rack of boards makes of losses, restarts, moves, silence and replies that are none.
#include "ov_sys/rack/Flight.h"
#include "ov_sys/rack/Rack.h"
#include "simulator/engine/Sockets.h"
#include "simulator/lab/Lab.h"
#include "tests/faults/scenarios/Process.h"
#include "tests/faults/scenarios/Scenario.h"

#include <algorithm>
#include <chrono>
#include <functional>
#include <string>
#include <vector>

namespace OrvaneFaults {
namespace {

using namespace std::chrono_literals;
using Orvane::FailureKind;
using Orvane::Pending;
using Orvane::Phy;
using OrvaneSim::Board;
using OrvaneSim::Fault;

constexpr unsigned kFirstPort = 0;
constexpr unsigned kEachPhy = 3;
constexpr auto kLongestOnARack = 30s;

struct RackOutcomes {
    std::size_t calls = 0;
    std::size_t good = 0;
    std::size_t failed = 0; // of a documented kind, naming its board
    std::size_t wrong = 0;  // another value, another board's name, a kind that is not expected
    std::string firstWrong; // in words
};

// Boards with one open session each, all in one rack.
class RackOfBoards {
public:
    RackOfBoards(unsigned count, std::uint64_t seed) {
        for (unsigned i = 0; i < count; ++i) {
            OrvaneSim::BoardOptions options;
            options.serial = "R" + std::to_string(1000 + i);
            options.seed = seed + i;
            options.keptRequests = 10;
            Board& board = lab.add(options);
            board.setRegister(OrvaneSim::Space::C45, kFirstPort, kEachPhy, 0x10002, valueOf(i));
            boards.push_back(&board);
        }
    }

    // What a register of a board holds, which no other board's does.
    static std::uint32_t valueOf(std::size_t number) { return static_cast<std::uint32_t>(number * 7 + 1); }

    void open(Orvane::Rack& rack) {
        Orvane::Flight flight;
        for (const Board* const board : boards) {
            rack.know(board->serial(), board->address());
            phys.push_back(rack.open(board->serial() + ":0", Orvane::Access::exclusive()).phy(kEachPhy));
            flight.open(phys.back(), Orvane::within(kLongestOnARack));
        }
        flight.wait();
    }

    OrvaneSim::Lab lab;
    std::vector<Board*> boards;
    std::vector<Phy> phys;
};

// Judges how an operation on a board ended. `mayFail`: a bad reply is an end, too.
void judgeRead(const Pending<std::uint32_t>& result, const Board& board, std::uint32_t expected, bool mayFail,
               RackOutcomes& outcomes) {
    ++outcomes.calls;
    const std::optional<Orvane::Failure>& failure = result.failure();
    if (!failure && result.get() == expected)
        ++outcomes.good;
    else if (failure && mayFail && failure->kind() == FailureKind::BadReply &&
             failure->board() == board.serial())
        ++outcomes.failed;
    else if (++outcomes.wrong == 1)
        outcomes.firstWrong =
            board.serial() + ": " +
            (failure ? failure->what()
                     : std::to_string(result.get()) + " instead of " + std::to_string(expected));
}

// Writes, reads back and reads on every board at once, several times.
RackOutcomes callAll(RackOfBoards& all, unsigned times) {
    RackOutcomes outcomes;
    Orvane::Flight flight;
    const Orvane::Within within = Orvane::within(kLongestOnARack);
    std::vector<Pending<std::uint32_t>> back;
    std::vector<Pending<std::uint32_t>> fixed;
    for (unsigned time = 0; time < times; ++time)
        for (std::size_t i = 0; i < all.boards.size(); ++i) {
            flight.write(all.phys[i], {1, 7}, static_cast<std::uint32_t>(i + time), within);
            back.push_back(flight.read(all.phys[i], {1, 7}, within));
            fixed.push_back(flight.read(all.phys[i], {1, 2}, within));
        }
    flight.wait();
    const std::size_t boards = all.boards.size();
    for (std::size_t n = 0; n < back.size(); ++n) {
        const std::size_t i = n % boards;
        judgeRead(back[n], *all.boards[i], static_cast<std::uint32_t>(i + n / boards), false, outcomes);
        judgeRead(fixed[n], *all.boards[i], RackOfBoards::valueOf(i), false, outcomes);
    }
    return outcomes;
}

void loseOnRack(Run& run, RackOfBoards& all, Table& table) {
    constexpr double kShare = 0.05;
    for (Board* const board : all.boards)
        for (const char* const program : {"mdio", "keepAlive"})
            for (const Fault::Kind kind : {Fault::Kind::LoseRequest, Fault::Kind::LoseReply})
                board->inject({program, "", kind, -1, 0, kShare});
    const auto begun = std::chrono::steady_clock::now();
    const RackOutcomes sum = callAll(all, run.size(4U, 10U));
    const std::chrono::duration<double, std::milli> took = std::chrono::steady_clock::now() - begun;
    std::size_t sessions = 0;
    for (Board* const board : all.boards) {
        board->clearFaults();
        sessions += board->sessionCount();
    }
    table.row("5 % of requests and of replies lost", all.boards.size(), sum.calls, sum.good, sum.failed,
              sum.wrong, seconds(took.count()) + " s");
    run.report.expect(sum.good == sum.calls, "loss: ", sum.calls - sum.good,
                      " calls without their value, first of ", sum.firstWrong);
    run.report.expect(sessions == all.boards.size(), "loss: ", sessions, " sessions on ", all.boards.size(),
                      " boards");
}

// What happens to a board, and whether a call may end in a bad reply for it.
struct Blow {
    const char* name;
    bool mayFail;
    std::function<void(OrvaneSim::Lab&, Board&, unsigned number)> strike;
};

void killFor(OrvaneSim::Lab& lab, Board& board, std::chrono::milliseconds time) {
    board.stop();
    lab.after(time, [&board] {
        board.forgetSessions();
        board.start();
    });
}

std::vector<Blow> blows(std::chrono::milliseconds off) {
    return {
        {"restarted in place", false, [](auto&, Board& b, unsigned) { b.restart(true); }},
        {"moved", false,
         [](auto&, Board& b, unsigned n) {
             b.moveTo("10.83." + std::to_string(64 + n / 250) + "." + std::to_string(1 + n % 250));
         }},
        {"killed for a while", false,
         [off](OrvaneSim::Lab& lab, Board& b, unsigned) { killFor(lab, b, off); }},
        {"port mapper gone", false, [](auto&, Board& b, unsigned) { b.closePortMapper(); }},
        {"replies made up", true,
         [](auto&, Board& b, unsigned) {
             b.inject({"mdio", "", Fault::Kind::GarbageReply, 2, 40});
         }},
        {"replies cut", true,
         [](auto&, Board& b, unsigned) {
             b.inject({"mdio", "", Fault::Kind::TruncateReply, 1, 30});
         }},
        {"replies without values", true,
         [](auto&, Board& b, unsigned) {
             b.inject({"mdio", "", Fault::Kind::ReplyCount, 1, 0});
         }},
    };
}

// Strikes each kind of blow at a hundredth of the boards, and asks all of them.
void strike(Run& run, RackOfBoards& all, Table& table) {
    const std::vector<Blow> kinds = blows(run.size(10000ms, 1000ms));
    const std::size_t spacing = std::max<std::size_t>(run.size(100U, 8U), kinds.size());
    std::vector<RackOutcomes> sums(kinds.size() + 1); // the last are those that nothing happens to
    std::vector<std::size_t> struck(kinds.size() + 1);
    const auto begun = std::chrono::steady_clock::now();
    for (std::size_t i = 0; i < all.boards.size(); ++i) {
        const std::size_t kind = std::min(i % spacing, kinds.size());
        ++struck[kind];
        if (kind < kinds.size())
            kinds[kind].strike(all.lab, *all.boards[i], static_cast<unsigned>(i));
    }
    Orvane::Flight flight;
    std::vector<Pending<std::uint32_t>> results;
    for (int time = 0; time < 3; ++time)
        for (const Phy& phy : all.phys)
            results.push_back(flight.read(phy, {1, 2}, Orvane::within(kLongestOnARack)));
    flight.wait();
    const std::chrono::duration<double, std::milli> took = std::chrono::steady_clock::now() - begun;
    for (std::size_t n = 0; n < results.size(); ++n) {
        const std::size_t i = n % all.boards.size();
        const std::size_t kind = std::min(i % spacing, kinds.size());
        judgeRead(results[n], *all.boards[i], RackOfBoards::valueOf(i),
                  kind < kinds.size() && kinds[kind].mayFail, sums[kind]);
    }
    for (std::size_t kind = 0; kind < sums.size(); ++kind) {
        const char* const name = kind < kinds.size() ? kinds[kind].name : "nothing, beside those";
        table.row(name, struck[kind], sums[kind].calls, sums[kind].good, sums[kind].failed, sums[kind].wrong,
                  seconds(took.count()) + " s");
        run.report.expect(sums[kind].wrong == 0, name, ": ", sums[kind].wrong,
                          " calls with a wrong value or an undocumented failure, first of ",
                          sums[kind].firstWrong);
        run.report.expect(struck[kind] > 0, name, ": no board met it");
    }
}

void afterwards(Run& run, RackOfBoards& all, Table& table) {
    for (Board* const board : all.boards) {
        board->clearFaults();
        board->openPortMapper();
    }
    const RackOutcomes sum = callAll(all, 1);
    table.row("afterwards", all.boards.size(), sum.calls, sum.good, sum.failed, sum.wrong, "");
    run.report.expect(sum.good == sum.calls, "afterwards: ", sum.calls - sum.good,
                      " calls without their value");
}

} // namespace

void rackFaults(Run& run) {
    OrvaneSim::raiseDescriptorLimit();
    const Holdings before = Holdings::now();
    {
        RackOfBoards all(run.size(1000U, 24U), run.seed);
        Orvane::Rack rack;
        all.open(rack);
        Table table(
            "A rack of " + std::to_string(all.boards.size()) + " boards, one thread",
            {"what happens", "boards", "calls", "good", "bad reply, named", "wrong", "all calls took"});
        loseOnRack(run, all, table);
        strike(run, all, table);
        afterwards(run, all, table);
        const std::vector<Orvane::Failure> left = rack.closeAll(Orvane::within(kLongestOnARack));
        run.report.expect(left.empty(), left.size(), " sessions could not be closed");
        std::size_t sessions = 0;
        for (const Board* const board : all.boards)
            sessions += board->sessionCount();
        run.report.expect(sessions == 0, sessions, " sessions left on the boards");
        run.report.show(table);
    }
    expectFlat(run.report, "a rack and its lab", before, 1024 * 1024);
}

} // namespace OrvaneFaults
