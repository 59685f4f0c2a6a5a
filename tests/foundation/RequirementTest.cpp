// Checks of the callers' side of a contract.
#include "ov_sys/Interface/foundation/Requirement.h"

#include <csignal>
#include <gtest/gtest.h>

namespace Orvane {
namespace {

TEST(Require, GoesOnSilentlyWhenTheConditionHolds) {
    testing::internal::CaptureStderr();
    require(true, "a == b", "source.cpp");
    EXPECT_EQ(testing::internal::GetCapturedStderr(), "");
}

TEST(RequireDeathTest, AbortsWithSourceAndConditionWhenItDoesNotHold) {
    EXPECT_EXIT(require(false, "a == b", "source.cpp"), testing::KilledBySignal(SIGABRT),
                "^source\\.cpp: Assertion `a == b' failed\\.\n");
}

} // namespace
} // namespace Orvane
