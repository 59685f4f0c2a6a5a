// The board's last code of a session, as the session keeps it.
#include "ov_sys/Interface/buses/rpc/RPCKeepAlive.h"
#include "ov_sys/Interface/buses/rpc/RPCMDIO.h"
#include "ov_sys/Interface/buses/rpc/RPCSetup.h"
#include "ov_sys/Interface/foundation/Exceptions.h"
#include "tests/support/SessionOnBoard.h"

#include <gtest/gtest.h>
#include <string>

namespace Orvane {
namespace {

using namespace OrvaneTest;
using OrvaneSim::Fault;

class LastResult : public testing::Test, public SessionOnBoard {
protected:
    void answer(const char* program, const char* procedure, int code) {
        inject(Fault::Kind::ResultCode, program, procedure, 1, code);
    }
    void read() { MDIO::RPC::read(session, 0x1E0001); }
    void refuseRead() {
        answer("mdio", "mdio_read", -5);
        EXPECT_THROW(read(), Exceptions::Standard);
    }
};

TEST(LastResultOfANewSession, IsZero) {
    const ConnectedSession test;
    EXPECT_EQ(test.session.lastResult(), 0);
}

TEST_F(LastResult, IsTheCodeOfARefusedCall) {
    refuseRead();
    EXPECT_EQ(session.lastResult(), -5);
}

TEST_F(LastResult, IsZeroAgainAfterAGoodCall) {
    refuseRead();
    read();
    EXPECT_EQ(session.lastResult(), 0);
}

TEST_F(LastResult, IsZeroAfterARepeatedCallThatSucceeded) {
    answer("mdio", "mdio_read", -16);
    read();
    EXPECT_EQ(session.lastResult(), 0);
}

TEST_F(LastResult, StaysThroughAGoodPing) {
    refuseRead();
    KeepAlive::RPC::ping(session);
    EXPECT_EQ(session.lastResult(), -5);
}

TEST_F(LastResult, IsTheCodeOfARefusedPing) {
    answer("keepAlive", "pingkeepalive", -22);
    EXPECT_THROW(KeepAlive::RPC::ping(session), Exceptions::Standard);
    EXPECT_EQ(session.lastResult(), -22);
}

TEST_F(LastResult, StaysThroughTheClose) {
    refuseRead();
    answer("setup", "close_connection", -9);
    Setup::closeConnection(session);
    EXPECT_EQ(session.lastResult(), -5);
}

TEST_F(LastResult, OfARefusedCommandIsItsCode) {
    answer("setup", "execute_command", -22);
    int exitCode = 0;
    std::string output;
    std::string errorOutput;
    EXPECT_THROW(Setup::RPC::runCommand(session, "true", 1, exitCode, output, errorOutput),
                 Exceptions::Standard);
    EXPECT_EQ(session.lastResult(), -22);
}

TEST(LastResultOfAnOpening, IsTheCodeThatRefusedIt) {
    ConnectedSession test;
    test.inject(Fault::Kind::ResultCode, "setup", "open_connection", 6, -28);
    EXPECT_THROW(Setup::openConnection(test.session), Exceptions::AccessDenied);
    EXPECT_EQ(test.session.lastResult(), -28);
    test.session.abandon();
}

} // namespace
} // namespace Orvane
