// Sessions that cannot be opened: what is said, what is thrown and what is left.
#include "ov_sys/Interface/devices/SimpleDeviceEntry.h"
#include "ov_sys/Interface/foundation/Exceptions.h"
#include "simulator/lab/Lab.h"
#include "tests/support/SessionOnBoard.h"
#include "tests/support/WrittenText.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <thread>

namespace OrvaneTest {
namespace {

using Orvane::SimpleDeviceEntry;
using Orvane::Exceptions::AccessDenied;
using Orvane::Exceptions::DeviceConnection;
using Orvane::Exceptions::InvalidRPCClient;
using OrvaneSim::Fault;
using testing::EndsWith;
using testing::SizeIs;

class RefusedOpen : public testing::Test {
protected:
    // The board ends the connection on which it is asked for a session.
    void breakOpening() { board.inject({"setup", "open_connection", Fault::Kind::CloseConnection, 1, 0}); }

    OrvaneSim::Lab lab;
    OrvaneSim::Board& board = lab.add();
    SimpleDeviceEntry device{"01A2:1", board.address()};
};

TEST_F(RefusedOpen, IsReportedAndThrownAsItIs) {
    breakOpening();
    const WrittenText written = textWritten([&] { EXPECT_THROW(device.getSession(5), DeviceConnection); });
    EXPECT_THAT(
        written.error,
        EndsWith("Open session RPC failed with error: 4\n"
                 "Error while opening connection: Problem with connection to rpc server on device.\n"));
}

TEST_F(RefusedOpen, LeavesNoSessionAndSendsNoCloseRequest) {
    breakOpening();
    EXPECT_THROW(device.getSession(5), DeviceConnection);
    EXPECT_THAT(device.sessions, SizeIs(0));
    EXPECT_THAT(board.requestsOf("close_connection"), SizeIs(0));
}

TEST_F(RefusedOpen, ReleasesTheLockOfTheDevice) {
    breakOpening();
    EXPECT_THROW(device.getSession(5), DeviceConnection);
    bool locked = false;
    std::thread([&] {
        locked = device.lock.try_lock();
        if (locked)
            device.lock.unlock();
    }).join();
    EXPECT_TRUE(locked);
}

TEST_F(RefusedOpen, LeavesEarlierSessionsAlone) {
    device.getSession(6);
    breakOpening();
    EXPECT_THROW(device.getSession(5), DeviceConnection);
    EXPECT_THAT(device.sessions, SizeIs(1));
    EXPECT_EQ(board.sessionCount(), 1U);
}

TEST_F(RefusedOpen, OfASimpleSessionIsReportedAndThrownTheSameWay) {
    breakOpening();
    const WrittenText written =
        textWritten([&] { EXPECT_THROW(device.getSimpleSession(5, 7), DeviceConnection); });
    EXPECT_THAT(written.error,
                EndsWith("Error while opening connection: Problem with connection to rpc server "
                         "on device.\n"));
    EXPECT_THAT(device.sessions, SizeIs(0));
}

TEST_F(RefusedOpen, CanBeRepeated) {
    breakOpening();
    EXPECT_THROW(device.getSession(5), DeviceConnection);
    EXPECT_EQ(device.getSession(5)->phyId, 5);
}

TEST_F(RefusedOpen, AtAnAddressWithoutABoardThrowsThatTheClientIsInvalid) {
    SimpleDeviceEntry nowhere("01A2:1", "10.83.100.1");
    const WrittenText written = textWritten([&] { EXPECT_THROW(nowhere.getSession(5), InvalidRPCClient); });
    EXPECT_THAT(written.error, EndsWith("Opening session terminated. Invalid Setup RPC client\n"
                                        "Error while opening connection: Invalid RPC client: setup\n"));
    EXPECT_THAT(nowhere.sessions, SizeIs(0));
}

TEST_F(RefusedOpen, OfAPortThatAnotherHoldsIsDeniedAfterSixTries) {
    Orvane::MdioExclusive exclusive = simpleMode(5, 1);
    exclusive.simple = 0;
    exclusive.shared = 0;
    exclusive.exclusive = 1;
    const auto holder = openSession(board, exclusive);
    board.forgetRequests();
    const WrittenText written = textWritten([&] { EXPECT_THROW(device.getSession(5), AccessDenied); });
    EXPECT_THAT(written.error,
                EndsWith("Error while opening connection: Device is in use or access denied.\n"));
    EXPECT_THAT(board.requestsOf("open_connection"), SizeIs(6));
    EXPECT_THAT(board.requestsOf("close_connection"), SizeIs(0));
    EXPECT_THAT(device.sessions, SizeIs(0));
}

} // namespace
} // namespace OrvaneTest
