// What is said when there is no memory to say it better.
#include "ov_sys/rack/core/Job.h"

#include <gtest/gtest.h>

namespace OrvaneTest {
namespace {

TEST(RackJob, ThatRanOutOfMemoryIsCancelledAndSaysWhy) {
    const Orvane::Failure& failure = Orvane::RackCore::memoryRanOut();
    EXPECT_EQ(failure.kind(), Orvane::FailureKind::Cancelled);
    EXPECT_EQ(failure.advice(), "Memory ran out. What was already sent may have been executed.");
}

} // namespace
} // namespace OrvaneTest
