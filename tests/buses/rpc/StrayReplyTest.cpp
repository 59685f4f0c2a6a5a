// Replies that come late or twice do not spoil the calls after them.
#include "ov_sys/Interface/buses/rpc/RPCMDIO.h"
#include "ov_sys/Interface/buses/rpc/RPCSetup.h"
#include "ov_sys/Interface/foundation/Exceptions.h"
#include "tests/support/SessionOnBoard.h"

#include <gtest/gtest.h>
#include <poll.h>
#include <rpc/rpc.h>

namespace Orvane {
namespace {

using namespace OrvaneTest;
using OrvaneSim::Fault;

class StrayReply : public testing::Test, public SessionOnBoard {
protected:
    StrayReply() {
        board.setRegister(OrvaneSim::Space::C45, kPort, kPhy, 1, 0x1111);
        board.setRegister(OrvaneSim::Space::C45, kPort, kPhy, 2, 0x2222);
    }

    // Waits until a reply that nobody asked for lies in a client's socket.
    void awaitStray(BoardConnection::clientId id = BoardConnection::MDIO) {
        int socket = -1;
        clnt_control(client(id).client.load(), CLGET_FD, reinterpret_cast<char*>(&socket));
        pollfd entry{socket, POLLIN, 0};
        ASSERT_EQ(poll(&entry, 1, 20000), 1);
    }
};

TEST_F(StrayReply, OfADuplicateIsNotTakenForTheNextAnswer) {
    inject(Fault::Kind::DuplicateReply, "mdio", "mdio_read");
    EXPECT_EQ(MDIO::RPC::read(session, 1), 0x1111U);
    awaitStray();
    EXPECT_EQ(MDIO::RPC::read(session, 2), 0x2222U);
    EXPECT_EQ(count("mdio_read"), 2U);
    EXPECT_EQ(session.getSessionState(), PhySession::SESSION_VALID);
}

TEST_F(StrayReply, OfACallThatWasGivenUpIsNotTakenForTheNextAnswer) {
    inject(Fault::Kind::DelayReply, "mdio", "mdio_read", 1, 3000);
    EXPECT_EQ(MDIO::RPC::read(session, 1), 0x1111U); // repeated after 2 s
    session.setSessionState(PhySession::SESSION_VALID);
    awaitStray();
    EXPECT_EQ(MDIO::RPC::read(session, 2), 0x2222U);
    EXPECT_EQ(session.getSessionState(), PhySession::SESSION_VALID);
}

TEST_F(StrayReply, OnAStreamIsNotTakenForTheNextAnswer) {
    inject(Fault::Kind::DelayReply, "setup", "ping", 1, 3000);
    EXPECT_THROW(Setup::RPC::ping(*session.connection), Exceptions::DeviceConnection);
    awaitStray(BoardConnection::SETUP);
    EXPECT_GE(Setup::RPC::ping(*session.connection), 0);
    EXPECT_EQ(count("ping"), 2U);
}

TEST_F(StrayReply, ThatNeverCameOnAStreamDoesNotCostTheNextAnswer) {
    inject(Fault::Kind::LoseReply, "setup", "ping");
    EXPECT_THROW(Setup::RPC::ping(*session.connection), Exceptions::DeviceConnection);
    EXPECT_GE(Setup::RPC::ping(*session.connection), 0);
    EXPECT_EQ(count("ping"), 2U);
}

TEST_F(StrayReply, OfADuplicateOnAStreamIsNotTakenForTheNextAnswer) {
    inject(Fault::Kind::DuplicateReply, "setup", "ping", 2);
    EXPECT_GE(Setup::RPC::ping(*session.connection), 0);
    EXPECT_GE(Setup::RPC::ping(*session.connection), 0);
    EXPECT_EQ(count("ping"), 2U);
}

TEST_F(StrayReply, ThatComesAtAnyMomentOfManyCallsIsThrownAway) {
    inject(Fault::Kind::DuplicateReply, "mdio", "mdio_read", 2000);
    for (int i = 0; i < 1000; ++i) {
        ASSERT_EQ(MDIO::RPC::read(session, 1), 0x1111U);
        ASSERT_EQ(MDIO::RPC::read(session, 2), 0x2222U);
    }
    EXPECT_EQ(count("mdio_read"), 2000U);
    EXPECT_EQ(session.getSessionState(), PhySession::SESSION_VALID);
}

} // namespace
} // namespace Orvane
