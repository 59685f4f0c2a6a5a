// Discovery as the device list uses it: whom it asks, how often, and what it makes of the answers.
#include "ov_sys/Interface/devices/HWInterface.h"

#include "ov_sys/Interface/buses/rpc/RPCSetup.h"
#include "ov_sys/Interface/foundation/AddressResponse.h"
#include "ov_sys/Interface/foundation/Exceptions.h"
#include "ov_sys/Interface/sessions/PhySession.h"
#include "tests/support/Discoveries.h"
#include "tests/support/HeapText.h"
#include "tests/support/HostsFile.h"
#include "tests/support/SessionOnBoard.h"
#include "tests/support/WithoutInterfaces.h"
#include "tests/support/WrittenText.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace OrvaneTest {
namespace {

using Orvane::HWInterface;
using Orvane::PhySession;
using Orvane::Exceptions::InvalidSession;
using Orvane::Exceptions::NoDevice;
using Orvane::Exceptions::Standard;
using OrvaneSim::Fault;
using testing::ElementsAre;
using testing::IsEmpty;

class DeviceDiscovery : public testing::Test {
protected:
    std::vector<std::string> names() const {
        std::vector<std::string> names;
        for (const auto& entry : devices.devices)
            names.push_back(entry->name);
        return names;
    }

