// Life cycle of the flat interface: initializing, opening by name, closing, defaults.
#include "ov_sys/Interface/devices/HWInterface.h"
#include "ov_sys/Interface/foundation/Exceptions.h"
#include "tests/support/capi/FlatBoard.h"
#include "tests/support/Discoveries.h"
#include "tests/support/WrittenText.h"

#include <algorithm>
#include <cctype>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <iterator>
#include <orvane/orvane.h>

namespace OrvaneTest {
namespace {

using testing::Each;
using testing::SizeIs;

class FlatLifeCycle : public testing::Test, protected FlatBoard {};

constexpr std::size_t kTableRows = 3000;

TEST_F(FlatLifeCycle, IsInitializedOnceUntilItIsClosed) {
    HW_Close();
    clause22Enable[7] = 1;
    EXPECT_EQ(HW_Initialize(), 1);
    EXPECT_EQ(clause22Enable[7], 0U);
    clause22Enable[7] = 1;
    EXPECT_EQ(HW_Initialize(), 1);
    EXPECT_EQ(clause22Enable[7], 1U);
}

TEST_F(FlatLifeCycle, IsInitializedAgainAfterItWasClosed) {
    HW_Initialize();
    clause22Enable[7] = 1;
    HW_Close();
    EXPECT_EQ(clause22Enable[7], 1U);
    EXPECT_EQ(HW_Initialize(), 1);
    EXPECT_EQ(clause22Enable[7], 0U);
}

TEST_F(FlatLifeCycle, DelegatesEverythingOnceInitialized) {
    HW_Close();
    for (auto& row : delegationStatus)
        std::fill(std::begin(row), std::end(row), 0U);
    HW_Initialize();
    for (std::size_t adapter = 0; adapter < kTableRows; ++adapter)
        ASSERT_THAT(delegationStatus[adapter], Each(1U)) << "adapter " << adapter;
}

TEST_F(FlatLifeCycle, ResetsTheDefaultAdapterWhenInitializedButNotWhenClosed) {
    HW_SetDefaultAdapter(3);
    HW_Close();
    EXPECT_EQ(HW_GetDefaultAdapter(), 3U);
    HW_Initialize();
    EXPECT_EQ(HW_GetDefaultAdapter(), 0U);
}

TEST_F(FlatLifeCycle, ClearsTheClause22SwitchesOfEveryAdapterButTheSpareRow) {
    std::fill(std::begin(clause22Enable), std::end(clause22Enable), 1U);
    HW_InitializeClause22();
    EXPECT_EQ(std::count(std::begin(clause22Enable), std::end(clause22Enable), 0U), 3000);
    EXPECT_EQ(clause22Enable[kTableRows], 1U);
    clause22Enable[kTableRows] = 0;
}

TEST_F(FlatLifeCycle, OpensANamedDeviceAndMakesItTheDefault) {
    EXPECT_EQ(HW_Open(device(1).c_str()), 1);
    const unsigned adapter = static_cast<unsigned>(HW_Interface_Object.deviceIndex(device(1)));
    EXPECT_EQ(HW_GetDefaultAdapter(), adapter);
    EXPECT_EQ(HW_Interface_Object.devices[adapter]->isOpen, 1);
}

TEST_F(FlatLifeCycle, OpensAKnownDeviceWithoutADiscoveryInAnyLetterCase) {
    const unsigned adapter = knownAdapter(1);
    std::string name = device(1);
    std::transform(name.begin(), name.end(), name.begin(),
                   [](unsigned char letter) { return static_cast<char>(std::tolower(letter)); });
    EXPECT_EQ(HW_Open(name.c_str()), 1);
    EXPECT_EQ(HW_GetDefaultAdapter(), adapter);
    EXPECT_EQ(board.discoveryCount(), 0U);
}

TEST_F(FlatLifeCycle, LooksTwiceForAnUnknownDeviceAndFallsBackToAdapter0) {
    HW_SetDefaultAdapter(3);
    int opened = 1;
    const WrittenText written = textWritten([&] { opened = HW_Open("NoSuch:3"); });
    EXPECT_EQ(opened, 0);
    EXPECT_EQ(written.error, "\nError: Device not found.\n");
    EXPECT_EQ(HW_GetDefaultAdapter(), 0U);
    EXPECT_EQ(HW_Fail(), 1);
    EXPECT_STREQ(HW_Error(), "Device not found.");
    EXPECT_THAT(discoveryWords(board, 2 * kRequestsOfOneBoard),
                testing::AllOf(SizeIs(2 * kRequestsOfOneBoard), Each("NoSuch:3")));
}

TEST_F(FlatLifeCycle, OpensNothingForTheNullNameAndSearchesForNothing) {
    int opened = 1;
    const WrittenText written = textWritten([&] { opened = HW_Open(nullptr); });
    EXPECT_EQ(opened, 0);
    EXPECT_EQ(written.error, "\nError: Device not found.\n");
    EXPECT_EQ(board.discoveryCount(), 0U);
}

TEST_F(FlatLifeCycle, ClosesEverySessionAndKeepsTheDevices) {
    const unsigned adapter = openAdapter(1);
    HW_Read_Abstracted(adapter, 5, 1, 2);
    const std::size_t devices = HW_Interface_Object.devices.size();
    HW_Close();
    EXPECT_EQ(board.sessionCount(), 0U);
    EXPECT_EQ(HW_Interface_Object.devices[adapter]->isOpen, 0);
    EXPECT_EQ(HW_Interface_Object.devices.size(), devices);
}

TEST_F(FlatLifeCycle, OpensAndClosesAdaptersWithOppositeResults) {
    const unsigned adapter = knownAdapter(1);
    EXPECT_EQ(HW_OpenAdapter(adapter), 1);
    EXPECT_EQ(HW_CloseAdapter(adapter), 0U);
}

TEST_F(FlatLifeCycle, DoesNotOpenAnAdapterThatDoesNotExist) {
    const WrittenText written = textWritten([&] { EXPECT_EQ(HW_OpenAdapter(2999), 0); });
    EXPECT_EQ(written.error, "");
}

TEST_F(FlatLifeCycle, ReportsThatAnAdapterToCloseDoesNotExist) {
    const WrittenText written = textWritten([&] { EXPECT_EQ(HW_CloseAdapter(2999), 1U); });
    EXPECT_EQ(written.error, "closeAdapter failed\n");
}

TEST_F(FlatLifeCycle, TakesAnyDefaultAdapter) {
    EXPECT_EQ(HW_SetDefaultAdapter(57000), 1);
    EXPECT_EQ(HW_GetDefaultAdapter(), 57000U);
    EXPECT_EQ(thrownText<Orvane::Exceptions::Standard>([] { HW_Interface_Object.read(5, 1, 2); }),
              "Invalid adapter index");
}

TEST_F(FlatLifeCycle, KeepsTheDefaultPhyInItsExportedVariable) {
    HW_SetDefault_PHY_ID(31);
    EXPECT_EQ(Default_PHY_ID, 31U);
    Default_PHY_ID = 4000000000U;
    EXPECT_EQ(HW_GetDefault_PHY_ID(), 4000000000U);
    HW_SetDefault_PHY_ID(0);
}

} // namespace
} // namespace OrvaneTest
