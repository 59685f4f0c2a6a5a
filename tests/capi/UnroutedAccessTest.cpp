// Plain accesses by PHY argument, which are never routed or logged.
#include "tests/support/capi/FlatInterface.h"
#include "tests/support/NamedParam.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace OrvaneTest {
namespace {

using testing::IsEmpty;

struct Plain {
    std::string name;
    unsigned long long (*access)();
    std::string frame;
    unsigned long long result = 0;
};

const Plain kPlain[] = {
    {"Read", call<ZR_API_MDIO_Read_Abstracted, kPhy, 28, 0x10>, Frame{2, kPhy}.read(28, 0x10), 0xC045},
    {"ReadOfACarriedAdapter", call<ZR_API_MDIO_Read_Abstracted, kCarrying, 28, 0x10>,
     Frame{3, 6}.read(28, 0x10), 0xC045},
    {"Write", call<ZR_API_MDIO_Write_Abstracted, kPhy, 28, 0x10, 0x1234>,
     Frame{2, kPhy}.write(28, 0x10, 0x1234)},
    {"WriteOfACarriedAdapter", call<ZR_API_MDIO_Write_Abstracted, kCarrying, 28, 0x10, 0x1234>,
     Frame{3, 6}.write(28, 0x10, 0x1234)},
    {"ReadOfClause22", call<ZR_API_MDIO_Read_C22, kPhy, 0x11>, Frame{2, kPhy}.read22(0x11), 0x2211},
    {"ReadOfClause22OfACarriedAdapter", call<ZR_API_MDIO_Read_C22, kCarrying, 0x11>, Frame{3, 6}.read22(0x11),
     0x2211},
    {"AbstractedReadOfClause22", call<ZR_API_MDIO_Read_C22_Abstracted, kPhy, 0x11>,
     Frame{2, kPhy}.read22(0x11), 0x2211},
    {"AbstractedReadOfClause22OfACarriedAdapter", call<ZR_API_MDIO_Read_C22_Abstracted, kCarrying, 0x11>,
     Frame{3, 6}.read22(0x11), 0x2211},
    {"WriteOfClause22", call<ZR_API_MDIO_Write_C22, kPhy, 0x11, 0x1234>,
     Frame{2, kPhy}.write22(0x11, 0x1234)},
    {"WriteOfClause22OfACarriedAdapter", call<ZR_API_MDIO_Write_C22, kCarrying, 0x11, 0x1234>,
     Frame{3, 6}.write22(0x11, 0x1234)},
    {"AbstractedWriteOfClause22", call<ZR_API_MDIO_Write_C22_Abstracted, kPhy, 0x11, 0x1234>,
     Frame{2, kPhy}.write22(0x11, 0x1234)},
    {"AbstractedWriteOfClause22OfACarriedAdapter",
     call<ZR_API_MDIO_Write_C22_Abstracted, kCarrying, 0x11, 0x1234>, Frame{3, 6}.write22(0x11, 0x1234)},
};

class UnloggedAccess : public FlatInterface, public testing::WithParamInterface<Plain> {
protected:
    UnloggedAccess() {
        for (const Frame& phy : {Frame{2, kPhy}, Frame{3, 6}}) {
            setRegister(phy.adapter, phy.phy, 28, 0x10, 0xC045);
            board.setRegister(OrvaneSim::Space::C22, phy.adapter, phy.phy, 0x11, 0x2211);
        }
    }
};

TEST_P(UnloggedAccess, IsOneCallToTheBoardAndNotLogged) {
    EXPECT_EQ(outcomeOf(GetParam().access), (Outcome{GetParam().result, "", "", ""}));
    EXPECT_EQ(frames(), std::vector<std::string>{GetParam().frame});
}

TEST_P(UnloggedAccess, OfAnAdapterThatIsNotOpenGivesZeroAndIsReported) {
    HW_CloseAdapter(2);
    HW_CloseAdapter(3);
    EXPECT_EQ(outcomeOf(GetParam().access), (Outcome{0, "", "\nError: Adapter isn't open.\n", ""}));
    EXPECT_STREQ(HW_Error(), "Adapter isn't open.");
    EXPECT_THAT(frames(), IsEmpty());
}

INSTANTIATE_TEST_SUITE_P(ZrApi, UnloggedAccess, testing::ValuesIn(kPlain), NamedParam());

// ---- What a PHY argument carries ----

using AdapterInAPhyArgument = FlatInterface;

TEST_F(AdapterInAPhyArgument, TakesTheArgumentsBits16To30) {
    for (unsigned bit = 3; bit < 15; ++bit) { // the adapters are 0 to 7
        const int argument = phyOn(1U << bit, 6);
        EXPECT_EQ(outcomeOf([=] { return ZR_API_MDIO_Read_Abstracted(argument, 28, 0x10); }).error,
                  "\nError: Invalid adapter index\n")
            << bit;
    }
    EXPECT_EQ(frames(), std::vector<std::string>{});
}

} // namespace
} // namespace OrvaneTest
