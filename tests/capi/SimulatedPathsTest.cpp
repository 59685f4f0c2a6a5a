// The simulated registers behind the indirect paths, seen by plain accesses.
#include "tests/support/capi/FlatInterface.h"

#include <gtest/gtest.h>

namespace OrvaneTest {
namespace {

// PHY 5 on adapter 3, by unrouted accesses.
class SimulatedPaths : public FlatInterface {
protected:
    static void write(unsigned mmd, unsigned reg, unsigned value, unsigned phy = 5) {
        HW_Write_Abstracted(3, phy, mmd, reg, value);
    }
    static unsigned read(unsigned mmd, unsigned reg, unsigned phy = 5) {
        return HW_Read_Abstracted(3, phy, mmd, reg);
    }
};

TEST_F(SimulatedPaths, LeaveTheRegistersBesideThemPlain) {
    const std::pair<unsigned, unsigned> registers[] = {
        {30, 0xC47B}, {30, 0xC480}, {30, 0xA103}, {30, 0xA112}, {30, 0x1FF}, {30, 0x206},
        {29, 0xC202}, {29, 0xC205}, {4, 0xC17F},  {4, 0xC181},  {4, 0xC1FF}, {4, 0xC300},
        {1, 0xC47E},  {31, 0xA105}, {10, 0x10},   {11, 0x10},   {27, 0x10},  {28, 0x10},
    };
    unsigned value = 0x8001;
    for (const auto& [mmd, reg] : registers)
        write(mmd, reg, value++);
    value = 0x8001;
    for (const auto& [mmd, reg] : registers)
        EXPECT_EQ(read(mmd, reg), value++) << mmd << ' ' << std::hex << reg;
}

TEST_F(SimulatedPaths, MailboxStatusIsPlainWithoutACommand) {
    write(30, 0xC47F, 5);
    EXPECT_EQ(read(30, 0xC47F), 5U);
    EXPECT_EQ(read(30, 0xC47F), 5U);
}

TEST_F(SimulatedPaths, MailboxCommandThatIsUnknownIsAnError) {
    write(30, 0xC47E, 0x301);
    EXPECT_EQ(read(30, 0xC47F), 2U);
}

TEST_F(SimulatedPaths, MailboxesOfTwoPhysAreBusyOnTheirOwn) {
    OrvaneSim::PathTroubles troubles;
    troubles.mailboxBusyReads = 1;
    board.setPathTroubles(troubles);
    for (const unsigned phy : {5U, 6U})
        write(30, 0xC47E, 0x101, phy);
    EXPECT_EQ(read(30, 0xC47F, 5), 0U);
    EXPECT_EQ(read(30, 0xC47F, 5), 1U);
    EXPECT_EQ(read(30, 0xC47F, 6), 0U);
    EXPECT_EQ(read(30, 0xC47F, 6), 1U);
}

TEST_F(SimulatedPaths, AreInOrderAgainWhenTheTroublesAreOver) {
    OrvaneSim::PathTroubles troubles;
    troubles.mailboxStatus = 2;
    board.setPathTroubles(troubles);
    board.setPathTroubles({});
    write(30, 0xC47E, 0x101);
    EXPECT_EQ(read(30, 0xC47F), 1U);
}

TEST_F(SimulatedPaths, WindowFetchesAndStoresWholeWords) {
    HW_Write32_Abstracted(3, 5, 0x3FFE04A0, 0x11112222);
    write(30, 0x202, 0x3FFE);
    write(30, 0x203, 0x04A2);
    write(30, 0x200, 0x8000);
    EXPECT_EQ(read(30, 0x200), 0x8000U);
    EXPECT_EQ(read(30, 0x204), 0x1111U);
    EXPECT_EQ(read(30, 0x205), 0x2222U);
    write(30, 0x204, 0x3333);
    write(30, 0x200, 0xC000);
    EXPECT_EQ(HW_Read32_Abstracted(3, 5, 0x3FFE04A0), 0x33332222U);
}

TEST_F(SimulatedPaths, PagesKeepTheirRegistersApart) {
    write(4, 0xC180, 1);
    write(4, 0xC210, 0x1111);
    write(4, 0xC180, 2);
    write(4, 0xC210, 0x2222);
    EXPECT_EQ(read(4, 0xC210), 0x2222U);
    write(4, 0xC180, 1);
    EXPECT_EQ(read(4, 0xC210), 0x1111U);
    EXPECT_EQ(read(28, 0x210), 0x2222U);
}

TEST_F(SimulatedPaths, SerdesBridgeKeepsARegisterThroughAnError) {
    write(30, 0xA104, 0x10);
    write(30, 0xA105, 0x1111);
    OrvaneSim::PathTroubles troubles;
    troubles.bridgeStatus = 0x1003;
    board.setPathTroubles(troubles);
    write(30, 0xA105, 0x2222);
    EXPECT_EQ(read(27, 0x10), 0x1111U);
    EXPECT_EQ(read(30, 0xA111), 0x1003U);
    write(30, 0xA110, 1);
    EXPECT_EQ(read(30, 0xA111), 0U);
}

TEST_F(SimulatedPaths, AreReachedByQueuedAccessesToo) {
    HW_BlockWriteAdapter_Abstracted(3, 5, 30, 0xC47C, 0x10);
    HW_BlockWriteAdapter_Abstracted(3, 5, 30, 0xC47D, 0x1234);
    HW_BlockWriteAdapter_Abstracted(3, 5, 30, 0xC47E, 0x21B);
    HW_BlockReadAdapter_Abstracted(3, 5, 30, 0xC47F);
    const unsigned* values = HW_BlockOperationExecuteAdapter(3, 5);
    ASSERT_NE(values, nullptr);
    EXPECT_EQ(values[0], 1U);
    EXPECT_EQ(read(27, 0x10), 0x1234U);
}

} // namespace
} // namespace OrvaneTest
