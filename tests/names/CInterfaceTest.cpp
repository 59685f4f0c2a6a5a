// Names from C, against a PHY that behaves.
#include "tests/support/names/MappedBoard.h"

#include <cstring>
#include <gmock/gmock.h>
#include <orvane/rack.h>

namespace OrvaneTest {
namespace {

// Owns a text of the C interface.
std::string taken(char* text) {
    const std::string copy = text == nullptr ? "" : text;
    orvane_map_free(text);
    return copy;
}

class CNames : public testing::Test, protected MappedBoard {
protected:
    orvane_rack* crack = nullptr;
    orvane_phy* cphy = nullptr;
    orvane_failure failure{};

    CNames() {
        orvane_rack_new(&crack, nullptr);
        orvane_rack_know(crack, kBoardSerial, board.address().c_str(), nullptr);
        EXPECT_EQ(orvane_rack_phy(crack, "board7:1", {ORVANE_SIMPLE, 0, 0}, 3, nullptr, &cphy, &failure),
                  ORVANE_DONE)
            << failure.message;
        orvane_map* cmap = nullptr;
        EXPECT_EQ(orvane_map_parse(kWren, std::strlen(kWren), "wren", nullptr, &cmap, nullptr),
                  ORVANE_MAP_OK);
        EXPECT_EQ(orvane_phy_use(cphy, cmap, &failure), ORVANE_DONE);
        orvane_map_release(cmap);
    }
    ~CNames() override {
        orvane_phy_free(cphy);
        orvane_rack_free(crack);
    }
    orvane_snapshot* snapshotOf(const char* name) {
        orvane_snapshot* snapshot = nullptr;
        EXPECT_EQ(orvane_phy_snapshot(cphy, &name, 1, 0, nullptr, &snapshot, &failure), ORVANE_DONE)
            << failure.message;
        return snapshot;
    }
};

TEST_F(CNames, AreReadAsNumbersAndInWords) {
    uint64_t raw = 0;
    ASSERT_EQ(orvane_phy_read_name(cphy, "CHIP.CONTROL.SPEED", nullptr, &raw, &failure), ORVANE_DONE);
    EXPECT_EQ(raw, 3U);
    set(1, 0);
    char* text = nullptr;
    ASSERT_EQ(orvane_phy_read_text(cphy, "CHIP.STATUS.LINK", nullptr, &text, &failure), ORVANE_DONE);
    EXPECT_EQ(taken(text), "0: was low since the last read");
}

TEST_F(CNames, OfLatchedBitsAreReadTwice) {
    set(1, 0);
    set(1, 4);
    uint64_t before = 9;
    uint64_t now = 9;
    ASSERT_EQ(orvane_phy_read_twice(cphy, "CHIP.STATUS.LINK", nullptr, &before, &now, &failure), ORVANE_DONE);
    EXPECT_EQ(before, 0U);
    EXPECT_EQ(now, 1U);
}

TEST_F(CNames, AreWritten) {
    ASSERT_EQ(orvane_phy_write_name(cphy, "CHIP.CONTROL.LED", 1, nullptr, &failure), ORVANE_DONE);
    ASSERT_EQ(orvane_phy_write_choice(cphy, "CHIP.CONTROL.SPEED", "1000 Mb/s", nullptr, &failure),
              ORVANE_DONE);
    EXPECT_EQ(held(0), 0x0041U);
}

TEST_F(CNames, ThatCannotBeWrittenAreRefused) {
    EXPECT_EQ(orvane_phy_write_name(cphy, "CHIP.STATUS.LINK", 1, nullptr, &failure), ORVANE_INVALID_ARGUMENT);
    EXPECT_STREQ(failure.location, "CHIP.STATUS.LINK");
    EXPECT_EQ(orvane_phy_write_name(cphy, nullptr, 1, nullptr, &failure), ORVANE_INVALID_ARGUMENT);
}

TEST_F(CNames, ComeBackFromASnapshot) {
    orvane_snapshot* const before = snapshotOf("CHIP.**");
    ASSERT_EQ(orvane_snapshot_size(before), 8U);
    const char* name = nullptr;
    uint64_t value = 0;
    ASSERT_EQ(orvane_snapshot_at(before, 0, &name, &value, &failure), ORVANE_DONE);
    EXPECT_STREQ(name, "CHIP.CONTROL");
    EXPECT_EQ(value, 0x2040U);
    EXPECT_EQ(orvane_snapshot_at(before, 8, &name, &value, &failure), ORVANE_INVALID_ARGUMENT);
    set(0, 0x2041);
    orvane_snapshot* const after = snapshotOf("CHIP.**");
    char* text = nullptr;
    ASSERT_EQ(orvane_snapshot_diff(before, after, &text, &failure), ORVANE_DONE);
    EXPECT_EQ(taken(text), "CHIP.CONTROL.LED: 0 -> 1\n");
    size_t written = 0;
    ASSERT_EQ(orvane_phy_restore(cphy, before, nullptr, &written, &text, &failure), ORVANE_DONE);
    EXPECT_EQ(written, 8U);
    EXPECT_EQ(taken(text), "");
    EXPECT_EQ(held(0), 0x2040U);
    orvane_snapshot_free(before);
    orvane_snapshot_free(after);
}

TEST_F(CNames, OfSeveralScopesMakeOneSnapshot) {
    const char* const names[]{"WORD", "CHIP.CONTROL", "CHIP.MODE"};
    orvane_snapshot* snapshot = nullptr;
    ASSERT_EQ(orvane_phy_snapshot(cphy, names, 3, 0, nullptr, &snapshot, &failure), ORVANE_DONE);
    EXPECT_EQ(orvane_snapshot_size(snapshot), 3U);
    orvane_snapshot_free(snapshot);
}

TEST_F(CNames, AreInThePlanOfOperations) {
    orvane_operation write{};
    write.address = {ORVANE_CLAUSE22, 0, 0};
    write.value = 0x8000;
    write.writes = 1;
    char* text = nullptr;
    ASSERT_EQ(orvane_plan(&write, 1, nullptr, &text, &failure), ORVANE_DONE);
    EXPECT_THAT(taken(text), testing::StartsWith("write c22.0 0x8000      C22.CONTROL: RESET 1, "));
}

TEST_F(CNames, PutAValueIntoWords) {
    char* text = nullptr;
    ASSERT_EQ(orvane_phy_decode(cphy, {ORVANE_CLAUSE45, 30, 0xC001}, 0, &text, &failure), ORVANE_DONE);
    EXPECT_THAT(taken(text), testing::HasSubstr("CHIP.STATUS.LINK: 0: was low since the last read\n"));
    ASSERT_EQ(orvane_phy_decode(cphy, {ORVANE_CLAUSE45, 1, 1}, 5, &text, &failure), ORVANE_DONE);
    EXPECT_EQ(taken(text), "");
    ASSERT_EQ(orvane_phy_decode(cphy, {ORVANE_CLAUSE45, 30, 0xC005}, 0x12, &text, &failure), ORVANE_DONE);
    EXPECT_EQ(taken(text), "CHIP.KEY: 0x0012\n");
    EXPECT_EQ(orvane_phy_decode(cphy, {99, 1, 1}, 5, &text, &failure), ORVANE_INVALID_ARGUMENT);
}

TEST_F(CNames, AreInThePlanOfARoutedAccess) {
    const orvane_register paged{ORVANE_CLAUSE45, 28, 0x0123};
    char* text = nullptr;
    ASSERT_EQ(orvane_routed_plan(paged, nullptr, nullptr, nullptr, &text, &failure), ORVANE_DONE);
    EXPECT_EQ(taken(text), "write 30.0xC47F 0x0000\n"
                           "write 30.0xC47C 0x0123\n"
                           "write 30.0xC47E 0x011C\n"
                           "read  30.0xC47F\n"
                           "read  30.0xC47D\n");
    orvane_paths over = orvane_default_paths();
    over.over_clause22 = 1;
    const std::uint32_t value = 0xABCD;
    ASSERT_EQ(orvane_routed_plan({ORVANE_CLAUSE45, 7, 0x10}, &value, &over, nullptr, &text, &failure),
              ORVANE_DONE);
    EXPECT_THAT(taken(text), testing::EndsWith("write c22.14 0xABCD     C22.MMD_DATA: DATA 0xABCD\n"));
}

TEST_F(CNames, RefuseANullWhereOneIsNeeded) {
    const char* const name = "CHIP.CONTROL";
    const char* const noName = nullptr;
    const char* found = nullptr;
    const orvane_operation operation{};
    uint64_t raw = 0;
    size_t written = 0;
    char* text = nullptr;
    orvane_snapshot* other = nullptr;
    orvane_snapshot* const snapshot = snapshotOf(name);
    board.forgetRequests();
    const std::vector<int> outcomes{
        orvane_phy_use(nullptr, nullptr, &failure),
        orvane_phy_use(cphy, nullptr, &failure),
        orvane_phy_read_name(cphy, nullptr, nullptr, &raw, &failure),
        orvane_phy_read_name(cphy, name, nullptr, nullptr, &failure),
        orvane_phy_read_text(cphy, nullptr, nullptr, &text, &failure),
        orvane_phy_read_text(cphy, name, nullptr, nullptr, &failure),
        orvane_phy_read_twice(cphy, name, nullptr, nullptr, &raw, &failure),
        orvane_phy_read_twice(cphy, name, nullptr, &raw, nullptr, &failure),
        orvane_phy_write_name(cphy, nullptr, 1, nullptr, &failure),
        orvane_phy_write_choice(cphy, nullptr, "10 Mb/s", nullptr, &failure),
        orvane_phy_write_choice(cphy, name, nullptr, nullptr, &failure),
        orvane_phy_decode(nullptr, {ORVANE_CLAUSE45, 1, 1}, 0, &text, &failure),
        orvane_phy_decode(cphy, {ORVANE_CLAUSE45, 1, 1}, 0, nullptr, &failure),
        orvane_phy_snapshot(cphy, nullptr, 0, 0, nullptr, &other, &failure),
        orvane_phy_snapshot(cphy, &name, 1, 0, nullptr, nullptr, &failure),
        orvane_phy_snapshot(cphy, &noName, 1, 0, nullptr, &other, &failure),
        orvane_snapshot_at(nullptr, 0, &found, &raw, &failure),
        orvane_snapshot_at(snapshot, 0, nullptr, &raw, &failure),
        orvane_snapshot_at(snapshot, 0, &found, nullptr, &failure),
        orvane_snapshot_diff(snapshot, nullptr, &text, &failure),
        orvane_snapshot_diff(snapshot, snapshot, nullptr, &failure),
        orvane_phy_restore(cphy, nullptr, nullptr, &written, &text, &failure),
        orvane_phy_restore(cphy, snapshot, nullptr, nullptr, &text, &failure),
        orvane_phy_restore(cphy, snapshot, nullptr, &written, nullptr, &failure),
        orvane_plan(nullptr, 1, nullptr, &text, &failure),
        orvane_plan(&operation, 0, nullptr, nullptr, &failure),
        orvane_routed_plan({ORVANE_CLAUSE45, 28, 1}, nullptr, nullptr, nullptr, nullptr, &failure)};
    EXPECT_THAT(outcomes, testing::Each(ORVANE_INVALID_ARGUMENT));
    EXPECT_EQ(accesses(), OrvaneTest::Names{});
    orvane_snapshot_free(snapshot);
}

TEST_F(CNames, OfASnapshotThatIsNullAreNone) {
    EXPECT_EQ(orvane_snapshot_size(nullptr), 0U);
}

} // namespace
} // namespace OrvaneTest