    OrvaneSim::Lab lab;
    OrvaneSim::Board& board = lab.add();
    HWInterface devices;
};

TEST_F(DeviceDiscovery, AddsTheDevicesOfABoardAndASecondOneAddsNothing) {
    EXPECT_EQ(devices.numberOfDevices(), 2U);
    EXPECT_EQ(devices.numberOfDevices(), 2U);
    EXPECT_THAT(names(), ElementsAre("01A2:0", "01A2:1"));
    EXPECT_EQ(devices.devices[0]->address, board.address());
}

TEST_F(DeviceDiscovery, OfTheNumberAsksEveryBoardWithTheBareRequest) {
    devices.numberOfDevices();
    EXPECT_THAT(discoveryWords(board, kRequestsOfAnyBoard),
                testing::AllOf(testing::SizeIs(kRequestsOfAnyBoard), testing::Each("")));
    EXPECT_THAT(board.probeRequests(), IsEmpty());
}

TEST_F(DeviceDiscovery, OfTheNumberGoesOnWithTenBoards_AndEndsSoonWithMore) {
    const auto add = [&](unsigned number) {
        OrvaneSim::BoardOptions options;
        options.serial = "M" + std::to_string(number);
        lab.add(options);
    };
    for (unsigned number = 1; number < 10; ++number)
        add(number);
    EXPECT_EQ(devices.numberOfDevices(), 20U);
    EXPECT_THAT(discoveryWords(board, kRequestsOfAnyBoard), testing::SizeIs(kRequestsOfAnyBoard));
    add(10);
    EXPECT_EQ(devices.numberOfDevices(), 22U);
    EXPECT_LT(board.discoveryCount(), 2 * kRequestsOfAnyBoard - 1); // the last may be on its way
}

TEST_F(DeviceDiscovery, OfTheListEndsItWithANullPointer) {
    EXPECT_THAT(taken(devices.deviceList()), ElementsAre("01A2:0", "01A2:1"));
}

TEST_F(DeviceDiscovery, AddsTheWholeBoardThatAnswersWithTheTypeWord) {
    board.setDiscoveryReplies({{"|orvane"}});
    devices.numberOfDevices();
    EXPECT_THAT(names(), ElementsAre("ORVANE:0"));
}

TEST_F(DeviceDiscovery, FindsNothingAndSaysNothingWithoutABoard) {
    board.stop();
    const WrittenText written = textWritten([&] {
        EXPECT_EQ(devices.numberOfDevices(), 0U);
        EXPECT_EQ(devices.deviceList(), nullptr);
    });
    EXPECT_EQ(written.error, "");
    EXPECT_EQ(written.output, "");
}

TEST_F(DeviceDiscovery, OfAnUnknownNameAsksOnceForTheNameAsItWasGiven) {
    EXPECT_THROW(devices.deviceNumber("NoSuch:3", ""), NoDevice);
    EXPECT_THAT(discoveryWords(board, kRequestsOfOneBoard),
                testing::AllOf(testing::SizeIs(kRequestsOfOneBoard), testing::Each("NoSuch:3")));
    EXPECT_THAT(board.probeRequests(), IsEmpty());
}

TEST_F(DeviceDiscovery, OfANameEndsWithTheFirstAnswerAndAddsAllOfItsDevices) {
    EXPECT_EQ(devices.deviceNumber("01a2:1", ""), 1);
    EXPECT_THAT(names(), ElementsAre("01A2:0", "01A2:1"));
    EXPECT_THAT(board.discoveryRequests(), testing::Each("01a2:1"));
    EXPECT_LT(board.discoveryCount(), kRequestsOfOneBoard);
}

TEST_F(DeviceDiscovery, OfANameThatIsAHostNameProbesThatHost) {
    OrvaneSim::BoardOptions options;
    options.serial = "boardhost";
    OrvaneSim::Board& host = lab.add(options);
    const HostsFile hosts(host.address() + " boardhost\n");
    EXPECT_EQ(devices.deviceNumber("boardhost:1", ""), 1);
    EXPECT_THAT(host.probeRequests(), ElementsAre("boardhost:1"));
    EXPECT_EQ(host.discoveryCount(), 0U);
}

TEST_F(DeviceDiscovery, OfAHostNameFallsBackToMulticastWhenTheHostDoesNotTellItsName) {
    OrvaneSim::BoardOptions options;
    options.serial = "boardhost";
    OrvaneSim::Board& host = lab.add(options);
    const HostsFile hosts(host.address() + " boardhost\n");
    host.inject({"probe", "", Fault::Kind::CloseConnection, 1, 0});
    EXPECT_EQ(devices.deviceNumber("boardhost:1", ""), 1);
    EXPECT_THAT(host.probeRequests(), ElementsAre("boardhost:1"));
    EXPECT_THAT(host.discoveryRequests(), testing::Contains("boardhost:1"));
}

TEST_F(DeviceDiscovery, OfANameWithAnAddressProbesThatAddressOnly) {
    EXPECT_EQ(devices.deviceNumber("01A2:1", board.address()), 1);
    EXPECT_THAT(board.probeRequests(), ElementsAre(""));
    EXPECT_EQ(board.discoveryCount(), 0U);
}

TEST_F(DeviceDiscovery, OfAnAddressTellsTheSerialOfItsBoard) {
    EXPECT_EQ(taken(devices.device(board.address())), "01A2");
    EXPECT_THAT(board.probeRequests(), ElementsAre(""));
    EXPECT_EQ(board.discoveryCount(), 0U);
}

TEST_F(DeviceDiscovery, OfAnAddressTellsAKnownSerialThoughTheBoardKeepsSilent) {
    devices.numberOfDevices();
    board.inject({"probe", "", Fault::Kind::CloseConnection, 1, 0});
    EXPECT_EQ(taken(devices.device(board.address())), "01A2");
}

TEST_F(DeviceDiscovery, OfAnAddressWithoutABoardTellsNothing) {
    EXPECT_EQ(devices.device(std::string("10.83.100.1")), nullptr);
    EXPECT_THAT(names(), IsEmpty());
}

TEST_F(DeviceDiscovery, OfAnAddressWhoseDeviceHasNoSerialTellsNothing) {
    board.setDiscoveryReplies({{"|host :5"}});
    EXPECT_EQ(devices.device(board.address()), nullptr);
    EXPECT_THAT(names(), ElementsAre(":5"));
}

TEST_F(DeviceDiscovery, ThatFailsIsReportedAsADeviceThatWasNotFound) {
    std::string thrown;
    const WrittenText written = textWritten([&] {
        withoutInterfaces(
            [&] { thrown = thrownText<NoDevice>([&] { devices.deviceNumber("01A2:0", ""); }); });
    });
    EXPECT_EQ(written.error, "Couldn't get list of local interfaces.\nDeviceNumber: Device not found\n");
    EXPECT_EQ(thrown, "Device not found.");
}

TEST_F(DeviceDiscovery, ThatFailsWithoutANameThrowsItsReason) {
    std::string thrown;
    withoutInterfaces([&] { thrown = thrownText<Standard>([&] { devices.numberOfDevices(); }); });
    EXPECT_EQ(thrown, "Couldn't get list of local interfaces.");
}

TEST_F(DeviceDiscovery, IsPartOfOpeningANamedDevice) {
    EXPECT_TRUE(devices.open("01a2:1"));
    EXPECT_EQ(devices.devices[1]->isOpen, 1);
    EXPECT_EQ(devices.devices[0]->isOpen, 0);
}

TEST_F(DeviceDiscovery, ThatFailsLeavesTheNamedDeviceUnopened) {
    bool opened = true;
    withoutInterfaces([&] { opened = devices.open("01A2:0"); });
    EXPECT_FALSE(opened);
}

TEST_F(DeviceDiscovery, IsNotMadeForTheNullName) {
    EXPECT_FALSE(devices.open(nullptr));
    EXPECT_EQ(board.discoveryCount(), 0U);
}

TEST_F(DeviceDiscovery, IsPartOfAskingForASessionByName) {
    EXPECT_EQ(thrownText<Standard>([&] { devices.getSimpleSession("01A2:1", 5); }), "Adapter isn't open.");
    EXPECT_THAT(names(), ElementsAre("01A2:0", "01A2:1"));
}

TEST_F(DeviceDiscovery, FindsTheDeviceWhoseSessionIsAskedFor) {
    devices.open("01A2:1");
    Orvane::SimpleSessionEntry* entry = devices.getSimpleSession("01a2:1", 5);
    EXPECT_EQ(devices.devices[1]->sessions[0].get(), entry);
    EXPECT_EQ(devices.getPhySession("01a2:1", 5), entry->session.get());
}

// A session named like the device for which it is to be adopted.
class SessionForDevice : public DeviceDiscovery {
protected:
    std::unique_ptr<PhySession> open(const std::string& name) {
        auto session =
            std::make_unique<PhySession>(Orvane::AddressResponse(name, board.address()), simpleMode());
        Orvane::Setup::openConnection(*session);
        return session;
    }
};

TEST_F(SessionForDevice, IsAdoptedByItsDeviceWhichIsOpenedForIt) {
    PhySession* session = open("01a2:1").release();
    EXPECT_TRUE(devices.setSession(session));
    EXPECT_EQ(devices.devices[1]->isOpen, 1);
    EXPECT_EQ(devices.getSimpleSession(1, 5)->session.get(), session);
}

TEST_F(SessionForDevice, ThatIsNullIsRefused) {
    EXPECT_THROW(devices.setSession(nullptr), InvalidSession);
}

TEST_F(SessionForDevice, ThatIsInvalidIsRefusedWithoutADiscovery) {
    const auto session = open("01a2:1");
    session->setSessionState(PhySession::SESSION_INVALID);
    EXPECT_THROW(devices.setSession(session.get()), InvalidSession);
    EXPECT_EQ(board.discoveryCount(), 0U);
}

TEST_F(SessionForDevice, OfAnUnknownNameIsRefusedAndStaysTheCallers) {
    const auto session = open("01A2");
    withoutInterfaces([&] { EXPECT_THROW(devices.setSession(session.get()), NoDevice); });
    EXPECT_EQ(board.sessionCount(), 1U);
}

} // namespace
} // namespace OrvaneTest
