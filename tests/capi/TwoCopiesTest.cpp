// Two copies of the library in one process.
#include "tests/support/capi/FlatBoard.h"
#include "tests/support/RunProgram.h"

#include <filesystem>
#include <gtest/gtest.h>

namespace OrvaneTest {
namespace {

class TwoCopies : public testing::Test, protected FlatBoard {
protected:
    TwoCopies() : copy(testing::TempDir() + "copy-of-liborvane.so") {
        std::filesystem::copy_file(ORVANE_LIBRARY, copy, std::filesystem::copy_options::overwrite_existing);
    }
    ~TwoCopies() override { std::filesystem::remove(copy); }

    const std::filesystem::path copy;
};

TEST_F(TwoCopies, HaveTheirOwnDevicesTablesLogAndErrors) {
    board.setRegister(OrvaneSim::Space::C45, 0, 3, 0x10002, 0xCAFE);
    board.setRegister(OrvaneSim::Space::C45, 1, 3, 0x10002, 0xBEEF);
    const ProgramOutcome outcome =
        runProgram("ASAN_OPTIONS=$ASAN_OPTIONS:detect_odr_violation=0 '" FLAT_TWO_COPIES "' '" +
                   copy.string() + "' " + device(0) + " " + device(1) + " 2>/dev/null");
    EXPECT_EQ(outcome.output, "opened 1\n"
                              "alone: devices 2, delegation 0, log 0, failed 0, PHY 4, read CAFE\n"
                              "loaded: devices 2, delegation 0, log 0, failed 0, PHY 4, read CAFE\n"
                              "copy opened 1\n"
                              "copy read BEEF\n"
                              "copy failed 1: Invalid adapter index\n"
                              "used: devices 2, delegation 0, log 0, failed 0, PHY 4, read CAFE\n"
                              "unloaded: devices 2, delegation 0, log 0, failed 0, PHY 4, read CAFE\n");
    EXPECT_EQ(outcome.status, 0);
    EXPECT_EQ(board.sessionCount(), 0U);
}

} // namespace
} // namespace OrvaneTest
