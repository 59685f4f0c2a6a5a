// The window of MMD 10.
#include "tests/support/capi/Steps.h"
#include "tests/support/NamedParam.h"

#include <gtest/gtest.h>

namespace OrvaneTest {
namespace {

struct Target {
    std::string name;
    unsigned address;
    unsigned high; // halves of 3FFE0480 + 2 x address
    unsigned low;
    unsigned data; // register of the value
};

const Target kTargets[] = {
    {"EvenAddress", 0x0010, 0x3FFE, 0x04A0, 0x205},
    {"OddAddress", 0x0011, 0x3FFE, 0x04A2, 0x204},
    {"Zero", 0, 0x3FFE, 0x0480, 0x205},
    {"LastBelowTheCarry", 0x7DBF, 0x3FFE, 0xFFFE, 0x204},
    {"FirstAboveTheCarry", 0x7DC0, 0x3FFF, 0x0000, 0x205},
    {"LastRegister", 0xFFFF, 0x4000, 0x047E, 0x204},
    {"AddressThatWraps", 0xFFFFFFFF, 0x3FFE, 0x047E, 0x204},
};

Steps opening(const Target& target, unsigned reads = 1, unsigned lastStatus = 0x8000) {
    Steps steps{wrote(30, 0x202, target.high), wrote(30, 0x203, target.low), wrote(30, 0x200, 0x8000)};
    for (unsigned i = 1; i < reads; ++i)
        steps.push_back(read(30, 0x200, 0x8100));
    steps.push_back(read(30, 0x200, lastStatus));
    return steps;
}

Steps writing(const Target& target, unsigned reads = 1) {
    return opening(target, reads) + Steps{wrote(30, 0x202, target.high), wrote(30, 0x203, target.low),
                                          wrote(30, target.data, 0x1234), wrote(30, 0x200, 0xC000)};
}

class WindowTarget : public FlatInterface, public testing::WithParamInterface<Target> {};

TEST_P(WindowTarget, IsWrittenThroughItsDataRegister) {
    const Target& target = GetParam();
    EXPECT_EQ(outcomeOf([&] { ZR_API_MDIO_Write(kPhy, 10, target.address, 0x1234); }),
              (Outcome{0, logOf(kDefaultAdapter, kPhy, writing(target)), "", ""}));
    EXPECT_EQ(frames(), framesOf({kDefaultAdapter, kPhy}, writing(target)));
}

TEST_P(WindowTarget, IsReadThroughItsDataRegister) {
    const Target& target = GetParam();
    ZR_API_MDIO_Write(kPhy, 10, target.address, 0x1234);
    const Steps steps = opening(target) + Steps{read(30, target.data, 0x1234)};
    EXPECT_EQ(outcomeOf([&] { return ZR_API_MDIO_Read(kPhy, 10, target.address); }),
              (Outcome{0x1234, logOf(kDefaultAdapter, kPhy, steps), "", ""}));
}

INSTANTIATE_TEST_SUITE_P(Of, WindowTarget, testing::ValuesIn(kTargets), NamedParam());

class Window : public FlatInterface {
protected:
    const Target target = kTargets[0];

    void busyFor(std::uint32_t reads) {
        OrvaneSim::PathTroubles troubles;
        troubles.windowBusyReads = reads;
        board.setPathTroubles(troubles);
    }
    std::vector<std::string> expected(const Steps& steps) const {
        return framesOf({kDefaultAdapter, kPhy}, steps);
    }
};

TEST_F(Window, KeepsBothRegistersOfAWord) {
    ZR_API_MDIO_Write(kPhy, 10, 0x10, 0x1111);
    ZR_API_MDIO_Write(kPhy, 10, 0x11, 0x2222);
    EXPECT_EQ(ZR_API_MDIO_Read(kPhy, 10, 0x10), 0x1111U);
    EXPECT_EQ(ZR_API_MDIO_Read(kPhy, 10, 0x11), 0x2222U);
}

TEST_F(Window, ThatClearsAtTheLastReadIsWritten) {
    busyFor(40);
    const Outcome outcome = outcomeOf([] { ZR_API_MDIO_Write(kPhy, 10, 0x10, 0x1234); });
    EXPECT_EQ(outcome, (Outcome{0, logOf(kDefaultAdapter, kPhy, writing(target, 41)), "", ""}));
    EXPECT_EQ(frames(), expected(writing(target, 41)));
}

TEST_F(Window, ThatClearsAtTheLastReadIsRead) {
    busyFor(40);
    board.setRegister(OrvaneSim::Space::Ext32, kDefaultAdapter, kPhy, 0x3FFE04A0, 0xC045);
    EXPECT_EQ(ZR_API_MDIO_Read(kPhy, 10, 0x10), 0xC045U);
    EXPECT_EQ(frames(), expected(opening(target, 41) + Steps{read(30, 0x205, 0)}));
}

TEST_F(Window, ThatStaysBusyForOneMoreReadIsNotWritten) {
    busyFor(41);
    const Steps steps = opening(target, 41, 0x8100);
    EXPECT_EQ(outcomeOf([] { ZR_API_MDIO_Write(kPhy, 10, 0x10, 0x1234); }),
              (Outcome{0, logOf(kDefaultAdapter, kPhy, steps), "", ""}));
    EXPECT_EQ(frames(), expected(steps));
}

TEST_F(Window, ThatIsStuckReadsZeroSilently) {
    busyFor(OrvaneSim::PathTroubles::kForever);
    setRegister(kDefaultAdapter, kPhy, 30, 0x205, 0xDA7A);
    const Steps steps = opening(target, 41, 0x8100);
    EXPECT_EQ(outcomeOf([] { return ZR_API_MDIO_Read(kPhy, 10, 0x10); }),
              (Outcome{0, logOf(kDefaultAdapter, kPhy, steps), "", ""}));
    EXPECT_EQ(frames(), expected(steps));
}

} // namespace
} // namespace OrvaneTest
