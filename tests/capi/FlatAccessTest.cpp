// The unrouted 16-bit accesses of the flat interface on the wire, and their failures.
#include "ov_sys/Interface/devices/HWInterface.h"
#include "tests/support/capi/FlatBoard.h"
#include "tests/support/MdioOperations.h"
#include "tests/support/NamedParam.h"
#include "tests/support/SessionOnBoard.h"
#include "tests/support/WrittenText.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <orvane/orvane.h>

namespace OrvaneTest {
namespace {

using OrvaneSim::Fault;
using testing::ElementsAre;

struct AdapterAccess {
    std::string name;
    unsigned (*run)(unsigned adapter); // the value read, 0 for a write
    unsigned procedure;
    nlohmann::ordered_json arguments; // of PHY 5 on port 1
    unsigned value;
};

const AdapterAccess kAdapterAccesses[] = {
    {"HW_Read_Abstracted", [](unsigned a) { return HW_Read_Abstracted(a, 5, 0x11E, 0x30001); }, 1,
     readParam(identity(), {0x251E0001}), 0x4501},
    {"HW_Write_Abstracted",
     [](unsigned a) {
         HW_Write_Abstracted(a, 5, 0x11E, 0x30001, 0x12345678);
         return 0U;
     },
     2, writeParam(identity(), {0x251E0001}, {0x12345678}), 0},
    {"HW_Read_C22_Abstracted", [](unsigned a) { return HW_Read_C22_Abstracted(a, 5, 0x11); }, 11,
     readParam(identity(), {0x25000011}), 0x2211},
    {"HW_Write_C22_Abstracted",
     [](unsigned a) {
         HW_Write_C22_Abstracted(a, 5, 0x11, 7);
         return 0U;
     },
     12, writeParam(identity(), {0x25000011}, {7}), 0},
    {"HW_Read_C22", [](unsigned a) { return HW_Read_C22(a, 5, 0x11); }, 11,
     readParam(identity(), {0x25000011}), 0x2211},
    {"HW_Write_C22",
     [](unsigned a) {
         HW_Write_C22(a, 5, 0x11, 7);
         return 0U;
     },
     12, writeParam(identity(), {0x25000011}, {7}), 0},
};

class FlatAccess : public testing::TestWithParam<AdapterAccess>, protected FlatBoard {
protected:
    FlatAccess() { prepareRegisters(board); }
};

INSTANTIATE_TEST_SUITE_P(Each, FlatAccess, testing::ValuesIn(kAdapterAccesses), NamedParam{});

TEST_P(FlatAccess, IsOneCallOnTheBoard) {
    GetParam().run(openAdapter(1));
    EXPECT_THAT(wireCalls(board, "mdio"), ElementsAre(mdioCall(GetParam().procedure, GetParam().arguments)));
}

TEST_P(FlatAccess, GivesTheBoardsWord) {
    EXPECT_EQ(GetParam().run(openAdapter(1)), GetParam().value);
}

TEST_P(FlatAccess, OnAClosedAdapterGives0AndReports) {
    const unsigned adapter = knownAdapter(1);
    unsigned value = 1;
    const WrittenText written = textWritten([&] { value = GetParam().run(adapter); });
    EXPECT_EQ(value, 0U);
    EXPECT_EQ(written.error, "\nError: Adapter isn't open.\n");
    EXPECT_EQ(HW_Fail(), 1);
    EXPECT_STREQ(HW_Error(), "Adapter isn't open.");
}

TEST_P(FlatAccess, WithoutItsAdapterGives0AndReports) {
    unsigned value = 1;
    const WrittenText written = textWritten([&] { value = GetParam().run(2999); });
    EXPECT_EQ(value, 0U);
    EXPECT_EQ(written.error, "\nError: Invalid adapter index\n");
    EXPECT_STREQ(HW_Error(), "Invalid adapter index");
}

TEST_P(FlatAccess, ThatTheBoardRefusesGives0AndReports) {
    const unsigned adapter = openAdapter(1);
    HW_Interface_Object.getSimpleSession(static_cast<int>(adapter), 5);
    board.inject({"mdio", "", Fault::Kind::ResultCode, 1, -13});
    unsigned value = 1;
    const WrittenText written = textWritten([&] { value = GetParam().run(adapter); });
    EXPECT_EQ(value, 0U);
    EXPECT_EQ(written.error, "mdio Board in in use. AccessDenied exception...-13\n"
                             "\nError: Device is in use or access denied.\n");
}

class FlatSmbusAccess : public testing::Test, protected FlatBoard {};

TEST_F(FlatSmbusAccess, InClause22IsRefusedAndReported) {
    const unsigned adapter = openAdapter(10);
    HW_Interface_Object.getSimpleSession(static_cast<int>(adapter), 5);
    unsigned value = 1;
    const WrittenText written = textWritten([&] { value = HW_Read_C22(adapter, 5, 1); });
    EXPECT_EQ(value, 0U);
    EXPECT_EQ(written.error, "MDIO Clause 22 over SMBus is not implemented\n"
                             "\nError: NotImplemented: MDIO C22 over SMB\n");
}

} // namespace
} // namespace OrvaneTest
