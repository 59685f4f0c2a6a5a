// A session on a simulated board; PHY, port, mode and the board's name are a test's choice.
#pragma once

#include "ov_sys/Interface/connection/BoardConnection.h"
#include "ov_sys/Interface/sessions/MdioExclusive.h"
#include "ov_sys/Interface/sessions/PhySession.h"
#include "tests/support/OneBoard.h"
#include "tests/support/Place.h"

#include <memory>

namespace OrvaneTest {

// A session without key that a board grants to everyone.
Orvane::MdioExclusive simpleMode(int phy = kPhy, unsigned port = kPort);

// A session that excludes others, and one that shares with those who have its key.
Orvane::MdioExclusive exclusiveMode(unsigned short key = 0, int phy = kPhy);
Orvane::MdioExclusive concurrentMode(unsigned short key = 0, int phy = kPhy);

// Opens a session on `board`; it has no keep-alive thread, so that only the test makes requests.
std::unique_ptr<Orvane::PhySession> openSession(OrvaneSim::Board& board,
                                                const Orvane::MdioExclusive& mode = simpleMode());

// A session that its board does not know yet. To be a base of a test's fixture, or a local variable.
struct ConnectedSession : OneBoard {
    std::unique_ptr<Orvane::PhySession> owned;
    Orvane::PhySession& session;

    explicit ConnectedSession(const Orvane::MdioExclusive& mode = simpleMode(),
                              const std::string& serial = kBoardSerial);
    Orvane::RPCClient& client(Orvane::BoardConnection::clientId id) const;
};

// One that is open, without its keep-alive thread. The requests of the opening are forgotten.
struct SessionOnBoard : ConnectedSession {
    explicit SessionOnBoard(const Orvane::MdioExclusive& mode = simpleMode(),
                            const std::string& serial = kBoardSerial);
};

// The identity word of the call number `call` (from 0) of the board's session number `sessionId`.
constexpr unsigned int identity(unsigned int call = 0, unsigned int sessionId = 1) {
    constexpr unsigned int kFirstSequence = 101; // the board gives 100, opening counts as a call
    return (kFirstSequence + call) << 8U | sessionId;
}

} // namespace OrvaneTest
