// Adapters: opening, closing, defaults, parameters, sessions and the single-wire switch.
#include "ov_sys/Interface/devices/HWInterface.h"
#include "ov_sys/Interface/foundation/Exceptions.h"
#include "ov_sys/Interface/sessions/PhySession.h"
#include "tests/support/devices/AdaptersOnBoard.h"
#include "tests/support/HeapText.h"
#include "tests/support/SessionOnBoard.h"
#include "tests/support/WireCall.h"
#include "tests/support/WrittenText.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <thread>

namespace OrvaneTest {
namespace {

using Orvane::HWInterface;
using Orvane::Exceptions::Standard;
using OrvaneSim::Fault;
using testing::ElementsAre;
using testing::SizeIs;

class Adapters : public testing::Test, protected AdaptersOnBoard {};

std::string readFailure(HWInterface& devices, unsigned adapter) {
    return thrownText<Standard>([&] { devices.readAdapter(adapter, 5, 1, 2); });
}

TEST_F(Adapters, AreNotAccessedBeforeTheyAreOpened) {
    EXPECT_EQ(readFailure(devices, 0), "Adapter isn't open.");
    EXPECT_EQ(board.sessionCount(), 0U);
}

TEST_F(Adapters, OpenASessionAtTheFirstAccess) {
    EXPECT_TRUE(devices.openAdapter(0));
    EXPECT_EQ(board.sessionCount(), 0U);
    devices.readAdapter(0, 5, 1, 2);
    EXPECT_EQ(board.sessionCount(), 1U);
}

TEST_F(Adapters, AreNotAccessedAfterTheyAreClosed) {
    devices.openAdapter(0);
    devices.readAdapter(0, 5, 1, 2);
    EXPECT_EQ(devices.closeAdapter(0), 0U);
    EXPECT_EQ(board.sessionCount(), 0U);
    EXPECT_EQ(readFailure(devices, 0), "Adapter isn't open.");
}

TEST_F(Adapters, CanBeClosedWhenTheyAreNotOpen) {
    const WrittenText written = textWritten([&] { EXPECT_EQ(devices.closeAdapter(0), 0U); });
    EXPECT_EQ(written.error, "");
}

TEST_F(Adapters, BehindTheLastAreNotOpened) {
    const WrittenText written = textWritten([&] { EXPECT_FALSE(devices.openAdapter(2)); });
    EXPECT_EQ(written.error, "");
}

TEST_F(Adapters, BehindTheLastAreReportedWhenClosed) {
    const WrittenText written = textWritten([&] { EXPECT_EQ(devices.closeAdapter(2), 1U); });
    EXPECT_EQ(written.error, "closeAdapter failed\n");
    EXPECT_EQ(written.output, "");
}

TEST_F(Adapters, BehindTheLastAreNotAccessed) {
    EXPECT_EQ(readFailure(devices, 2), "Invalid adapter index");
    EXPECT_EQ(readFailure(devices, 4294967295U), "Invalid adapter index");
    EXPECT_EQ(thrownText<Standard>([&] { devices.getSimpleSession(-1, 5); }), "Invalid adapter index");
}

TEST_F(Adapters, AreAllClosedByClose) {
    devices.openAdapter(0);
    devices.openAdapter(1);
    devices.readAdapter(0, 5, 1, 2);
    devices.readAdapter(1, 6, 1, 2);
    devices.close();
    EXPECT_EQ(board.sessionCount(), 0U);
    EXPECT_EQ(readFailure(devices, 0), "Adapter isn't open.");
    EXPECT_EQ(readFailure(devices, 1), "Adapter isn't open.");
    EXPECT_EQ(devices.devices.size(), 2U);
}

TEST_F(Adapters, CloseTheirSessionsWhenTheInterfaceEnds) {
    {
        AdaptersOf other(board);
        other.devices.openAdapter(0);
        other.devices.readAdapter(0, 5, 1, 2);
    }
    EXPECT_EQ(board.sessionCount(), 0U);
}

TEST_F(Adapters, ShareOneSessionAmongThreads) {
    devices.openAdapter(0);
    std::vector<std::thread> threads;
    for (int i = 0; i < 3; ++i)
        threads.emplace_back([&] { devices.readAdapter(0, 5, 1, 2); });
    for (std::thread& thread : threads)
        thread.join();
    EXPECT_THAT(board.requestsOf("open_connection"), SizeIs(1));
    EXPECT_THAT(board.requestsOf("mdio_read"), SizeIs(3));
}

TEST_F(Adapters, HaveAnUncheckedDefault) {
    EXPECT_EQ(devices.defaultAdapter(), 0U);
    EXPECT_TRUE(devices.setDefaultAdapter(57));
    EXPECT_EQ(devices.defaultAdapter(), 57U);
    EXPECT_EQ(thrownText<Standard>([&] { devices.read(5, 1, 2); }), "Invalid adapter index");
}

TEST_F(Adapters, StayWhenTheInterfaceIsInitialized) {
    devices.openAdapter(1);
    devices.setDefaultAdapter(1);
    devices.blockRead(5, 1, 2);
    devices.blockOperationExecute(5);
    EXPECT_TRUE(devices.initialize());
    EXPECT_EQ(devices.defaultAdapter(), 0U);
    EXPECT_EQ(devices.blockReadQueueSize(), 0U);
    EXPECT_EQ(devices.fail(), 0U);
    EXPECT_EQ(devices.devices.size(), 2U);
    EXPECT_EQ(devices.devices[1]->isOpen, 1);
}

TEST_F(Adapters, TakeTheDirectProtocolForAnyValueBut0) {
    devices.setDeviceParameters(1, 99, 5);
    EXPECT_EQ(devices.getDeviceParameters(1, 7), 1U);
    EXPECT_EQ(devices.devices[1]->getKelSmbProto(), Orvane::Direct32);
    EXPECT_EQ(devices.getDeviceParameters(0, 7), 0U);
}

TEST_F(Adapters, TakeThePagedProtocolForTheValue0) {
    devices.setDeviceParameters(0, 99, 5);
    devices.setDeviceParameters(0, 0, 0);
    EXPECT_EQ(devices.getDeviceParameters(0, 99), 0U);
}

TEST_F(Adapters, BehindTheLastHaveNoParameters) {
    EXPECT_EQ(thrownText<Standard>([&] { devices.setDeviceParameters(2, 0, 1); }), "Invalid adapter index");
    EXPECT_EQ(thrownText<Standard>([&] { devices.getDeviceParameters(2, 0); }), "Invalid adapter index");
}

TEST_F(Adapters, CloseThePhyOfANamedDevice) {
    devices.openAdapter(1);
    devices.readAdapter(1, 5, 1, 2);
    EXPECT_TRUE(devices.closePhyID("01a2:1", 12345, 5));
    EXPECT_EQ(board.sessionCount(), 0U);
}

TEST_F(Adapters, CloseNoPhyWithoutASession) {
    EXPECT_FALSE(devices.closePhyID("01A2:1", 0, 5));
}

TEST_F(Adapters, CloseNoPhyOfAnUnknownDeviceAndLookForNone) {
    const WrittenText written = textWritten([&] { EXPECT_FALSE(devices.closePhyID("NoSuch:1", 0, 5)); });
    EXPECT_EQ(written.error, "");
    EXPECT_EQ(board.discoveryCount(), 0U);
}

WireCall singleWire(unsigned on) {
    return mdioCall(8, {{"value", on}, {"handle", identity()}});
}

TEST_F(Adapters, SwitchSingleWireModeOnAndOff) {
    devices.openAdapter(1);
    EXPECT_TRUE(devices.setAdapterMdioPortBroadcast(1, 5, true));
    EXPECT_THAT(wireCalls(board, "mdio"), ElementsAre(singleWire(1)));
}

TEST_F(Adapters, SwitchSingleWireModeOfTheDefaultAdapter) {
    devices.openAdapter(1);
    devices.setDefaultAdapter(1);
    EXPECT_TRUE(devices.setMdioPortBroadcast(5, false));
    EXPECT_THAT(wireCalls(board, "mdio"), ElementsAre(singleWire(0)));
}

TEST_F(Adapters, ReportThatTheBoardRefusesSingleWireMode) {
    devices.openAdapter(0);
    devices.getSimpleSession(0, 5);
    board.inject({"mdio", "mdio_singlewire", Fault::Kind::ResultCode, 1, -13});
    bool done = true;
    const WrittenText written = textWritten([&] { done = devices.setAdapterMdioPortBroadcast(0, 5, true); });
    EXPECT_FALSE(done);
    EXPECT_EQ(written.error, "mdio Board in in use. AccessDenied exception...-13\n"
                             "Couldn't set mdio port broadcast:\n"
                             "Device is in use or access denied.\n");
}

TEST_F(Adapters, ThatAreNotOpenThrowWhenSingleWireModeIsSwitched) {
    EXPECT_EQ(thrownText<Standard>([&] { devices.setAdapterMdioPortBroadcast(0, 5, true); }),
              "Adapter isn't open.");
    EXPECT_EQ(thrownText<Standard>([&] { devices.setMdioPortBroadcast(5, true); }), "Adapter isn't open.");
}

TEST(Interface, HasItsConstantAnswers) {
    HWInterface devices;
    EXPECT_EQ(devices.fail(), 0U);
    EXPECT_EQ(taken(devices.errorMessage()), "");
    EXPECT_EQ(devices.maxQueueSize(), 873U);
    EXPECT_EQ(devices.blockReadQueueSize(), 0U);
}

TEST(Interface, CopiesItsErrorText) {
    HWInterface devices;
    devices.lastError = "no link";
    EXPECT_EQ(taken(devices.errorMessage()), "no link");
}

} // namespace
} // namespace OrvaneTest
