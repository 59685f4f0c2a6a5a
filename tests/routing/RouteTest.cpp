// The choice of a path, and that the path chosen is the one taken.
#include "ov_sys/routing/Route.h"

#include "tests/support/NamedParam.h"
#include "tests/support/routing/ScriptedPhy.h"

#include <gtest/gtest.h>

namespace OrvaneTest {
namespace {

using namespace Orvane::Routing;

constexpr Delegations kNone{false, false, false, false, false};

TEST(RouteChoice, LeavesEverythingThatItCanToTheFirmware) {
    EXPECT_EQ(routeOfRead({}, 31, 0x8037), Route::Mailbox);
    for (const unsigned mmd : {kTgeMmd, kSerdesMmd, kPagedMmd}) {
        EXPECT_EQ(routeOfRead({}, mmd, 0), Route::Mailbox);
        EXPECT_EQ(routeOfWrite({}, mmd), Route::Mailbox);
    }
}

TEST(RouteChoice, TakesTheIndirectPathsWithoutTheFirmware) {
    EXPECT_EQ(routeOfRead(kNone, 31, 0x8037), Route::Plain);
    EXPECT_EQ(routeOfRead(kNone, kTgeMmd, 0), Route::Tge);
    EXPECT_EQ(routeOfWrite(kNone, kSerdesMmd), Route::Serdes);
    EXPECT_EQ(routeOfWrite(kNone, kPagedMmd), Route::Paged);
    EXPECT_EQ(routeOfRead(kNone, kPagedMmd, 0), Route::Paged);
}

TEST(RouteChoice, KnowsTheWindowWhateverIsDelegated) {
    EXPECT_EQ(routeOfRead({}, kWindowMmd, 0), Route::Window);
    EXPECT_EQ(routeOfWrite(kNone, kWindowMmd), Route::Window);
}

TEST(RouteChoice, IsPlainForEverythingElse) {
    EXPECT_EQ(routeOfRead({}, 31, 0x8036), Route::Plain);
    EXPECT_EQ(routeOfWrite({}, 31), Route::Plain);
    EXPECT_EQ(routeOfWrite({}, 1), Route::Plain);
}

TEST(RouteChoice, KnowsReadsAndWritesOfPagesApart) {
    Delegations delegations;
    delegations.writePaged = false;
    EXPECT_EQ(routeOfWrite(delegations, kPagedMmd), Route::Paged);
    EXPECT_EQ(routeOfRead(delegations, kPagedMmd, 0), Route::Mailbox);
}

struct FirstStep {
    std::string name;
    Route route;
    std::string writing;
    std::string reading;
};

class RouteTaken : public testing::TestWithParam<FirstStep> {};

INSTANTIATE_TEST_SUITE_P(
    Is, RouteTaken,
    testing::Values(FirstStep{"Plain", Route::Plain, "W 01.0002 0003", "R 01.0002 0000"},
                    FirstStep{"OverClause22", Route::OverClause22, "w 0D 0001", "w 0D 0001"},
                    FirstStep{"ByMailbox", Route::Mailbox, "W 1E.C47F 0000", "W 1E.C47F 0000"},
                    FirstStep{"OfTge", Route::Tge, "W 1D.C204 0003", "W 1D.C203 C002"},
                    FirstStep{"ByWindow", Route::Window, "W 1E.0202 3FFE", "W 1E.0202 3FFE"},
                    FirstStep{"OfSerdes", Route::Serdes, "W 1E.A110 0001", "W 1E.A10B 0000"},
                    FirstStep{"OfPages", Route::Paged, "R 04.C180 0000", "R 04.C180 0000"}),
    NamedParam{});

TEST_P(RouteTaken, BeginsWithItsOwnStep) {
    ScriptedPhy writing;
    write(writing, GetParam().route, 1, 2, 3);
    EXPECT_EQ(writing.steps.front(), GetParam().writing);
    ScriptedPhy reading;
    read(reading, GetParam().route, 1, 2);
    EXPECT_EQ(reading.steps.front(), GetParam().reading);
}

} // namespace
} // namespace OrvaneTest
