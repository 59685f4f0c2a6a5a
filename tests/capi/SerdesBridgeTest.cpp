// The bridge to the SerDes control registers: its sequences and its errors.
#include "tests/support/capi/Steps.h"
#include "tests/support/NamedParam.h"

#include <gtest/gtest.h>

namespace OrvaneTest {
namespace {

class SerdesBridge : public FlatInterface {
protected:
    const Frame phy{3, kPhy};

    static Outcome write() {
        return outcomeOf([] { synSdControlRegWrite(3, kPhy, 0xABCD, 0x1234); });
    }
    static Outcome read() {
        return outcomeOf([] { return synSdControlRegRead(3, kPhy, 0xABCD); });
    }
    static Steps writeSteps(unsigned status) {
        return {wrote(30, 0xA110, 1), wrote(30, 0xA104, 0xABCD), wrote(30, 0xA105, 0x1234),
                OrvaneTest::read(30, 0xA111, status)};
    }
    static Steps readSteps(unsigned status) {
        return {wrote(30, 0xA10B, 0), wrote(30, 0xA110, 1), wrote(30, 0xA108, 0xABCD),
                OrvaneTest::read(30, 0xA109, 0xC045), OrvaneTest::read(30, 0xA111, status)};
    }
};

TEST_F(SerdesBridge, ReadsBackWhatWasWrittenThroughIt) {
    write();
    EXPECT_EQ(read().result, 0x1234U);
}

TEST_F(SerdesBridge, ReachesWhatTheMailboxReaches) {
    writeRegisterViaPifMailbox(3, kPhy, 27, 0xABCD, 0x4321);
    EXPECT_EQ(read().result, 0x4321U);
}

struct BridgeStatus {
    std::string name;
    unsigned status;
    std::string code; // empty: no error
};

const BridgeStatus kStatuses[] = {
    {"Done", 0x1000, ""},
    {"NotDone", 0, ""},
    {"CodeWithoutItsBit", 0x000B, ""},
    {"OtherBits", 0xEFF0, ""},
    {"Code1", 0x1001, "1"},
    {"CodeB", 0x100B, "B"},
    {"CodeFAmongOtherBits", 0xFFFF, "F"},
};

class SerdesBridgeStatus : public SerdesBridge, public testing::WithParamInterface<BridgeStatus> {
protected:
    SerdesBridgeStatus() {
        OrvaneSim::PathTroubles troubles;
        troubles.bridgeStatus = GetParam().status;
        board.setPathTroubles(troubles);
        setRegister(3, kPhy, 27, 0xABCD, 0xC045);
    }
    static std::string message(const std::string& action) {
        const std::string& code = GetParam().code;
        return code.empty() ? ""
                            : "Error: SERDES control register bridge error (code 0x" + code + ") " + action +
                                  " address 0xABCD\n";
    }
};

TEST_P(SerdesBridgeStatus, DecidesWhetherAWriteIsReported) {
    EXPECT_EQ(write(), (Outcome{0, logOf(3, kPhy, writeSteps(GetParam().status)), message("writing"), ""}));
    EXPECT_EQ(frames(), framesOf(phy, writeSteps(GetParam().status)));
}

TEST_P(SerdesBridgeStatus, DecidesWhetherAReadGivesItsDataOrZero) {
    EXPECT_EQ(read(), (Outcome{GetParam().code.empty() ? 0xC045U : 0U,
                               logOf(3, kPhy, readSteps(GetParam().status)), message("reading"), ""}));
    EXPECT_EQ(frames(), framesOf(phy, readSteps(GetParam().status)));
}

INSTANTIATE_TEST_SUITE_P(Of, SerdesBridgeStatus, testing::ValuesIn(kStatuses), NamedParam());

} // namespace
} // namespace OrvaneTest
