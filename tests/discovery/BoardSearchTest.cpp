// The paced multicast search.
#include "ov_sys/Interface/discovery/BoardFinder.h"
#include "ov_sys/Interface/foundation/Exceptions.h"
#include "tests/support/discovery/BoardSide.h"
#include "tests/support/discovery/Found.h"
#include "tests/support/discovery/Group.h"
#include "tests/support/discovery/OwnNetwork.h"
#include "tests/support/FrequentSignals.h"
#include "tests/support/WrittenText.h"

#include <chrono>
#include <gtest/gtest.h>
#include <system_error>
#include <thread>

namespace Orvane {
namespace {

using namespace std::chrono_literals;
using OrvaneTest::BoardSide;
using OrvaneTest::Found;
using OrvaneTest::kPatientMs;
using Records = std::vector<AddressResponse>;
using Replies = std::vector<BoardSide::Reply>;

BoardSide::Answer always(const Replies& replies) {
    return [replies](int) { return replies; };
}

BoardSide::Answer never() {
    return [](int) { return Replies{}; };
}

TEST(Find, EndsWithTheFirstBoardWhenNoneIsEnough) {
    BoardSide boards(always({{"10.83.0.1", "evb|Board-7"}}));
    Found found;
    const int result = BoardFinder::find("evb", found.list, kPatientMs, 0);
    EXPECT_EQ(result, 0);
    EXPECT_EQ(found.records(), (Records{{"board-7", "10.83.0.1"}}));
}

TEST(Find, AsksWithTheTypeWordAsGiven) {
    BoardSide boards(always({{"10.83.0.1", "EVB:1|Board-7"}}));
    Found found;
    BoardFinder::find("Evb:1", found.list, kPatientMs, 0);
    EXPECT_EQ(boards.requests().at(0), "ZRDISCOVER?Evb:1");
    EXPECT_EQ(found.records(), (Records{{"board-7", "10.83.0.1"}}));
}

TEST(Find, AsksForEveryBoardWithTheEmptyWord) {
    BoardSide boards(always({{"10.83.0.1", "|Host 01A2:0"}}));
    Found found;
    BoardFinder::find("", found.list, kPatientMs, 0);
    EXPECT_EQ(boards.requests().at(0), "ZRDISCOVER?");
    EXPECT_EQ(found.records(), (Records{{"host 01a2:0", "10.83.0.1"}}));
}

TEST(Find, ReturnsAllBoardsOfTheRoundThatGoesBeyondTheCount) {
    BoardSide boards(always({{"10.83.0.1", "|a"}, {"10.83.0.2", "|b"}, {"10.83.0.3", "|c"}}));
    Found found;
    BoardFinder::find("", found.list, kPatientMs, 2);
    EXPECT_EQ(found.records(), (Records{{"a", "10.83.0.1"}, {"b", "10.83.0.2"}, {"c", "10.83.0.3"}}));
}

TEST(Find, CountsWhatTheListHeldBefore) {
    BoardSide boards(never());
    Found found = {{"earlier", "10.83.0.9"}};
    BoardFinder::find("", found.list, kPatientMs, 0);
    EXPECT_EQ(found.records(), (Records{{"earlier", "10.83.0.9"}}));
    EXPECT_EQ(boards.requests().size(), 1U);
}

TEST(Find, KeepsABoardThatAnswersEveryRequestOnce) {
    BoardSide boards(always({{"10.83.0.1", "|a"}}));
    Found found;
    BoardFinder::find("", found.list, 600, 5);
    EXPECT_GE(boards.requests().size(), 3U);
    EXPECT_EQ(found.records(), (Records{{"a", "10.83.0.1"}}));
}

TEST(Find, PassesOverRepliesOfOtherTypesAndWithoutName) {
    BoardSide boards(always({{"10.83.0.1", "other|a"}, {"10.83.0.2", "evb|"}, {"10.83.0.3", "evb|c"}}));
    Found found;
    BoardFinder::find("evb", found.list, kPatientMs, 0);
    EXPECT_EQ(found.records(), (Records{{"c", "10.83.0.3"}}));
}

TEST(Find, LeavesTheListAloneAndIsSilentWithoutAnyReply) {
    BoardSide boards(never());
    Found found;
    const OrvaneTest::WrittenText written =
        OrvaneTest::textWritten([&] { BoardFinder::find("evb", found.list, 0, 0); });
    EXPECT_EQ(written.output, "");
    EXPECT_EQ(written.error, "");
    EXPECT_EQ(found.records(), Records{});
}

// The requests that a search sends until it ends without having found anything.
struct Pace {
    std::size_t requests;
    unsigned timeoutMs;
    int sleptMs;
};

void PrintTo(const Pace& pace, std::ostream* stream) {
    *stream << pace.timeoutMs << " ms";
}

class FindPace : public testing::TestWithParam<Pace> {};

TEST_P(FindPace, DecidesHowOftenTheRequestIsSent) {
    BoardSide boards(never());
    Found found;
    const auto start = std::chrono::steady_clock::now();
    BoardFinder::find("", found.list, GetParam().timeoutMs, 0);
    EXPECT_GE(std::chrono::steady_clock::now() - start, std::chrono::milliseconds(GetParam().sleptMs));
    EXPECT_EQ(boards.requests(), std::vector<std::string>(GetParam().requests, "ZRDISCOVER?"));
}

const Pace kPaces[] = {
    {1, 0, 10 + 20},
    {1, 9, 10 + 20},
    {1, 10, 10 + 20 + 40},
    {1, 149, 10 + 20 + 40 + 80 + 160},
    // The first round of 250 ms is the sixth: it repeats the request, even as the last one.
    {2, 150, 10 + 20 + 40 + 80 + 160 + 250},
    {2, 309, 10 + 20 + 40 + 80 + 160 + 250},
    {3, 310, 10 + 20 + 40 + 80 + 160 + 250 + 250},
    {4, 560, 10 + 20 + 40 + 80 + 160 + 250 + 250 + 250},
};
INSTANTIATE_TEST_SUITE_P(Find, FindPace, testing::ValuesIn(kPaces));

TEST(Find, LastsAsLongWhileSignalsArrive) {
    BoardSide boards(never());
    Found found;
    const OrvaneTest::FrequentSignals signals;
    const auto start = std::chrono::steady_clock::now();
    BoardFinder::find("", found.list, 150, 0);
    EXPECT_GE(std::chrono::steady_clock::now() - start, 10ms + 20ms + 40ms + 80ms + 160ms + 250ms);
}

TEST(Find, Takes1024BoardsOfAFloodAndCountsTheOthers) {
    constexpr int answers = 1500;
    BoardSide boards([](int) {
        Replies flood;
        for (int i = 0; i < answers; ++i)
            flood.push_back({"10.83.0.1", "|flood" + std::to_string(i)});
        return flood;
    });
    Found found = {{"earlier", "10.83.0.9"}};
    const std::uint64_t before = BoardFinder::dropped().excess;
    BoardFinder::find("", found.list, 2000, 100'000);
    EXPECT_EQ(found.list.size(), 1U + 1024U);
    EXPECT_GT(BoardFinder::dropped().excess, before);
}

// The board answers the repeated request of the last round but one, so that count and time-out are reached in
// the same round; a machine that was held up for that round's 250 ms gets another chance.
TEST(Find, ThrowsTheJoinErrorWhenCountAndTimeoutEndItInTheSameRound) {
    std::error_code thrown;
    for (int attempt = 0; attempt < 20 && !thrown; ++attempt) {
        BoardSide boards([](int number) { return number == 2 ? Replies{{"10.83.0.1", "|a"}} : Replies{}; });
        Found found;
        try {
            BoardFinder::find("", found.list, 500, 0);
            EXPECT_EQ(found.records(), Records{});
        } catch (const std::system_error& problem) {
            thrown = problem.code();
            EXPECT_EQ(found.records(), (Records{{"a", "10.83.0.1"}}));
        }
    }
    EXPECT_EQ(thrown, std::make_error_code(std::errc::invalid_argument));
}

TEST(Find, ThrowsStandardInAHostWithoutIPv4Address) {
    OrvaneTest::inOwnNetwork([] {
        Found found;
        const std::string thrown =
            OrvaneTest::thrownText<Exceptions::Standard>([&] { BoardFinder::find("", found.list, 0, 0); });
        EXPECT_EQ(thrown, "Couldn't get list of local interfaces.");
    });
}

TEST(Find, RunsOnSeveralThreadsAtOnceEachWithItsOwnRequests) {
    constexpr int searches = 4;
    BoardSide boards(always({{"10.83.0.1", "|a"}}));
    std::vector<std::thread> threads;
    threads.reserve(searches);
    for (int i = 0; i < searches; ++i)
        threads.emplace_back([] {
            Found found;
            EXPECT_EQ(BoardFinder::find("", found.list, 200, 5), 0);
            EXPECT_LE(found.list.size(), 1U);
            for (const AddressResponse& each : found.records())
                EXPECT_EQ(each, AddressResponse("a", "10.83.0.1"));
        });
    for (std::thread& each : threads)
        each.join();
    EXPECT_EQ(boards.requests().size(), 2U * searches);
}

TEST(Find, ThatWasGivenUpEndsAfterItsFirstRound) {
    BoardSide boards(never());
    Found found;
    BoardFinder::find("evb", found.list, kPatientMs, 0, std::atomic<bool>(true));
    EXPECT_EQ(boards.requests().size(), 1U);
    EXPECT_TRUE(found.records().empty());
}

} // namespace
} // namespace Orvane
