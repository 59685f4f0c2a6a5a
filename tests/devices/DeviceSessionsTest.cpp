// The sessions of a device: opened on first use, shared, adopted and closed.
#include "ov_sys/Interface/devices/SimpleDeviceEntry.h"
#include "ov_sys/Interface/sessions/PhySession.h"
#include "tests/support/EnvironmentVariable.h"
#include "tests/support/SessionOnBoard.h"
#include "tests/support/WireCall.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <thread>

namespace OrvaneTest {
namespace {

using Orvane::SimpleDeviceEntry;
using Orvane::SimpleSessionEntry;
using testing::ElementsAre;
using testing::SizeIs;

class DeviceSessions : public testing::Test {
protected:
    std::size_t opened() const { return board.requestsOf("open_connection").size(); }
    std::vector<int> phyIds() const {
        std::vector<int> ids;
        for (const auto& entry : device.sessions)
            ids.push_back(entry->phyId);
        return ids;
    }

    OrvaneSim::Lab lab;
    OrvaneSim::Board& board = lab.add();
    SimpleDeviceEntry device{"01A2:1", board.address()};
};

TEST_F(DeviceSessions, AreNotOpenedByOpeningTheDevice) {
    device.open();
    EXPECT_EQ(opened(), 0U);
}

TEST_F(DeviceSessions, KnowTheirPhyAndThePortOfTheDevice) {
    const SimpleSessionEntry* entry = device.getSession(5);
    EXPECT_EQ(entry->phyId, 5);
    EXPECT_EQ(entry->port, 1);
    EXPECT_EQ(entry->session->mdioAddressPrefix, 0x25000000U);
}

TEST_F(DeviceSessions, AreKeptAlive) {
    EXPECT_TRUE(device.getSession(5)->session->isKeepAliveRunning());
}

TEST_F(DeviceSessions, AreReusedByTheSecondAccessToAPhy) {
    SimpleSessionEntry* first = device.getSession(5);
    EXPECT_EQ(device.getSession(5), first);
    EXPECT_EQ(opened(), 1U);
}

TEST_F(DeviceSessions, AreOnePerPhy) {
    const SimpleSessionEntry* first = device.getSession(5);
    EXPECT_NE(device.getSession(6), first);
    EXPECT_THAT(phyIds(), ElementsAre(5, 6));
    EXPECT_EQ(board.sessionCount(), 2U);
}

TEST_F(DeviceSessions, OpenedByTwoThreadsAtOnceForOnePhyAreOne) {
    SimpleSessionEntry* entries[2] = {};
    std::thread first([&] { entries[0] = device.getSession(5); });
    std::thread second([&] { entries[1] = device.getSession(5); });
    first.join();
    second.join();
    EXPECT_EQ(entries[0], entries[1]);
    EXPECT_EQ(opened(), 1U);
    EXPECT_THAT(device.sessions, SizeIs(1));
}

TEST_F(DeviceSessions, ClosedByOneThreadWhileAnotherOpensStayWhole) {
    std::thread opening([&] {
        for (int phy = 0; phy < 4; ++phy)
            device.getSession(phy);
    });
    std::thread closing([&] {
        for (int i = 0; i < 4; ++i)
            device.closePhyID(i);
    });
    opening.join();
    closing.join();
    EXPECT_EQ(board.sessionCount(), device.sessions.size());
}

TEST_F(DeviceSessions, CarryTheKeyThatTheBoardGave) {
    const EnvironmentVariable exclusive("EXCLUSIVE_KEY", "0");
    device.getSession(5);
    EXPECT_EQ(device.getMdioExclusiveKey(5), 0x5000); // the board's first key
}

TEST_F(DeviceSessions, CarryTheKeyThatTheyAskedFor) {
    const EnvironmentVariable concurrent("CONCURRENT_KEY", "4660");
    device.getSession(5);
    EXPECT_EQ(device.getMdioExclusiveKey(5), 4660);
    EXPECT_EQ(device.getMdioExclusiveKey(6), 0);
}

TEST_F(DeviceSessions, OfAnotherPortHaveNoKeyHere) {
    Orvane::MdioExclusive mode = simpleMode(5, 2);
    mode.key = 77;
    device.setSession(openSession(board, mode).release());
    EXPECT_EQ(device.getMdioExclusiveKey(5), 0);
}

TEST_F(DeviceSessions, AskedForAsSimpleAreAlwaysNew) {
    SimpleSessionEntry* shared = device.getSession(5);
    SimpleSessionEntry* simple = device.getSimpleSession(5, 0x4321);
    EXPECT_NE(simple, shared);
    EXPECT_EQ(simple->port, 1);
    EXPECT_EQ(device.getSession(5), shared);
    EXPECT_THAT(phyIds(), ElementsAre(5, 5));
}

TEST_F(DeviceSessions, AskedForAsSimpleOpenWithTheGivenKeyWhateverTheEnvironment) {
    const EnvironmentVariable exclusive("EXCLUSIVE_KEY", "5");
    device.getSimpleSession(6, 0x4321);
    EXPECT_THAT(wireCalls(board, "setup"), ElementsAre(WireCall{kSetupProgram,
                                                                1,
                                                                {{"sessionId", 0x4321},
                                                                 {"exclusive", 0},
                                                                 {"simple", 1},
                                                                 {"notShared", 0},
                                                                 {"reserved", 0},
                                                                 {"deviceIndex", 1},
                                                                 {"phyAddress", 6}}}));
}

TEST_F(DeviceSessions, AdoptedFromElsewhereKeepTheirOwnPhyAndPort) {
    Orvane::PhySession* session = openSession(board, simpleMode(9, 12)).release();
    device.setSession(session);
    ASSERT_THAT(device.sessions, SizeIs(1));
    EXPECT_EQ(device.sessions[0]->phyId, 9);
    EXPECT_EQ(device.sessions[0]->port, 12);
    EXPECT_EQ(device.sessions[0]->session.get(), session);
}

TEST_F(DeviceSessions, AdoptedFromElsewhereServeTheirPhy) {
    device.setSession(openSession(board, simpleMode(9, 1)).release());
    EXPECT_EQ(device.getSession(9), device.sessions[0].get());
    EXPECT_EQ(opened(), 1U);
}

TEST_F(DeviceSessions, ClosedByPhyTellTheBoardTheirIdentityAndKey) {
    Orvane::MdioExclusive mode = simpleMode();
    mode.key = 0x4321;
    device.setSession(openSession(board, mode).release());
    board.forgetRequests();
    EXPECT_TRUE(device.closePhyID(5));
    EXPECT_THAT(wireCalls(board, "setup"),
                ElementsAre(WireCall{kSetupProgram, 2, {{"handle", identity()}, {"key", 0x4321}}}));
    EXPECT_EQ(board.sessionCount(), 0U);
}

TEST_F(DeviceSessions, ClosedByPhyLeaveTheOthersInOrder) {
    for (const int phy : {5, 6, 5, 7})
        device.getSimpleSession(phy, 0);
    SimpleSessionEntry* secondOf5 = device.sessions[2].get();
    EXPECT_TRUE(device.closePhyID(5));
    EXPECT_THAT(phyIds(), ElementsAre(6, 5, 7));
    EXPECT_EQ(device.sessions[1].get(), secondOf5);
}

TEST_F(DeviceSessions, AreOpenedAgainAfterTheirPhyWasClosed) {
    device.getSession(5);
    device.closePhyID(5);
    device.getSession(5);
    EXPECT_EQ(opened(), 2U);
}

TEST_F(DeviceSessions, OfAnotherPhyAreLeftAloneByAClose) {
    device.getSession(5);
    EXPECT_FALSE(device.closePhyID(6));
    EXPECT_EQ(board.sessionCount(), 1U);
}

TEST_F(DeviceSessions, AreAllClosedWithTheDevice) {
    device.open();
    device.getSession(5);
    device.getSession(6);
    device.close();
    EXPECT_EQ(device.isOpen, 0);
    EXPECT_THAT(device.sessions, SizeIs(0));
    EXPECT_EQ(board.sessionCount(), 0U);
}

TEST_F(DeviceSessions, AreAllClosedWhenTheDeviceEnds) {
    {
        SimpleDeviceEntry other("01A2:0", board.address());
        other.getSession(5);
    }
    EXPECT_EQ(board.sessionCount(), 0U);
    EXPECT_THAT(board.requestsOf("close_connection"), SizeIs(1));
}

} // namespace
} // namespace OrvaneTest
