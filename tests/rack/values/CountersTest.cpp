// Counters and latencies.
#include "ov_sys/rack/values/Counters.h"

#include "tests/support/rack/RackOnBoard.h"

namespace OrvaneTest {
namespace {

using namespace Orvane;

class RackCounters : public testing::Test, protected RackOnBoard {
protected:
    RackCounters() { phy.open(); }
    ProgramCounters mdio() const { return rack.counters().at("BOARD7").programs.at("mdio"); }
};

TEST_F(RackCounters, CallsAreCountedByTheirOutcome) {
    phy.read({1, 0});
    inject(Fault::Kind::ResultCode, "mdio", "mdio_read", 1, -5);
    failureOf([&] { phy.read({1, 0}); });
    inject(Fault::Kind::LoseReply, "mdio", "mdio_read", -1);
    failureOf([&] { phy.read({1, 0}, within(200ms).once()); });
    const ProgramCounters counters = mdio();
    EXPECT_EQ(counters.calls, 3U);
    EXPECT_EQ(counters.succeeded, 1U);
    EXPECT_EQ(counters.failed, 2U);
    EXPECT_EQ(counters.boardErrors, 1U);
    EXPECT_EQ(counters.timedOut, 1U);
    EXPECT_EQ(counters.repeats, 0U);
    EXPECT_EQ(counters.latency.count(), 1U);
}

TEST_F(RackCounters, BytesAreThoseOfTheMessages) {
    phy.read({1, 0});
    EXPECT_EQ(mdio().bytesSent, 52U);     // header 40, session word, count, address
    EXPECT_EQ(mdio().bytesReceived, 36U); // header 24, status, count, value
}

TEST_F(RackCounters, RepeatsAndReopensAreCounted) {
    inject(Fault::Kind::LoseReply, "mdio", "mdio_read");
    phy.read({1, 0});
    board.forgetSessions();
    phy.read({1, 0});
    EXPECT_GE(mdio().repeats, 1U);
    EXPECT_EQ(rack.counters().at("BOARD7").opens, 1U);
    EXPECT_EQ(rack.counters().at("BOARD7").reopens, 1U);
}

TEST(LatencyHistogram, EveryDurationIsWithinFivePercentOfItsBucket) {
    for (std::int64_t us = 8; us < 60'000'000; us += 1 + us / 97) {
        const unsigned bucket = LatencyHistogram::bucketOf(std::chrono::microseconds(us));
        const auto middle = static_cast<double>(LatencyHistogram::middleOf(bucket).count());
        ASSERT_NEAR(middle / static_cast<double>(us), 1.0, 0.05) << us;
    }
}

TEST(LatencyHistogram, ExtremesCountInTheOuterBuckets) {
    EXPECT_EQ(LatencyHistogram::bucketOf(std::chrono::microseconds(-5)), 0U);
    EXPECT_EQ(LatencyHistogram::bucketOf(std::chrono::microseconds(0)), 0U);
    EXPECT_EQ(LatencyHistogram::bucketOf(7us), 0U);
    EXPECT_EQ(LatencyHistogram::bucketOf(8us), 0U);
    EXPECT_EQ(LatencyHistogram::bucketOf(9us), 2U); // sixteen to an octave
    EXPECT_EQ(LatencyHistogram::bucketOf(16us), 16U);
    EXPECT_EQ(LatencyHistogram::bucketOf(std::chrono::hours(5)), LatencyHistogram::kBuckets - 1);
}

TEST(LatencyHistogram, OuterBucketsHaveTheirPercentiles) {
    EXPECT_EQ(LatencyHistogram::bucketOf(std::chrono::microseconds(1 << 26)), LatencyHistogram::kBuckets - 1);
    EXPECT_EQ(LatencyHistogram::bucketOf(std::chrono::microseconds((1 << 26) - 1)),
              LatencyHistogram::kBuckets - 1);
    for (const unsigned bucket : {0U, 1U, LatencyHistogram::kBuckets - 2, LatencyHistogram::kBuckets - 1}) {
        std::vector<std::uint32_t> buckets(LatencyHistogram::kBuckets);
        buckets[bucket] = 1;
        EXPECT_EQ(LatencyHistogram(buckets).percentile(50), LatencyHistogram::middleOf(bucket)) << bucket;
    }
}

TEST(LatencyHistogram, AddsTheBucketsOfAnother) {
    std::vector<std::uint32_t> buckets(LatencyHistogram::kBuckets);
    for (unsigned i = 0; i < LatencyHistogram::kBuckets; ++i)
        buckets[i] = i + 1;
    LatencyHistogram sum;
    sum.add(LatencyHistogram(buckets));
    EXPECT_EQ(sum.buckets(), buckets);
    sum.add(LatencyHistogram(buckets));
    sum.add(LatencyHistogram());
    for (unsigned i = 0; i < LatencyHistogram::kBuckets; ++i)
        ASSERT_EQ(sum.buckets()[i], 2 * (i + 1));
}

TEST(LatencyHistogram, PercentilesAreThoseOfTheCalls) {
    std::vector<std::uint32_t> buckets(LatencyHistogram::kBuckets);
    buckets[LatencyHistogram::bucketOf(100us)] = 98;
    buckets[LatencyHistogram::bucketOf(5ms)] = 2;
    const LatencyHistogram histogram(buckets);
    EXPECT_NEAR(static_cast<double>(histogram.percentile(50).count()), 100, 5);
    EXPECT_NEAR(static_cast<double>(histogram.percentile(98).count()), 100, 5);
    EXPECT_NEAR(static_cast<double>(histogram.percentile(99).count()), 5000, 250);
    EXPECT_NEAR(static_cast<double>(histogram.percentile(100).count()), 5000, 250);
    EXPECT_EQ(LatencyHistogram().percentile(50).count(), 0);
}

} // namespace
} // namespace OrvaneTest
