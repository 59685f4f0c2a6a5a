// A session on a lone simulated board, opened or not, with what a test of sessions asks about it.
#pragma once

#include "ov_sys/Interface/connection/BoardConnection.h"
#include "ov_sys/Interface/sessions/PhySession.h"
#include "tests/support/OneBoard.h"

namespace OrvaneTest {

// PHY 3 of port 1, which the modes below ask for.
constexpr int kPhy = 3;
constexpr unsigned kPort = 1;

Orvane::MdioExclusive exclusiveOpenMode(unsigned short key = 0);
Orvane::MdioExclusive concurrentOpenMode(unsigned short key = 0);
Orvane::MdioExclusive simpleOpenMode(unsigned short key = 0);

// A session that is connected but not opened on its board.
struct ConnectedSession : OneBoard {
    Orvane::PhySession session;

    explicit ConnectedSession(Orvane::MdioExclusive const& mode = simpleOpenMode());
    Orvane::RPCClient& client(Orvane::BoardConnection::clientId id) {
        return *session.connection->getClient(id);
    }
};

// A session that is open, without its keep-alive thread. Requests up to then are forgotten.
struct OpenSession : ConnectedSession {
    explicit OpenSession(Orvane::MdioExclusive const& mode = simpleOpenMode());
};

} // namespace OrvaneTest
