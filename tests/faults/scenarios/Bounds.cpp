// How long opening, calls, closing and searches take on boards that are silent, busy, slow or half open.
#include "ov_sys/Interface/buses/rpc/RPCADC.h"
#include "ov_sys/Interface/devices/HWInterface.h"
#include "tests/faults/scenarios/Scenario.h"
#include "tests/faults/scenarios/SessionsOnBoards.h"

#include <algorithm>
#include <chrono>
#include <exception>
#include <functional>
#include <string>
#include <thread>

namespace OrvaneFaults {
namespace {

using OrvaneSim::Board;
using OrvaneSim::Fault;
using std::chrono::milliseconds;

// One way of making the library wait.
struct Manner {
    const char* name;
    bool answersCalls; // or a call has no bound, as the board says itself
    std::function<void(Board&)> begin;
};

void delayEverything(Board& board, int ms) {
    for (const char* program :
         {"portmap", "setup", "mdio", "i2c", "gpio", "jtag", "keepAlive", "adc", "discovery", "probe"})
        board.inject({program, "", Fault::Kind::DelayReply, -1, ms});
}

void loseDatagrams(Board& board, std::initializer_list<const char*> programs) {
    for (const char* program : programs)
        board.inject({program, "", Fault::Kind::LoseReply, -1});
}

const std::vector<Manner>& manners() {
    static const std::vector<Manner> all{
        {"silent", true, [](Board& b) { b.hang(); }},
        {"busy", false,
         [](Board& b) {
             for (const char* program : {"setup", "keepAlive", "mdio"})
                 b.inject({program, "", Fault::Kind::ResultCode, -1, -16});
         }},
        {"slow (1.9 s)", true, [](Board& b) { delayEverything(b, 1900); }},
        {"slow (1.9 s), MDIO silent", true,
         [](Board& b) {
             loseDatagrams(b, {"mdio"});
             b.inject({"setup", "", Fault::Kind::DelayReply, -1, 1900});
         }},
        {"half open", true,
         [](Board& b) {
             b.inject({"setup", "", Fault::Kind::HalfOpen, -1, 6});
             loseDatagrams(b, {"mdio", "keepAlive"});
         }},
    };
    return all;
}

template <class Action>
double msOf(Action action) {
    const auto start = std::chrono::steady_clock::now();
    try {
        action();
    } catch (const std::exception&) { // how it ends is the other scenarios' matter
    }
    return std::chrono::duration<double, std::milli>(std::chrono::steady_clock::now() - start).count();
}

// What is timed, and the most that docs/limits.md says of it, in milliseconds.
struct Work {
    std::string name;
    double limit;
    bool isCall;
    std::function<double(SessionOnBoard&)> timed;
};

// Ends the session in the middle of the next ping, or of a search for the board.
Work closing(int afterMs) {
    return {"closing, " + std::to_string(afterMs) + " ms on", 6000, false, [afterMs](SessionOnBoard& each) {
                std::this_thread::sleep_for(milliseconds(afterMs));
                return msOf([&] { each.session.reset(); });
            }};
}

// Refreshes a list of devices.
Work looking(const char* name, double limit, bool byName, bool byAddress) {
    return {name, limit, false, [byName, byAddress](SessionOnBoard& each) {
                return msOf([&] {
                    Orvane::HWInterface().refreshDevices(byName ? each.board.serial() : "",
                                                         byAddress ? each.board.address() : "");
                });
            }};
}

const std::vector<Work>& works() {
    static const std::vector<Work> all{
        closing(0),
        closing(2500),
        closing(5500),
        {"stopping keep-alive, 4500 ms on", 15000, false,
         [](SessionOnBoard& each) {
             std::this_thread::sleep_for(milliseconds(4500)); // in a recovery, unless the board answers pings
             return msOf([&] { each.session->stopKeepAlive(); });
         }},
        {"opening", 31000, false,
         [](SessionOnBoard& each) {
             return msOf([&] { openSession(each.board.serial(), each.board.address(), false); });
         }},
        {"a call", 100000, true,
         [](SessionOnBoard& each) { return msOf([&] { each.calls.read(*each.session); }); }},
        {"an ADC call", 100000, true,
         [](SessionOnBoard& each) { return msOf([&] { Orvane::ADC::RPC::initialize(*each.session); }); }},
        looking("looking for every board", 2000, false, false),
        looking("looking for its name", 6000, true, false),
        looking("looking at its address", 15000, false, true),
    };
    return all;
}

struct Case {
    const Manner& manner;
    const Work& work;
};

// In small runs without what takes longest, which is opening, calls and a look at an address.
std::vector<Case> cases(bool full) {
    std::vector<Case> all;
    for (const Manner& manner : manners())
        for (const Work& work : works())
            if ((full || work.limit < 10000) && (manner.answersCalls || !work.isCall))
                all.push_back({manner, work});
    return all;
}

} // namespace

void bounds(Run& run) {
    const std::vector<Case> all = cases(run.full);
    const unsigned times = run.size(4U, 1U);
    SessionsOnBoards boards(static_cast<unsigned>(all.size()) * times, run.seed);
    std::vector<double> took(boards.size());
    boards.onAll([&](SessionOnBoard& each, unsigned number) {
        const auto& [manner, work] = all[number / times];
        manner.begin(each.board);
        took[number] = work.timed(each);
        each.board.clearFaults();
        each.session.reset(); // side by side, too
        run.report.expect(took[number] < work.limit, manner.name, ": ", work.name, " took ", took[number],
                          " ms");
    });
    Table table("The longest waits, of " + std::to_string(times) + " each",
                {"board", "what", "took at most", "limit"});
    for (std::size_t i = 0; i < all.size(); ++i) {
        const auto first = took.begin() + static_cast<std::ptrdiff_t>(i * times);
        const double longest = *std::max_element(first, first + static_cast<std::ptrdiff_t>(times));
        table.row(all[i].manner.name, all[i].work.name, seconds(longest) + " s",
                  seconds(all[i].work.limit) + " s");
    }
    run.report.show(table);
}

} // namespace OrvaneFaults
