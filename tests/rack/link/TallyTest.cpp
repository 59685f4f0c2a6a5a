// What is counted of the calls of each program.
#include "ov_sys/rack/link/Tally.h"

#include "ov_sys/rack/link/TypedCall.h"

#include <gtest/gtest.h>

namespace OrvaneTest {
namespace {

using namespace Orvane;
using namespace Orvane::RackLink;
using std::chrono::microseconds;
using SimpleCall = TypedCall<Simple_Param, Simple_Result>;

class RackTally : public testing::Test {
protected:
    Tally tally;
    const TimePoint begun = Clock::now();

    void end(Program program, Trouble trouble, microseconds time = microseconds(100)) {
        SimpleCall call(program, 1, Effect::Reads);
        call.begun = begun;
        call.trouble = trouble;
        tally.ended(call, begun + time);
    }
    ProgramCounters of(Program program) const { return tally.read().programs.at(nameOf(program)); }
};

TEST_F(RackTally, EveryDurationCountsInItsBucketOfItsProgram) {
    for (std::size_t i = 0; i < kPrograms; ++i) {
        const auto program = static_cast<Program>(i);
        std::vector<std::uint32_t> expected(LatencyHistogram::kBuckets);
        for (const std::int64_t us :
             {0, 7, 8, 9, 15, 16, 31, 1000, 1023, 1024, 999999, 5000000, 67000000, 90000000})
            for (int times = 0; times < 2; ++times) {
                end(program, {}, microseconds(us));
                ++expected[LatencyHistogram::bucketOf(microseconds(us))];
            }
        EXPECT_EQ(of(program).latency.buckets(), expected) << nameOf(program);
        EXPECT_EQ(of(program).succeeded, 28U);
    }
    EXPECT_EQ(tally.read().programs.size(), kPrograms);
}

TEST_F(RackTally, CallsCountByTheirOutcome) {
    end(Program::Gpio, {});
    end(Program::Gpio, FailureKind::TimedOut);
    end(Program::Gpio, FailureKind::TimedOut);
    for (int i = 0; i < 3; ++i)
        end(Program::Gpio, {FailureKind::BoardError, -5});
    end(Program::Gpio, FailureKind::Unreachable);
    end(Program::Gpio, FailureKind::Refused);
    end(Program::Gpio, FailureKind::BadReply);
    end(Program::Gpio, FailureKind::Cancelled);
    const ProgramCounters counted = of(Program::Gpio);
    EXPECT_EQ(counted.calls, 10U);
    EXPECT_EQ(counted.succeeded, 1U);
    EXPECT_EQ(counted.failed, 9U);
    EXPECT_EQ(counted.timedOut, 2U);
    EXPECT_EQ(counted.boardErrors, 3U);
    EXPECT_EQ(counted.latency.count(), 1U);
}

TEST_F(RackTally, RequestsCountTheirBytesAndTheirRepeats) {
    SimpleCall call(Program::I2c, 1, Effect::Reads);
    call.size = 40;
    for (call.sends = 1; call.sends <= 3; ++call.sends)
        tally.sent(call);
    tally.received(Program::I2c, 28);
    EXPECT_EQ(of(Program::I2c).bytesSent, 120U);
    EXPECT_EQ(of(Program::I2c).repeats, 2U);
    EXPECT_EQ(of(Program::I2c).bytesReceived, 28U);
    EXPECT_EQ(of(Program::I2c).calls, 0U);
}

} // namespace
} // namespace OrvaneTest
