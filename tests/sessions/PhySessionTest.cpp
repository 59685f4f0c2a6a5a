// What a session knows from its construction on, and its state.
#include "ov_sys/Interface/sessions/PhySession.h"

#include "ov_sys/Interface/buses/rpc/RPCKeepAlive.h"
#include "ov_sys/Interface/buses/rpc/RPCSetup.h"
#include "ov_sys/Interface/connection/BoardConnection.h"
#include "tests/support/SessionOnBoard.h"
#include "tests/support/SleepingThread.h"
#include "tests/support/WrittenText.h"

#include <atomic>
#include <gtest/gtest.h>
#include <thread>

namespace Orvane {
namespace {

using namespace OrvaneTest;
using State = PhySession::SessionState_t;

TEST(PhySession, FromANameHasItsInitialValues) {
    const PhySession session("board7", exclusiveMode(0x1234, 3));
    EXPECT_EQ(session.pingRecordSamples, std::vector<unsigned long>(2000, 4294967295UL));
    EXPECT_EQ(session.pingRecordType, 2U);
    EXPECT_EQ(session.mdioAddressPrefix, 0x23000000U);
    EXPECT_EQ(session.mdio.phyAddress, 3);
    EXPECT_EQ(session.mdio.deviceIndex, kPort);
    EXPECT_EQ(session.mdio.exclusive, 1);
    EXPECT_EQ(session.mdio.simple, 0);
    EXPECT_EQ(session.mdio.shared, 0);
    EXPECT_EQ(session.mdio.key, 0x1234);
    EXPECT_EQ(session.mdio.reserved, 0);
    EXPECT_EQ(session.deviceIndexCopy, kPort);
    EXPECT_EQ(session.phyAddressCopy, 3U);
    EXPECT_EQ(session.pingSequence, 0);
    EXPECT_FALSE(session.keepAliveRunning);
    EXPECT_NE(session.keepAliveThread.status, 0);
    EXPECT_EQ(session.state, PhySession::SESSION_VALID);
    EXPECT_EQ(session.sessionId, 4294967295U);
    EXPECT_EQ(session.callSequence, 65535);
    EXPECT_EQ(session.busyTimeoutMs, 0);
    EXPECT_EQ(session.lastResult(), 0);
    EXPECT_NE(session.connection, nullptr);
}

TEST(PhySession, StatesHaveFixedNumbers) {
    EXPECT_EQ(PhySession::SESSION_VALID, 0);
    EXPECT_EQ(PhySession::SESSION_ERROR_HANDLING, 1);
    EXPECT_EQ(PhySession::SESSION_RETRAINED, 2);
    EXPECT_EQ(PhySession::SESSION_INVALID, 3);
    EXPECT_EQ(PhySession::SESSION_BUSY, 4);
}

TEST(PhySession, FromARecordConnectsButDoesNotOpen) {
    OneBoard lab;
    PhySession session(lab.record(), simpleMode());
    EXPECT_EQ(session.name(), "BOARD7");
    EXPECT_TRUE(session.isRemote());
    EXPECT_EQ(session.connection->host, lab.board.address());
    EXPECT_EQ(lab.board.requests().size(), 0U);
    EXPECT_EQ(lab.board.sessionCount(), 0U);
}

TEST(PhySession, FromANameIsRemoteWithoutAnyAddress) {
    PhySession session("board7", simpleMode());
    EXPECT_EQ(session.name(), "BOARD7");
    EXPECT_TRUE(session.isRemote());
}

TEST(PhySession, IsNotRemoteWithoutAConnectionsInterface) {
    PhySession session("board7", simpleMode());
    session.connection->interfaceSelected = false;
    EXPECT_FALSE(session.isRemote());
}

struct Prefix {
    int phyAddress;
    unsigned deviceIndex;
    unsigned prefix;
};

class AddressPrefix : public testing::TestWithParam<Prefix> {};

TEST_P(AddressPrefix, HoldsFiveBitsOfThePhyAndThreeOfTheDevice) {
    const PhySession session("board7", {GetParam().phyAddress, GetParam().deviceIndex, 0, 0, 0, 0, 0});
    EXPECT_EQ(session.mdioAddressPrefix, GetParam().prefix);
}

INSTANTIATE_TEST_SUITE_P(Words, AddressPrefix,
                         testing::Values(Prefix{0, 0, 0}, Prefix{31, 7, 0xFF000000}, Prefix{32, 0, 0},
                                         Prefix{0, 8, 0}, Prefix{5, 9, 0x25000000},
                                         Prefix{-1, 0xFFFFFFFF, 0xFF000000}));

class UnconnectedSession : public testing::Test {
protected:
    PhySession session{"board7", simpleMode()};
};

TEST_F(UnconnectedSession, IsValidInEveryStateButInvalid) {
    for (const int state : {0, 1, 2, 4}) {
        session.setSessionState(static_cast<State>(state));
        EXPECT_TRUE(session.isValid()) << state;
        EXPECT_TRUE(session.canRetryRPCCall()) << state;
        EXPECT_EQ(session.getSessionState(), state);
    }
    session.setSessionState(PhySession::SESSION_INVALID);
    EXPECT_FALSE(session.isValid());
    EXPECT_FALSE(session.canRetryRPCCall());
}

TEST_F(UnconnectedSession, IdentityWordsJoinSequenceAndId) {
    session.initSessionInfo(0x42, 0xABCD);
    session.pingSequence = 0x0102;
    EXPECT_EQ(session.sessionId, 0x42U);
    EXPECT_EQ(session.callSequence, 0xABCD);
    EXPECT_EQ(session.identityWord(), 0x00ABCD42U);
    EXPECT_EQ(session.pingIdentityWord(), 0x00010242U);
}

TEST_F(UnconnectedSession, IdentityWordOfALongIdIsOredWithTheSequence) {
    session.initSessionInfo(0xF0000F00, 0x0001);
    EXPECT_EQ(session.identityWord(), 0xF0000F00U);
}

TEST_F(UnconnectedSession, PingRecordIsACopyOfItsInitialValues) {
    for (const PingRecord& record :
         {Setup::RPC::getPingRecord(session), KeepAlive::RPC::getPingRecord(session)}) {
        EXPECT_EQ(record.type, 2U);
        EXPECT_EQ(record.samples, std::vector<unsigned long>(2000, 4294967295UL));
    }
}

TEST_F(UnconnectedSession, ErrorHandlingIsClaimedFromValidOnly) {
    EXPECT_EQ(session.errorHandlingState(), PhySession::SESSION_VALID);
    EXPECT_EQ(session.getSessionState(), PhySession::SESSION_ERROR_HANDLING);
    for (const int state : {1, 2, 3, 4}) {
        session.setSessionState(static_cast<State>(state));
        EXPECT_EQ(session.errorHandlingState(), state);
        EXPECT_EQ(session.getSessionState(), state);
    }
}

TEST_F(UnconnectedSession, ErrorHandlingIsClaimedByOneOfManyThreads) {
    std::atomic<int> claims{0};
    std::vector<std::thread> threads;
    for (int i = 0; i < 8; ++i)
        threads.emplace_back([&] {
            if (session.errorHandlingState() == PhySession::SESSION_VALID)
                ++claims;
        });
    for (std::thread& thread : threads)
        thread.join();
    EXPECT_EQ(claims, 1);
}

class EveryState : public testing::TestWithParam<int> {
protected:
    PhySession session{"board7", simpleMode()};
    EveryState() { session.setSessionState(static_cast<State>(GetParam())); }
};

TEST_P(EveryState, BecomesBusyAndThenValid) {
    session.setSessionBusy(5000);
    EXPECT_EQ(session.getSessionState(), PhySession::SESSION_BUSY);
    EXPECT_EQ(session.busyTimeoutMs, 5000);
    session.resetSessionBusy();
    EXPECT_EQ(session.getSessionState(), PhySession::SESSION_VALID);
    EXPECT_EQ(session.busyTimeoutMs, 0);
}

INSTANTIATE_TEST_SUITE_P(All, EveryState, testing::Values(0, 1, 2, 3, 4));

TEST_F(UnconnectedSession, BusyTimesAreNoted) {
    const auto before = std::chrono::system_clock::now();
    session.setSessionBusy(1);
    const auto since = session.busySince.load();
    session.resetSessionBusy();
    EXPECT_GE(since, before);
    EXPECT_GE(session.busySince.load(), since);
}

TEST_F(UnconnectedSession, WaitForNotBusyIsZeroAtOnceWhenNotBusy) {
    for (const int state : {0, 1, 2, 3}) {
        session.setSessionState(static_cast<State>(state));
        EXPECT_EQ(session.waitForSessionNotBusy(), 0) << state;
    }
}

TEST_F(UnconnectedSession, WaitForNotBusyIsTwoWhenTheBusyTimeHasRunOut) {
    session.setSessionBusy(60);
    EXPECT_EQ(session.waitForSessionNotBusy(), 2);
    EXPECT_GT(std::chrono::system_clock::now() - session.busySince.load(), std::chrono::milliseconds(60));
    EXPECT_EQ(session.getSessionState(), PhySession::SESSION_BUSY);
}

TEST_F(UnconnectedSession, WaitForNotBusyComparesSignedNumbers) {
    session.setSessionBusy(-1);
    EXPECT_EQ(session.waitForSessionNotBusy(), 2);
}

TEST_F(UnconnectedSession, WaitForNotBusyIsZeroWhenTheBusyTimeEnds) {
    session.setSessionBusy(60000);
    const SleepingThread waiting;
    std::thread command([&] {
        waiting.await();
        session.resetSessionBusy();
    });
    EXPECT_EQ(session.waitForSessionNotBusy(), 0);
    command.join();
}

} // namespace
} // namespace Orvane
