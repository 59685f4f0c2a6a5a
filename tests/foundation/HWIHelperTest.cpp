// The string and sleep helpers and the parser of device names.
#include "ov_sys/Interface/foundation/HWIHelper.h"

#include "ov_sys/Interface/foundation/Exceptions.h"
#include "tests/support/FrequentSignals.h"

#include <chrono>
#include <gtest/gtest.h>

namespace Orvane::HWIHelper {
namespace {

using Pieces = std::vector<std::string>;

TEST(StrToUpper, ConvertsEveryLetterAndNothingElse) {
    std::string text = "board-7:1 äz[`{";
    str_to_upper(text);
    EXPECT_EQ(text, "BOARD-7:1 äZ[`{");
}

TEST(StrToLower, ConvertsEveryLetterAndNothingElse) {
    std::string text = "BOARD-7:1 ÄZ[@{";
    str_to_lower(text);
    EXPECT_EQ(text, "board-7:1 Äz[@{");
}

TEST(StrToUpper, LeavesBytesAbove127AndNulsInPlace) {
    std::string text("\xff\x80\0b", 4);
    str_to_upper(text);
    EXPECT_EQ(text, std::string("\xff\x80\0B", 4));
}

TEST(StartWith, MatchesAPrefixAndTheWholeText) {
    EXPECT_TRUE(start_with("board7", "board"));
    EXPECT_TRUE(start_with("board", "board"));
}

TEST(StartWith, MatchesTheEmptyPrefixAlways) {
    EXPECT_TRUE(start_with("board", ""));
    EXPECT_TRUE(start_with("", ""));
}

TEST(StartWith, RefusesOtherCaseOtherPlaceAndLongerPrefixes) {
    EXPECT_FALSE(start_with("board", "Board"));
    EXPECT_FALSE(start_with("a board", "board"));
    EXPECT_FALSE(start_with("boar", "board"));
    EXPECT_FALSE(start_with("", "b"));
}

TEST(Split, SkipsEmptyPieces) {
    EXPECT_EQ(split("a,,b", ","), (Pieces{"a", "b"}));
}

TEST(Split, SkipsDelimitersAtBothEnds) {
    EXPECT_EQ(split(",a,b,", ","), (Pieces{"a", "b"}));
}

TEST(Split, GivesNothingForAnEmptyText) {
    EXPECT_EQ(split("", ","), Pieces{});
}

TEST(Split, GivesNothingForDelimitersOnly) {
    EXPECT_EQ(split(",,,", ","), Pieces{});
}

TEST(Split, GivesTheWholeTextWithoutADelimiterInIt) {
    EXPECT_EQ(split("abc", ","), Pieces{"abc"});
}

TEST(Split, GivesNothingAtAnEmptyDelimiter) {
    EXPECT_EQ(split("ab", ""), Pieces{});
}

TEST(Split, LeavesTheRestOfALongDelimiterToTheNextPiece) {
    EXPECT_EQ(split("a::b", "::"), (Pieces{"a", ":b"}));
}

TEST(Split, FindsALongDelimiterAgainOneCharacterOn) {
    EXPECT_EQ(split("a:::b", "::"), (Pieces{"a", ":b"}));
    EXPECT_EQ(split("a--b--", "--"), (Pieces{"a", "-b", "-"}));
}

struct Named {
    std::string name;
    std::string board;
    int port;
};

void PrintTo(const Named& named, std::ostream* stream) {
    *stream << testing::PrintToString(named.name);
}

class AcceptedDeviceName : public testing::TestWithParam<Named> {};

TEST_P(AcceptedDeviceName, GivesUpperCasedBoardAndPort) {
    std::string board = "before";
    int port = -99;
    splitBoardSNPort(GetParam().name, board, port);
    EXPECT_EQ(board, GetParam().board);
    EXPECT_EQ(port, GetParam().port);
}

const Named kAccepted[] = {
    {"board7:1", "BOARD7", 1},
    {":5", "", 5},
    {"board7:12 junk", "BOARD7", 12},
    {"b: 5", "B", 5},
    // The port text is as long as the first white space is far from the name's start: two characters here.
    {"b: 57", "B", 5},
    {"board7:\t\r\n5", "BOARD7", 5},
    {"b:7X", "B", 7},
    {"b:-3", "B", -3},
    {"b:+3", "B", 3},
    {"b:0", "B", 0},
    {"b:0x10", "B", 0},
    {"b:010", "B", 10},
    {"b:2147483647", "B", 2147483647},
    {"b:-2147483648", "B", -2147483647 - 1},
    {"my board:3", "MY BOARD", 3},
};
INSTANTIATE_TEST_SUITE_P(SplitBoardSNPort, AcceptedDeviceName, testing::ValuesIn(kAccepted));

struct Refused {
    std::string name;
    std::string text;
    std::string line;
};

void PrintTo(const Refused& refused, std::ostream* stream) {
    *stream << testing::PrintToString(refused.name);
}

class RefusedDeviceName : public testing::TestWithParam<Refused> {};

TEST_P(RefusedDeviceName, ThrowsTheUpperCasedNameAndKeepsThePort) {
    std::string board;
    int port = -99;
    testing::internal::CaptureStderr();
    std::string thrown = "nothing thrown";
    try {
        splitBoardSNPort(GetParam().name, board, port);
    } catch (const Exceptions::InvalidName& refusal) {
        thrown = refusal.what();
    }
    EXPECT_EQ(testing::internal::GetCapturedStderr(), GetParam().line);
    EXPECT_EQ(thrown, GetParam().text);
    EXPECT_EQ(port, -99);
}

const Refused kRefused[] = {
    {"board7", "BOARD7", ""},
    {"", "", ""},
    {"a:b:c", "A:B:C", ""},
    {"a::", "A::", ""},
    {"board7:", "BOARD7:", ""},
    {"board7:x1", "BOARD7:X1", "Invalid port\n"},
    {"b: ", "B: ", "Invalid port\n"},
    {"b:-", "B:-", "Invalid port\n"},
    {"b:\t \n", "B:\t \n", "Invalid port\n"},
    {"b:2147483648", "B:2147483648", "Invalid port\n"},
    {"b:-2147483649", "B:-2147483649", "Invalid port\n"},
    {"x:99999999999", "X:99999999999", "Invalid port\n"},
    // One and two characters of port text.
    {": 5", ": 5", "Invalid port\n"},
    {"b: \t 42", "B: \t 42", "Invalid port\n"},
};
INSTANTIATE_TEST_SUITE_P(SplitBoardSNPort, RefusedDeviceName, testing::ValuesIn(kRefused));

TEST(IsDeviceName, SaysInSilenceWhatSplitBoardSNPortAccepts) {
    testing::internal::CaptureStderr();
    for (const Named& each : kAccepted)
        EXPECT_TRUE(isDeviceName(each.name)) << testing::PrintToString(each.name);
    for (const Refused& each : kRefused)
        EXPECT_FALSE(isDeviceName(each.name)) << testing::PrintToString(each.name);
    EXPECT_EQ(testing::internal::GetCapturedStderr(), "");
}

TEST(SplitBoardSNPort, SetsTheBoardBeforeItRefusesThePort) {
    std::string board;
    int port = 0;
    testing::internal::CaptureStderr();
    EXPECT_THROW(splitBoardSNPort("b7:x", board, port), Exceptions::InvalidName);
    testing::internal::GetCapturedStderr();
    EXPECT_EQ(board, "B7");
}

TEST(SplitBoardSNPort, LetsThePortTextRunOnPastTheWhiteSpace) {
    std::string board;
    int port = 0;
    splitBoardSNPort("board:\v \f77", board, port);
    EXPECT_EQ(port, 77);
}

TEST(MSleep, LastsAtLeastTheMilliseconds) {
    const auto start = std::chrono::steady_clock::now();
    mSleep(20);
    EXPECT_GE(std::chrono::steady_clock::now() - start, std::chrono::milliseconds(20));
}

TEST(MSleep, LastsAsLongWhileSignalsArrive) {
    const OrvaneTest::FrequentSignals signals;
    const auto start = std::chrono::steady_clock::now();
    mSleep(100);
    EXPECT_GE(std::chrono::steady_clock::now() - start, std::chrono::milliseconds(100));
}

TEST(MSleep, ReturnsAtOnceForZero) {
    const auto start = std::chrono::steady_clock::now();
    mSleep(0);
    EXPECT_LT(std::chrono::steady_clock::now() - start, std::chrono::seconds(30));
}

} // namespace
} // namespace Orvane::HWIHelper
