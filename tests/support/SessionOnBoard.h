// A session that is open on a simulated board of its own.
#pragma once

#include "ov_sys/Interface/sessions/MdioExclusive.h"
#include "ov_sys/Interface/sessions/PhySession.h"
#include <orvane/lab.h>

#include <memory>

namespace OrvaneTest {

// A simple session without key, which a board grants to everyone.
Orvane::MdioExclusive simpleMode(int phyAddress = 5, unsigned int deviceIndex = 1);

// Opens a session on `board`; it has no keep-alive thread, so that only the test makes requests.
std::unique_ptr<Orvane::PhySession> openSession(OrvaneSim::Board& board,
                                                const Orvane::MdioExclusive& mode = simpleMode());

// A lab with board 01A2 and a session on it. The requests of the opening are forgotten. To be a base of a
// test's fixture, or a local variable.
class SessionOnBoard {
public:
    explicit SessionOnBoard(const Orvane::MdioExclusive& mode = simpleMode());

    OrvaneSim::Lab lab;
    OrvaneSim::Board& board;
    std::unique_ptr<Orvane::PhySession> owned;
    Orvane::PhySession& session;
};

// The identity word of the call number `call` (from 0) of the board's session number `sessionId`.
constexpr unsigned int identity(unsigned int call = 0, unsigned int sessionId = 1) {
    constexpr unsigned int kFirstSequence = 101; // the board gives 100, opening counts as a call
    return (kFirstSequence + call) << 8U | sessionId;
}

} // namespace OrvaneTest
