// The diagnostic lines: their form and their streams.
#include "ov_sys/Interface/foundation/Diagnostics.h"

#include <gtest/gtest.h>
#include <locale>
#include <set>
#include <sstream>
#include <string>
#include <thread>
#include <vector>

namespace Orvane::Diagnostics {
namespace {

TEST(DiagnosticsError, JoinsItsPartsIntoOneLineOnStandardError) {
    testing::internal::CaptureStderr();
    testing::internal::CaptureStdout();
    error("port ", 7, std::string(" of board"));
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

TEST(DiagnosticsWarning, GoesToStandardError) {
    testing::internal::CaptureStderr();
    warning("no answer");
    EXPECT_EQ(testing::internal::GetCapturedStderr(), "no answer\n");
}

TEST(DiagnosticsPieces, ShowNumbersInPlainDigits) {
    testing::internal::CaptureStderr();
    error(-2147483647 - 1, " ", 18446744073709551615ULL, " ", Hex{0xBEEF}, " ", Hex{0xA0}, " ", Hex{0});
    EXPECT_EQ(testing::internal::GetCapturedStderr(), "-2147483648 18446744073709551615 BEEF A0 0\n");
}

// Groups the digits of every number, as many a language does.
class Grouping : public std::numpunct<char> {
    char do_thousands_sep() const override { return ','; }
    std::string do_grouping() const override { return "\3"; }
};

TEST(DiagnosticsPieces, DoNotFollowTheLocaleOfTheApplication) {
    const std::locale before = std::locale::global(std::locale(std::locale(), new Grouping));
    testing::internal::CaptureStderr();
    error("adapter ", 3001);
    const std::string told = testing::internal::GetCapturedStderr();
    std::locale::global(before);
    EXPECT_EQ(told, "adapter 3001\n");
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
