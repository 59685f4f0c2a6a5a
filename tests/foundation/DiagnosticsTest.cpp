// The diagnostic lines: their form and their streams.
#include "ov_sys/Interface/foundation/Diagnostics.h"

#include <gtest/gtest.h>
#include <set>
#include <thread>
#include <vector>

namespace Orvane::Diagnostics {
namespace {

TEST(DiagnosticsError, JoinsItsPartsIntoOneLineOnStandardError) {
    testing::internal::CaptureStderr();
    testing::internal::CaptureStdout();
    error("port ", 7, ' ', std::string("of board"));
    EXPECT_EQ(testing::internal::GetCapturedStdout(), "");
    EXPECT_EQ(testing::internal::GetCapturedStderr(), "port 7 of board\n");
}

TEST(DiagnosticsOutput, JoinsItsPartsIntoOneLineOnStandardOutput) {
    testing::internal::CaptureStderr();
    testing::internal::CaptureStdout();
    output("port ", 7);
    EXPECT_EQ(testing::internal::GetCapturedStdout(), "port 7\n");
    EXPECT_EQ(testing::internal::GetCapturedStderr(), "");
}

TEST(DiagnosticsWrite, AddsNoLineEnd) {
    testing::internal::CaptureStderr();
    write(stderr, "first\nsecond");
    EXPECT_EQ(testing::internal::GetCapturedStderr(), "first\nsecond");
}

TEST(DiagnosticsError, KeepsTheLinesOfSeveralThreadsWhole) {
    constexpr int threads = 4;
    constexpr int lines = 200;
    testing::internal::CaptureStderr();
    std::vector<std::thread> writers;
    writers.reserve(threads);
    for (int writer = 0; writer < threads; ++writer)
        writers.emplace_back([writer] {
            for (int line = 0; line < lines; ++line)
                error("writer ", writer, " line ", line, " ends here");
        });
    for (std::thread& writer : writers)
        writer.join();
    std::istringstream captured(testing::internal::GetCapturedStderr());
    std::multiset<std::string> seen;
    for (std::string line; std::getline(captured, line);)
        seen.insert(line);

    std::multiset<std::string> expected;
    for (int writer = 0; writer < threads; ++writer)
        for (int line = 0; line < lines; ++line)
            expected.insert("writer " + std::to_string(writer) + " line " + std::to_string(line) +
                            " ends here");
    EXPECT_EQ(seen, expected);
}

} // namespace
} // namespace Orvane::Diagnostics
