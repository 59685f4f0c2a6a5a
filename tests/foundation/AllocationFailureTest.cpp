// Diagnostic lines when memory runs out.
#include "tests/support/allocations/AllocationFailure.h"

#include "ov_sys/Interface/foundation/Diagnostics.h"

#include <gtest/gtest.h>
#include <string>

namespace Orvane::Diagnostics {
namespace {

TEST(DiagnosticsWithoutMemory, StillPrintTheWholeLine) {
    const std::string board(200, 'B');
    std::string expected;
    testing::internal::CaptureStderr();
    const std::size_t failed =
        OrvaneTest::failEachAllocation([&] { error("port ", 7, " of board ", board, " at ", Hex{0xBEEF}); },
                                       [&] { expected += "port 7 of board " + board + " at BEEF\n"; });
    const std::string told = testing::internal::GetCapturedStderr();
    EXPECT_GT(failed, 0U);
    EXPECT_EQ(told, expected);
}

} // namespace
} // namespace Orvane::Diagnostics
