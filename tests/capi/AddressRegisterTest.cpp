// Accesses at the address register, and those that read before they write.
#include "tests/support/capi/AccessTable.h"
#include "tests/support/NamedParam.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace OrvaneTest {
namespace {

// The address register stands at 1000.
const Access kAddressRegister[] = {
    {"HW_Read32PreIncrementAddress",
     call<HW_Read32PreIncrementAddress, 3, 5>,
     {kOnExplicit.call(16)},
     0x0FF5E704,
     "",
     ""},
    {"HW_Read32PreIncrementAddress_Abstracted",
     call<HW_Read32PreIncrementAddress_Abstracted, 3, 5>,
     {kOnExplicit.call(16)},
     0x0FF5E704,
     "",
     ""},
    {"HW_Read32CurrentAddress", call<HW_Read32CurrentAddress, 3, 5>, {kOnExplicit.call(18)}, kWord, "", ""},
    {"HW_Read32CurrentAddress_Abstracted",
     call<HW_Read32CurrentAddress_Abstracted, 3, 5>,
     {kOnExplicit.call(18)},
     kWord,
     "",
     ""},
    {"HW_Write32PreIncrementAddress",
     call<HW_Write32PreIncrementAddress, 3, 5, 0x12345678>,
     {kOnExplicit.call(17, {"12345678"})},
     0,
     "",
     ""},
    {"HW_Write32PreIncrementAddress_Abstracted",
     call<HW_Write32PreIncrementAddress_Abstracted, 3, 5, 0x12345678>,
     {kOnExplicit.call(17, {"12345678"})},
     0,
     "",
     ""},
    {"HW_Write32CurrentAddress",
     call<HW_Write32CurrentAddress, 3, 5, 0x12345678>,
     {kOnExplicit.call(19, {"12345678"})},
     0,
     "",
     ""},
    {"HW_Write32CurrentAddress_Abstracted",
     call<HW_Write32CurrentAddress_Abstracted, 3, 5, 0x12345678>,
     {kOnExplicit.call(19, {"12345678"})},
     0,
     "",
     ""},
};

// These go on from the address of the last access.
class AddressRegisterAccess : public WidthAccess {
protected:
    AddressRegisterAccess() { HW_Read32_Abstracted(3, 5, 0x1000); }
};

TEST_P(AddressRegisterAccess, IsOneCallWithoutAddressAndNotLogged) {
    EXPECT_EQ(outcomeOf(GetParam().access), (Outcome{GetParam().result, "", "", ""}));
    EXPECT_EQ(frames(), (std::vector<std::string>{kOnExplicit.read32(0x1000), GetParam().frames[0]}));
}

TEST_P(AddressRegisterAccess, OfAnAdapterThatIsNotOpenIsReported) {
    HW_CloseAdapter(3);
    EXPECT_EQ(outcomeOf(GetParam().access), (Outcome{0, "", "\nError: Adapter isn't open.\n", ""}));
}

INSTANTIATE_TEST_SUITE_P(Hw, AddressRegisterAccess, testing::ValuesIn(kAddressRegister), NamedParam());

// ---- Read, then write ----

struct NarrowWrite {
    std::string name;
    unsigned long long (*access)();
    Frame phy;
};

const NarrowWrite kNarrowWrites[] = {
    {"HW_Write8", call<HW_Write8_Abstracted, 3, 5, 0x1001, 0x5A>, kOnExplicit},
    {"HW_Write16", call<HW_Write16_Abstracted, 3, 5, 0x1002, 0x1234>, kOnExplicit},
    {"ZR_API_Write8", call<ZR_API_Write8_Abstracted, 5, 0x1001, 0x5A>, kOnDefault},
    {"ZR_API_Write16", call<ZR_API_Write16_Abstracted, 5, 0x1002, 0x1234>, kOnDefault},
};

class FailedReadOfANarrowWrite : public FlatInterface, public testing::WithParamInterface<NarrowWrite> {};

TEST_P(FailedReadOfANarrowWrite, IsReportedOnceAndNotFollowedByAWrite) {
    board.inject({"mdio", "mdio_read_c22_zrext32", OrvaneSim::Fault::Kind::ResultCode, -1, -5});
    const Outcome outcome = outcomeOf(GetParam().access);
    EXPECT_THAT(outcome.error, testing::HasSubstr("\nError: "));
    EXPECT_EQ(outcome.error.find("\nError: "), outcome.error.rfind("\nError: "));
    EXPECT_THAT(board.requestsOf("mdio_read_c22_zrext32"), testing::Not(testing::IsEmpty()));
    EXPECT_THAT(board.requestsOf("mdio_write_c22_zrext32"), testing::IsEmpty());
}

INSTANTIATE_TEST_SUITE_P(Of, FailedReadOfANarrowWrite, testing::ValuesIn(kNarrowWrites), NamedParam());

using RunOnRecords = FlatInterface;

TEST_F(RunOnRecords, StandInOneLineForConsecutive32BitAccesses) {
    board.setRegister(OrvaneSim::Space::Ext32, 3, 5, 0x1000, kWord);
    const Outcome outcome = outcomeOf([] {
        HW_Read32(3, 5, 0x1000);
        HW_Write32(3, 5, 0x1004, 1);
        HW_Write(3, 5, 1, 0x10, 2);
    });
    EXPECT_EQ(outcome.log, "3,5,MR,001000,A1B2C3D43,5,MW,001004,000000013,5,MW,01,0010,0002\n");
}

} // namespace
} // namespace OrvaneTest
