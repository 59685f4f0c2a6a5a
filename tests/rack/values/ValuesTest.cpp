// Addresses, failures and events as texts; the limits of calls.
#include "ov_sys/rack/values/Batch.h"
#include "ov_sys/rack/values/Counters.h"
#include "ov_sys/rack/values/Discovery.h"
#include "ov_sys/rack/values/Event.h"
#include "ov_sys/rack/values/Failure.h"
#include "ov_sys/rack/values/RegisterAddress.h"
#include "ov_sys/rack/values/Trouble.h"
#include "ov_sys/rack/values/Within.h"

#include <gtest/gtest.h>
#include <poll.h>
#include <sstream>

namespace Orvane {
namespace {

using namespace std::chrono_literals;

TEST(RegisterAddress, TextNamesTheSpace) {
    EXPECT_EQ(toText({30, 0xC010}), "30.0xC010");
    EXPECT_EQ(toText(clause22(2)), "c22.2");
    EXPECT_EQ(toText(ext32(0x80004000)), "ext32.0x80004000");
}

TEST(RegisterAddress, ValidityIsThatOfTheSpace) {
    EXPECT_TRUE(RegisterAddress(31, 0xFFFF).valid());
    EXPECT_FALSE(RegisterAddress(32, 0).valid());
    EXPECT_FALSE(RegisterAddress(1, 0x10000).valid());
    EXPECT_TRUE(clause22(31).valid());
    EXPECT_FALSE(clause22(32).valid());
    EXPECT_TRUE(ext32(0xFFFFFFFF).valid());
}

TEST(RegisterAddress, EqualsTheSameRegisterOfTheSameSpace) {
    EXPECT_TRUE(RegisterAddress(0, 2) == RegisterAddress(0, 2));
    EXPECT_FALSE(RegisterAddress(0, 2) != RegisterAddress(0, 2));
    EXPECT_TRUE(RegisterAddress(0, 2) != clause22(2));
    EXPECT_TRUE(clause22(2) != ext32(2));
    EXPECT_TRUE(RegisterAddress(0, 2) != RegisterAddress(1, 2));
    EXPECT_EQ(clause22(2).mmd, 0U);
    EXPECT_EQ(ext32(2).mmd, 0U);
}

TEST(Values, ThatNobodyFilledSayNothing) {
    const FailureDetails details;
    EXPECT_EQ(details.port, -1);
    EXPECT_EQ(details.phy, -1);
    EXPECT_EQ(details.code, 0);
    EXPECT_EQ(details.attempts, 0U);
    const Event event;
    EXPECT_EQ(event.port, -1);
    EXPECT_EQ(event.phy, -1);
    EXPECT_EQ(event.kind, Event::Kind::Opened);
    EXPECT_EQ(event.level, Event::Level::Info);
    EXPECT_EQ(RackLink::Trouble().code(), 0);
    EXPECT_EQ(Discovery().malformed, 0U);
    EXPECT_TRUE(Within().heal);
    EXPECT_EQ(OperationOutcome().state, OperationOutcome::State::NotSent);
    EXPECT_EQ(OperationOutcome().value, 0U);
    EXPECT_EQ(OperationOutcome().code, 0);
    const ProgramCounters program;
    for (const std::uint64_t count :
         {program.calls, program.succeeded, program.failed, program.timedOut, program.boardErrors,
          program.repeats, program.bytesSent, program.bytesReceived})
        EXPECT_EQ(count, 0U);
    const BoardCounters board;
    for (const std::uint64_t count : {board.opens, board.reopens, board.moves, board.strays})
        EXPECT_EQ(count, 0U);
}

TEST(Batch, ReadsHaveNoValueOfTheirOwn) {
    Batch batch;
    batch.read({1, 2});
    batch.read({1, 3}, 2);
    batch.read({{1, 5}});
    ASSERT_EQ(batch.size(), 4U);
    for (std::uint32_t i = 0; i < 4; ++i) {
        const Batch::Operation& one = batch.operations()[i];
        EXPECT_EQ(one.value, 0U);
        EXPECT_FALSE(one.writes);
        EXPECT_EQ(one.address, RegisterAddress(1, 2 + i));
    }
}

TEST(Failure, TextOfAnEmptyOneIsItsKindAndWhatToDo) {
    EXPECT_STREQ(Failure({}).what(), "invalid argument. Correct the argument; nothing was sent.");
}

TEST(Failure, TextHasEverythingThatIsKnown) {
    FailureDetails details;
    details.kind = FailureKind::BoardError;
    details.board = "OV0001";
    details.port = 0;
    details.phy = 3;
    details.operation = "write";
    details.location = "1.0x0002";
    details.code = -5;
    details.attempts = 2;
    details.spent = 1500ms;
    details.advice = "Ask.";
    EXPECT_STREQ(Failure(details).what(),
                 "OV0001:0 PHY 3: write 1.0x0002: board error, EIO (-5) after 2 attempts in 1.500 s. Ask.");
}

TEST(Failure, TextCountsFromPortAndPhy0AndFromOneAttempt) {
    FailureDetails details;
    details.kind = FailureKind::TimedOut;
    details.board = "A";
    details.port = 0;
    details.phy = 0;
    details.operation = "read";
    details.attempts = 1;
    details.advice = "Ask.";
    EXPECT_STREQ(Failure(details).what(), "A:0 PHY 0: read: timed out after 1 attempt in 0.000 s. Ask.");
}

TEST(Failure, CodeOfOneHasAName) {
    FailureDetails details;
    EXPECT_EQ(Failure(details).codeName(), "");
    details.code = -1;
    EXPECT_EQ(Failure(details).codeName(), "EPERM");
    details.code = 1;
    EXPECT_EQ(Failure(details).codeName(), "1");
}

TEST(Failure, CodeWithoutNameIsANumber) {
    FailureDetails details;
    details.code = -9999;
    EXPECT_EQ(Failure(details).codeName(), "-9999");
}

TEST(Event, LineNamesThePhyAndWhatHappened) {
    Event event;
    event.board = "OV0001";
    event.kind = Event::Kind::Moved;
    event.text = "10.0.0.7";
    std::ostringstream board;
    board << event;
    event.port = 0;
    event.phy = 3;
    event.text.clear();
    std::ostringstream phy;
    phy << event;
    EXPECT_EQ(board.str(), "OV0001: moved, 10.0.0.7");
    EXPECT_EQ(phy.str(), "OV0001:0 PHY 3: moved");
    event.phy = 0;
    std::ostringstream first;
    first << event;
    EXPECT_EQ(first.str(), "OV0001:0 PHY 0: moved");
}

TEST(Cancellation, DescriptorIsReadableWhileCancelled) {
    Cancellation cancellation;
    const auto readable = [&] {
        pollfd entry{cancellation.descriptor(), POLLIN, 0};
        return poll(&entry, 1, 0) == 1;
    };
    EXPECT_FALSE(readable());
    cancellation.cancel();
    cancellation.cancel();
    EXPECT_TRUE(readable());
    EXPECT_TRUE(cancellation.cancelled());
    cancellation.reset();
    EXPECT_FALSE(readable());
    EXPECT_FALSE(cancellation.cancelled());
}

TEST(Within, PoliciesLeaveTheTimeAlone) {
    const Within limits = within(2s).once().withoutHealing();
    EXPECT_EQ(limits.time, 2s);
    EXPECT_EQ(limits.repeat.reads, 0U);
    EXPECT_EQ(limits.repeat.writes, 0U);
    EXPECT_FALSE(limits.heal);
}

} // namespace
} // namespace Orvane
