// The mailbox of the PHY's firmware: its sequences, its limits and its messages.
#include "tests/support/capi/Steps.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace OrvaneTest {
namespace {

constexpr unsigned kStaleData = 0xDA7A;

constexpr const char* kLimit = "Warning: PIF Mailbox commandStatus polling limit exceeded, retrying.\n";
constexpr const char* kReported = "Warning: PIF Mailbox reported an error, retrying.\n";
constexpr const char* kGivenUp = "Error: PIF Mailbox retry limit exceeded, so giving up.\n";

// Adapter 3, with something in the mailbox's data register.
class Mailbox : public FlatInterface {
protected:
    Mailbox() { setRegister(3, kPhy, 30, 0xC47D, kStaleData); }

    void troubled(std::uint32_t busyReads, std::uint32_t status) {
        OrvaneSim::PathTroubles troubles;
        troubles.mailboxBusyReads = busyReads;
        troubles.mailboxStatus = status;
        board.setPathTroubles(troubles);
    }
    static Outcome read() {
        return outcomeOf([] { return readRegisterViaPifMailbox(3, kPhy, 31, 0x8037); });
    }
    static Outcome write() {
        return outcomeOf([] { writeRegisterViaPifMailbox(3, kPhy, 31, 0x8037, 0x1234); });
    }
    // Calls to the board while the status was read so often.
    static std::vector<std::string> readFrames(unsigned statusReads) {
        const Frame phy{3, kPhy};
        std::vector<std::string> frames{phy.write(30, 0xC47F, 0), phy.write(30, 0xC47C, 0x8037),
                                        phy.write(30, 0xC47E, 0x11F)};
        frames.insert(frames.end(), statusReads, phy.read(30, 0xC47F));
        frames.push_back(phy.read(30, 0xC47D));
        return frames;
    }
    static std::vector<std::string> writeFrames(unsigned statusReads) {
        const Frame phy{3, kPhy};
        std::vector<std::string> frames{phy.write(30, 0xC47F, 0), phy.write(30, 0xC47C, 0x8037),
                                        phy.write(30, 0xC47D, 0x1234), phy.write(30, 0xC47E, 0x21F)};
        frames.insert(frames.end(), statusReads, phy.read(30, 0xC47F));
        return frames;
    }
};

TEST_F(Mailbox, WritesInFiveLoggedSteps) {
    EXPECT_EQ(write(), (Outcome{0,
                                "3,5,MW,1E,C47F,0000\n3,5,MW,1E,C47C,8037\n3,5,MW,1E,C47D,1234\n"
                                "3,5,MW,1E,C47E,021F\n3,5,MR,1E,C47F,0001\n",
                                "", ""}));
    EXPECT_EQ(frames(), writeFrames(1));
}

TEST_F(Mailbox, ReadsInFiveLoggedSteps) {
    setRegister(3, kPhy, 31, 0x8037, 0xC045);
    EXPECT_EQ(read(), (Outcome{0xC045,
                               "3,5,MW,1E,C47F,0000\n3,5,MW,1E,C47C,8037\n3,5,MW,1E,C47E,011F\n"
                               "3,5,MR,1E,C47F,0001\n3,5,MR,1E,C47D,C045\n",
                               "", ""}));
    EXPECT_EQ(frames(), readFrames(1));
}

TEST_F(Mailbox, ReadsBackWhatWasWrittenThroughIt) {
    write();
    EXPECT_EQ(read().result, 0x1234U);
    EXPECT_EQ(registerOf(3, kPhy, 31, 0x8037), 0x1234U);
}

TEST_F(Mailbox, TakesTheLowByteOfTheMmd) {
    readRegisterViaPifMailbox(3, kPhy, 0xABCDEF1F, 0x8037);
    EXPECT_EQ(frames(), readFrames(1));
}

TEST_F(Mailbox, IsAskedAgainWhileItIsBusy) {
    troubled(3, 1);
    write();
    EXPECT_EQ(frames(), writeFrames(4));
    EXPECT_EQ(registerOf(3, kPhy, 31, 0x8037), 0x1234U);
}

TEST_F(Mailbox, ThatEndsBeforeTheLastReadIsInTime) {
    troubled(4999, 1);
    EXPECT_EQ(write().error, "");
    EXPECT_EQ(frames(), writeFrames(5000));
}

TEST_F(Mailbox, ThatEndsWithTheLastReadIsWarnedOfAndDone) {
    troubled(5000, 1);
    setRegister(3, kPhy, 31, 0x8037, 0xC045);
    const Outcome outcome = read();
    EXPECT_EQ(outcome.error, kLimit);
    EXPECT_EQ(outcome.result, 0xC045U);
    EXPECT_EQ(frames(), readFrames(5001));
}

TEST_F(Mailbox, ThatNeverEndsIsGivenUpAndReadsTheDataRegister) {
    troubled(OrvaneSim::PathTroubles::kForever, 1);
    const Outcome outcome = read();
    EXPECT_EQ(outcome.error, std::string(kLimit) + kGivenUp);
    EXPECT_EQ(outcome.result, kStaleData);
    EXPECT_EQ(frames(), readFrames(5001));
}

TEST_F(Mailbox, ThatNeverEndsAWriteIsGivenUp) {
    troubled(OrvaneSim::PathTroubles::kForever, 1);
    EXPECT_EQ(write().error, std::string(kLimit) + kGivenUp);
    EXPECT_EQ(frames(), writeFrames(5001));
    EXPECT_EQ(registerOf(3, kPhy, 31, 0x8037), 0U);
}

TEST_F(Mailbox, WithAnErrorOnReadingIsReportedOnceAndReadsTheDataRegister) {
    troubled(0, 2);
    const Outcome outcome = read();
    EXPECT_EQ(outcome.error, std::string(kReported) + kGivenUp);
    EXPECT_EQ(outcome.result, kStaleData);
    EXPECT_EQ(frames(), readFrames(1));
}

TEST_F(Mailbox, WithAnErrorOnWritingIsReportedOnce) {
    troubled(0, 2);
    EXPECT_EQ(write().error, std::string(kReported) + kGivenUp);
    EXPECT_EQ(frames(), writeFrames(1));
}

TEST_F(Mailbox, WithAnErrorAtTheLastReadIsReportedInFull) {
    troubled(5000, 2);
    EXPECT_EQ(write().error, std::string(kLimit) + kReported + kGivenUp);
}

TEST_F(Mailbox, WithAnUnknownStatusIsGivenUp) {
    troubled(0, 5);
    EXPECT_EQ(write().error, kGivenUp);
    EXPECT_EQ(read().error, kGivenUp);
}

TEST_F(Mailbox, OnAnAdapterThatIsNotOpenReportsEveryAccessAndIsGivenUp) {
    HW_CloseAdapter(3);
    const Outcome outcome = write();
    std::string expected;
    for (int access = 0; access < 4 + 5001; ++access)
        expected += "\nError: Adapter isn't open.\n";
    EXPECT_EQ(outcome.error, expected + kLimit + kGivenUp);
    EXPECT_THAT(outcome.log, testing::StartsWith("3,5,MW,1E,C47F,0000\n3,5,MW,1E,C47C,8037\n"
                                                 "3,5,MW,1E,C47D,1234\n3,5,MW,1E,C47E,021F\n"
                                                 "3,5,MR,1E,C47F,0000\n"));
    EXPECT_THAT(frames(), testing::IsEmpty());
}

} // namespace
} // namespace OrvaneTest
