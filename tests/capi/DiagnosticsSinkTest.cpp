// The sink for diagnostic lines as a C program sets it: what it is told of the flat functions' lines.
#include "tests/support/capi/FlatBoard.h"
#include "tests/support/WrittenText.h"

#include <chrono>
#include <gtest/gtest.h>
#include <orvane/orvane.h>
#include <string>
#include <vector>

namespace OrvaneTest {
namespace {

using OrvaneSim::Fault;

struct Told {
    int level;
    std::string board;
    std::string line;
};

bool operator==(const Told& one, const Told& other) {
    return one.level == other.level && one.board == other.board && one.line == other.line;
}

void keep(const orvane_diagnostic* diagnostic, void* context) {
    static_cast<std::vector<Told>*>(context)->push_back(
        {diagnostic->level, diagnostic->board, diagnostic->line});
}

// What a sink is told while `work` runs.
template <class Work>
std::vector<Told> toldBy(Work work) {
    std::vector<Told> told;
    orvane_set_diagnostics(keep, &told);
    work();
    orvane_set_diagnostics(nullptr, nullptr);
    return told;
}

class FlatDiagnosticsSink : public testing::Test, protected FlatBoard {};

TEST_F(FlatDiagnosticsSink, IsToldTheBoardOfACallThatIsRepeated) {
    const unsigned adapter = openAdapter(0);
    board.inject({"mdio", "", Fault::Kind::ResultCode, 1, -16});
    const std::vector<Told> told = toldBy([&] { HW_Read_Abstracted(adapter, 3, 1, 2); });
    EXPECT_EQ(told, (std::vector<Told>{
                        {ORVANE_DIAGNOSTIC_ERROR, board.serial(), "mdio Board in busy. Retrying...-16"}}));
}

TEST_F(FlatDiagnosticsSink, IsToldTheBoardThatRefusesToBeOpened) {
    const unsigned adapter = openAdapter(0);
    board.inject({"setup", "open_connection", Fault::Kind::Silent, 1});
    const std::vector<Told> told = toldBy([&] { HW_Read_Abstracted(adapter, 3, 1, 2); });
    ASSERT_EQ(told.size(), 3U);
    EXPECT_EQ(told[0],
              (Told{ORVANE_DIAGNOSTIC_ERROR, board.serial(), "Open session RPC failed with error: 5"}));
    EXPECT_EQ(told[1],
              (Told{ORVANE_DIAGNOSTIC_ERROR, board.serial(),
                    "Error while opening connection: Problem with connection to rpc server on device."}));
    EXPECT_EQ(told[2],
              (Told{ORVANE_DIAGNOSTIC_ERROR, "", "Error: Problem with connection to rpc server on device."}));
}

TEST_F(FlatDiagnosticsSink, IsToldWhatWouldGoToTheStandardOutputAsInformation) {
    std::vector<Told> told;
    const WrittenText written = textWritten([&] { told = toldBy([] { HW_SetDelegationType(0, 3001, 1); }); });
    EXPECT_EQ(told, (std::vector<Told>{{ORVANE_DIAGNOSTIC_INFORMATION, "", "Invalid adapter number 3001"}}));
    EXPECT_EQ(written.output + written.error, "");
}

TEST_F(FlatDiagnosticsSink, IsToldTheTime) {
    using namespace std::chrono;
    const auto now = [] {
        return duration_cast<microseconds>(system_clock::now().time_since_epoch()).count();
    };
    long long time = 0;
    const long long before = now();
    orvane_set_diagnostics([](const orvane_diagnostic* diagnostic,
                              void* context) { *static_cast<long long*>(context) = diagnostic->time_us; },
                           &time);
    HW_SetDelegationType(0, 3001, 1);
    orvane_set_diagnostics(nullptr, nullptr);
    EXPECT_GE(time, before);
    EXPECT_LE(time, now());
}

TEST_F(FlatDiagnosticsSink, LeavesTheLinesToTheStreamsWhenItIsTakenBack) {
    toldBy([] {});
    const WrittenText written = textWritten([] { HW_SetDelegationType(0, 3001, 1); });
    EXPECT_EQ(written.output, "Invalid adapter number 3001\n");
}

} // namespace
} // namespace OrvaneTest
