// Devices of the flat interface: numbers, names, addresses and parameters.
#include "ov_sys/Interface/devices/HWInterface.h"
#include "tests/support/capi/FlatBoard.h"
#include "tests/support/Discoveries.h"
#include "tests/support/HeapText.h"
#include "tests/support/WrittenText.h"

#include <cstdlib>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <orvane/orvane.h>

namespace OrvaneTest {
namespace {

using testing::Each;
using testing::ElementsAre;
using testing::SizeIs;

class FlatDevices : public testing::Test, protected FlatBoard {};

TEST_F(FlatDevices, AreCountedAfterADiscovery) {
    const std::size_t before = HW_Interface_Object.devices.size();
    EXPECT_EQ(HW_NumberOfDevices(), before + 2);
    EXPECT_EQ(HW_NumberOfDevices(), before + 2);
}

TEST_F(FlatDevices, AreListedAfterADiscovery) {
    const std::vector<std::string> names = taken(HW_DeviceList());
    ASSERT_GE(names.size(), 2U);
    EXPECT_EQ(names[names.size() - 2], device(0));
    EXPECT_EQ(names.back(), device(1));
}

// The rest of the process knows devices already: the child starts anew.
TEST(FlatDevicesDeathTest, AreNoneAndNothingIsPrintedWithoutABoard) {
    GTEST_FLAG_SET(death_test_style, "threadsafe");
    const auto countAndList = [] {
        const bool none = HW_NumberOfDevices() == 0 && HW_DeviceList() == nullptr && HW_Fail() == 0;
        std::_Exit(none ? 0 : 1);
    };
    EXPECT_EXIT(countAndList(), testing::ExitedWithCode(0), testing::Eq(""));
}

TEST_F(FlatDevices, HaveOneNameAndTheSameFullName) {
    const unsigned adapter = knownAdapter(1);
    EXPECT_EQ(taken(HW_Device(adapter)), device(1));
    EXPECT_EQ(taken(HW_Device_FullName(adapter)), device(1));
}

TEST_F(FlatDevices, BehindTheLastHaveNoName) {
    const WrittenText written = textWritten([&] {
        EXPECT_EQ(HW_Device(2999), nullptr);
        EXPECT_EQ(HW_Device_FullName(2999), nullptr);
    });
    EXPECT_EQ(written.error, "No device at index 2999\nNo device at index 2999\n");
}

TEST_F(FlatDevices, HaveRevision0) {
    EXPECT_EQ(HW_Device_Revision(), 0U);
}

TEST_F(FlatDevices, ThatAreKnownAreNumberedWithoutADiscovery) {
    const unsigned adapter = knownAdapter(1);
    EXPECT_EQ(HW_DeviceNumber(device(1).c_str()), static_cast<int>(adapter));
    EXPECT_EQ(board.discoveryCount(), 0U);
}

TEST_F(FlatDevices, ThatAreNotKnownYetAreNumberedByADiscovery) {
    const int number = HW_DeviceNumber(device(1).c_str());
    EXPECT_EQ(number, HW_Interface_Object.deviceIndex(device(1)));
    EXPECT_THAT(board.discoveryRequests(), Each(device(1)));
}

TEST_F(FlatDevices, ThatNobodyKnowsAreNumber0AfterOneDiscovery) {
    int number = 1;
    const WrittenText written = textWritten([&] { number = HW_DeviceNumber("NoSuch:3"); });
    EXPECT_EQ(number, 0);
    EXPECT_EQ(written.error, "\nError: Device not found.\n");
    EXPECT_EQ(HW_Fail(), 1);
    EXPECT_THAT(discoveryWords(board, kRequestsOfOneBoard), SizeIs(kRequestsOfOneBoard));
}

TEST_F(FlatDevices, AreFoundByTheAddressOfTheirBoard) {
    EXPECT_EQ(taken(HW_DeviceByIp(board.address().c_str())), board.serial());
    EXPECT_THAT(board.probeRequests(), ElementsAre(""));
}

TEST_F(FlatDevices, AreNotFoundByAnAddressWithoutABoard) {
    EXPECT_EQ(HW_DeviceByIp("10.83.100.1"), nullptr);
}

TEST_F(FlatDevices, AreNotFoundByNoAddressWithoutASearch) {
    const WrittenText written = textWritten([] { EXPECT_EQ(HW_DeviceByIp(nullptr), nullptr); });
    EXPECT_EQ(written.error, "");
    EXPECT_STREQ(HW_Error(), "Device not found.");
    EXPECT_EQ(board.discoveryCount(), 0U);
}

TEST_F(FlatDevices, HaveNumber0WithoutANameAndWithoutASearch) {
    const WrittenText written = textWritten([] { EXPECT_EQ(HW_DeviceNumber(nullptr), 0); });
    EXPECT_EQ(written.error, "\nError: Device not found.\n");
    EXPECT_STREQ(HW_Error(), "Device not found.");
    EXPECT_EQ(board.discoveryCount(), 0U);
}

TEST_F(FlatDevices, KeepTheirSmbusProtocol) {
    const unsigned adapter = knownAdapter(1);
    EXPECT_EQ(HW_GetDeviceParameters(adapter, 0), 0U);
    HW_SetDeviceParameters(adapter, 99, 5);
    EXPECT_EQ(HW_GetDeviceParameters(adapter, 7), 1U);
    HW_SetDeviceParameters(adapter, 0, 0);
    EXPECT_EQ(HW_GetDeviceParameters(adapter, 0), 0U);
}

} // namespace
} // namespace OrvaneTest
