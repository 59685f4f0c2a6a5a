// A lab of boards with a session and a thread's worth of checked calls on each.
#pragma once

#include "simulator/lab/Lab.h"
#include "tests/faults/scenarios/CheckedCalls.h"

#include <functional>
#include <memory>
#include <vector>

namespace OrvaneFaults {

struct SessionOnBoard {
    OrvaneSim::Board& board;
    std::unique_ptr<Orvane::PhySession> session;
    CheckedCalls calls;

    // Closes the session, if there is one, and opens another where the board is now.
    void reopen(bool keepAlive = true);
};

class SessionsOnBoards {
public:
    // Opens `count` sessions, each on a board of its own.
    SessionsOnBoards(unsigned count, std::uint64_t seed, bool keepAlive = true);

    // Runs `work` for every board at once, each on a thread of its own, and waits for their ends.
    void onAll(const std::function<void(SessionOnBoard&, unsigned number)>& work);
    // Every board shows the faults from now on, in place of those that it showed.
    void showFaults(const std::vector<OrvaneSim::Fault>& faults);
    void clearFaults() { showFaults({}); }

    // The sum of the outcomes of all calls since the last call of this. While none is under way.
    Outcomes takeOutcomes();
    // The sum over all boards of what happened to the calls of the MDIO program.
    OrvaneSim::CallCounts counts() const;
    // How many searches all boards heard, each for itself.
    std::size_t searchesHeard() const;
    std::size_t size() const { return all_.size(); }

private:
    OrvaneSim::Lab lab_;
    std::vector<std::unique_ptr<SessionOnBoard>> all_;
};

// What was added from one sum to a later one.
OrvaneSim::CallCounts operator-(OrvaneSim::CallCounts later, const OrvaneSim::CallCounts& earlier);

} // namespace OrvaneFaults
