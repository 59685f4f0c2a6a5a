// The C structs as C++ values, and what a batch came to as C structs.
#include "ov_sys/rack/c/Values.h"

#include "tests/support/rack/CRackOnBoard.h"

#include <cmath>

namespace OrvaneTest {
namespace {

using namespace Orvane;
using namespace Orvane::RackC;

// What C takes for true and what for false.
constexpr std::pair<int, bool> kTruths[] = {{0, false}, {1, true}, {-1, true}, {2, true}};

TEST(CValues, LimitsArriveOneByOne) {
    orvane_limits limits = orvane_within(0.25);
    limits.read_repeats = 3;
    limits.write_repeats = 5;
    const Within within = withinOf(&limits);
    EXPECT_EQ(within.time, 250ms);
    EXPECT_EQ(within.repeat.reads, 3U);
    EXPECT_EQ(within.repeat.writes, 5U);
    EXPECT_EQ(within.cancellation, nullptr);
    for (const auto& [heals, wanted] : kTruths) {
        limits.heals = heals;
        EXPECT_EQ(withinOf(&limits).heal, wanted) << heals;
    }
}

TEST(CValues, TimeThatIsNoneIsNoTimeAndTheLongestIsThirtyYears) {
    const std::pair<double, std::chrono::seconds> times[] = {
        {std::nan(""), 0s}, {-1, 0s}, {1e9, 1'000'000'000s}, {INFINITY, 1'000'000'000s}};
    for (const auto& [seconds, time] : times) {
        const orvane_limits limits = orvane_within(seconds);
        EXPECT_EQ(withinOf(&limits).time, time) << seconds;
    }
}

TEST(CValues, EachMemberOfThePathsIsItsOwn) {
    const std::pair<int orvane_paths::*, bool Routing::Delegations::*> members[] = {
        {&orvane_paths::read_classes, &Routing::Delegations::readClasses},
        {&orvane_paths::write_paged, &Routing::Delegations::writePaged},
        {&orvane_paths::read_paged, &Routing::Delegations::readPaged},
        {&orvane_paths::tge, &Routing::Delegations::tge},
        {&orvane_paths::serdes, &Routing::Delegations::serdes}};
    for (const auto& [said, meant] : members)
        for (const auto& [value, wanted] : kTruths) {
            orvane_paths paths{};
            paths.*said = value;
            const RegisterPaths made = pathsOf(&paths);
            for (const auto& [other, one] : members)
                EXPECT_EQ(made.byFirmware.*one, other == said && wanted) << value;
            EXPECT_FALSE(made.overClause22);
        }
    for (const auto& [value, wanted] : kTruths) {
        orvane_paths paths{};
        paths.over_clause22 = value;
        EXPECT_EQ(pathsOf(&paths).overClause22, wanted) << value;
    }
}

TEST(CValues, SpacesAndModesThatDoNotExistAreRefused) {
    EXPECT_EQ(addressOf({ORVANE_EXT32, 7, 0x80004000}), ext32(0x80004000)); // the extension has no MMDs
    EXPECT_EQ(addressOf({ORVANE_CLAUSE22, 7, 2}), clause22(2));
    EXPECT_THROW(addressOf({ORVANE_EXT32 + 1, 0, 0}), Failure);
    EXPECT_EQ(accessOf({ORVANE_SIMPLE, 0, 0}).mode, Access::Mode::Simple);
    EXPECT_THROW(accessOf({ORVANE_SIMPLE + 1, 0, 0}), Failure);
}

TEST(CValues, AccessQueuesWhenItSaysSo) {
    for (const auto& [queues, wanted] : kTruths) {
        const Access access = accessOf({ORVANE_SHARED, 0x1234, queues});
        EXPECT_EQ(access.mode, Access::Mode::Shared);
        EXPECT_EQ(access.key, 0x1234U);
        EXPECT_EQ(access.queues, wanted) << queues;
    }
}

TEST(CValues, OperationWritesWhenItSaysSo) {
    for (const auto& [writes, wanted] : kTruths) {
        const orvane_operation operation{{ORVANE_CLAUSE45, 30, 1}, writes, 5, 0, 0};
        EXPECT_EQ(batchOf(&operation, 1).operations().at(0).writes, wanted) << writes;
    }
}

TEST(CValues, OperationHasAValueOnlyWhenItIsDone) {
    const BatchResult result(
        {{OperationOutcome::State::Done, 7, 0}, {OperationOutcome::State::Refused, 8, -5}}, Failure({}));
    orvane_operation operations[2] = {{{0, 0, 0}, 0, 1, 9, 9}, {{0, 0, 0}, 0, 2, 9, 9}};
    EXPECT_THROW(store(result, operations), Failure);
    EXPECT_EQ(operations[0].value, 7U);
    EXPECT_EQ(operations[0].state, ORVANE_OPERATION_DONE);
    EXPECT_EQ(operations[0].code, 0);
    EXPECT_EQ(operations[1].value, 2U);
    EXPECT_EQ(operations[1].state, ORVANE_OPERATION_REFUSED);
    EXPECT_EQ(operations[1].code, -5);
}

TEST(CValues, EachStateHasItsText) {
    const std::pair<int, const char*> texts[] = {{-1, "unknown state"},
                                                 {ORVANE_OPERATION_NOT_SENT, "not sent"},
                                                 {ORVANE_OPERATION_DONE, "done"},
                                                 {ORVANE_OPERATION_REFUSED, "refused"},
                                                 {ORVANE_OPERATION_UNKNOWN, "unknown"},
                                                 {4, "unknown state"}};
    for (const auto& [state, text] : texts)
        EXPECT_STREQ(orvane_operation_state_text(state), text);
}

} // namespace
} // namespace OrvaneTest
