// The firmware's mailbox: its steps, its wait, and what an access may do about trouble.
#include "ov_sys/routing/Mailbox.h"

#include "tests/support/routing/ScriptedPhy.h"

#include <algorithm>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace OrvaneTest {
namespace {

using namespace Orvane::Routing;
using testing::ElementsAre;

long countOf(const std::vector<std::string>& steps, const std::string& step) {
    return std::count(steps.begin(), steps.end(), step);
}

TEST(Mailbox, WritesAndLooksForTheEnd) {
    ScriptedPhy phy({0, 1});
    EXPECT_TRUE(writeByMailbox(phy, 0xAB9F, 0x8037, 0x1234));
    EXPECT_THAT(phy.steps, ElementsAre("W 1E.C47F 0000", "W 1E.C47C 8037", "W 1E.C47D 1234", "W 1E.C47E 029F",
                                       "R 1E.C47F 0000", "R 1E.C47F 0001"));
}

TEST(Mailbox, NamesAnEvenMmdBesideTheCommandToWrite) {
    ScriptedPhy phy({1});
    EXPECT_TRUE(writeByMailbox(phy, 30, 0x8037, 0x1234));
    EXPECT_EQ(phy.steps.at(3), "W 1E.C47E 021E");
}

TEST(Mailbox, ReadsTheDataBehindTheEnd) {
    ScriptedPhy phy({1, 0xBEEF});
    EXPECT_EQ(readByMailbox(phy, 30, 0x8037), Value(0xBEEF));
    EXPECT_THAT(phy.steps, ElementsAre("W 1E.C47F 0000", "W 1E.C47C 8037", "W 1E.C47E 011E", "R 1E.C47F 0001",
                                       "R 1E.C47D BEEF"));
}

TEST(Mailbox, EndsAtTheFirstAccessThatFails) {
    expectToEndAtEachFailure({0, 1, 0xBEEF},
                             [](ScriptedPhy& phy) { return readByMailbox(phy, 31, 0x8037).has_value(); });
    expectToEndAtEachFailure({0, 1}, [](ScriptedPhy& phy) { return writeByMailbox(phy, 31, 0x8037, 1); });
}

TEST(Mailbox, ThatStaysBusyIsReadFiveThousandAndOneTimes) {
    ScriptedPhy phy;
    EXPECT_EQ(readByMailbox(phy, 31, 0x8037), Value(0));
    EXPECT_EQ(countOf(phy.steps, "R 1E.C47F 0000"), 5001);
    EXPECT_EQ(countOf(phy.steps, "trouble 0 0 C47F"), 1);
    EXPECT_EQ(countOf(phy.steps, "trouble 2 0 8037"), 1);
}

TEST(Mailbox, ThatIsDoneAtTheLastReadTellsTheLimitAllTheSame) {
    std::deque<unsigned> answers(5000, 0);
    answers.push_back(1);
    ScriptedPhy phy(answers);
    EXPECT_TRUE(writeByMailbox(phy, 31, 0x8037, 1));
    EXPECT_EQ(phy.steps.back(), "trouble 0 1 C47F");
}

TEST(Mailbox, WaitsNoLongerThanTheAccessDoes) {
    ScriptedPhy phy;
    phy.waitsAtMost(3);
    phy.endsAtTrouble();
    EXPECT_EQ(readByMailbox(phy, 31, 0x8037), std::nullopt);
    EXPECT_EQ(countOf(phy.steps, "R 1E.C47F 0000"), 4);
    EXPECT_EQ(phy.steps.back(), "trouble 0 0 C47F");
}

TEST(Mailbox, WhoseFirmwareReportsAnErrorGivesTheDataWhenTheAccessGoesOn) {
    ScriptedPhy phy({2, 0xDA7A});
    EXPECT_EQ(readByMailbox(phy, 31, 0x8037), Value(0xDA7A));
    EXPECT_THAT(phy.steps, ElementsAre("W 1E.C47F 0000", "W 1E.C47C 8037", "W 1E.C47E 011F", "R 1E.C47F 0002",
                                       "trouble 1 2 8037", "trouble 2 2 8037", "R 1E.C47D DA7A"));
}

TEST(Mailbox, WhoseFirmwareReportsAnErrorGivesNothingWhenTheAccessDoesNotGoOn) {
    ScriptedPhy phy({2, 0xDA7A});
    phy.endsAtTrouble();
    EXPECT_EQ(readByMailbox(phy, 31, 0x8037), std::nullopt);
    EXPECT_EQ(phy.steps.back(), "trouble 1 2 8037");
}

TEST(Mailbox, WithAnUnknownStatusIsGivenUp) {
    ScriptedPhy phy({7});
    phy.endsAtTrouble();
    EXPECT_FALSE(writeByMailbox(phy, 31, 0x8037, 1));
    EXPECT_EQ(phy.steps.back(), "trouble 2 7 8037");
}

} // namespace
} // namespace OrvaneTest
