// Snapshots of a PHY that behaves: what is read, what is left alone, what comes back.
#include "tests/support/names/MappedBoard.h"

#include <gmock/gmock.h>

namespace OrvaneTest {
namespace {

using namespace Orvane;
using ::OrvaneTest::Names;

class SnapshotTest : public testing::Test, protected MappedBoard {
protected:
    static Names namesOf(const std::vector<const MapRegister*>& registers) {
        Names names;
        for (const MapRegister* const each : registers)
            names.push_back(each->name());
        return names;
    }
    static Names textsOf(const std::vector<FieldChange>& changes) {
        Names texts;
        for (const FieldChange& each : changes)
            texts.push_back(each.text());
        return texts;
    }
};

TEST_F(SnapshotTest, HoldsEveryRegisterThatIsSafeToRead_AndReadsThemInTwoCalls) {
    const Snapshot all = phy.snapshot("**");
    Names names;
    for (const Snapshot::Value& each : all.values)
        names.push_back(each.reg->name());
    EXPECT_EQ(names, (Names{"WORD", "CHIP.CONTROL", "CHIP.ALARMS", "CHIP.TEMPERATURE", "CHIP.MODE",
                            "CHIP.PAGE", "CHIP.ONE.HEIGHT", "CHIP.ONE.WIDTH", "CHIP.TWO.HEIGHT"}));
    EXPECT_EQ(namesOf(all.leftOut), (Names{"CHIP.STATUS", "CHIP.ERRORS", "CHIP.KEY", "DEVICE"}));
    EXPECT_EQ(all.find("CHIP.TWO.HEIGHT")->value, 22U);
    EXPECT_EQ(all.find("CHIP.ONE.WIDTH")->value, 12U);
    EXPECT_EQ(held(0x1F), 0U);
}

TEST_F(SnapshotTest, HoldsRegistersOnThePagesOfSeveralSelects) {
    give(R"("registers": {"NEAR": {"at": "30.30"}, "FAR": {"at": "30.31"}},
        "blocks": {"A": {"at": "30.16", "page": {"select": "NEAR", "value": 1}, "registers": {"X": {"at": 0, "reset": 11}}},
                   "B": {"at": "30.17", "page": {"select": "FAR", "value": 2}, "registers": {"Y": {"at": 0, "reset": 22}}}})");
    phy["NEAR"] = 5;
    phy["FAR"] = 6;
    const Snapshot both = phy.snapshot({"A", "B"});
    EXPECT_EQ(both.find("A.X")->value, 11U);
    EXPECT_EQ(both.find("B.Y")->value, 22U);
    EXPECT_EQ(phy["NEAR"].read(), 5U);
    EXPECT_EQ(phy["FAR"].read(), 6U);
}

TEST_F(SnapshotTest, OfWhatNoBoardReachesSendsNothing) {
    const Snapshot none = phy.snapshot("DEVICE");
    EXPECT_EQ(none.values.size(), 0U);
    EXPECT_EQ(namesOf(none.leftOut), Names{"DEVICE"});
    EXPECT_EQ(accesses(), Names{});
}

TEST_F(SnapshotTest, LeavesWhatAReadWouldChangeAsItIs) {
    set(1, 0);
    phy.snapshot("CHIP.**");
    EXPECT_EQ(held(3), 5U);
    set(1, 4);
    EXPECT_EQ(phy["CHIP.STATUS.LINK"].read(), 0U);
}

TEST_F(SnapshotTest, ReadsARegisterThatIsNamed_WhateverThatDoesToIt) {
    const Snapshot one = phy.snapshot("CHIP.ERRORS");
    EXPECT_EQ(one.find("CHIP.ERRORS")->value, 5U);
    EXPECT_EQ(held(3), 0U);
}

TEST_F(SnapshotTest, ReadsWhatAReadChanges_WhenThatIsSaid) {
    const Snapshot chip = phy.snapshot(Scope("CHIP").sideEffects());
    EXPECT_EQ(chip.find("CHIP.ERRORS")->value, 5U);
    EXPECT_EQ(namesOf(chip.leftOut), Names{"CHIP.KEY"});
}

TEST_F(SnapshotTest, RefusesANameThatIsNotThere) {
    EXPECT_EQ(failureOf([&] { phy.snapshot("CHOP"); }).advice(), "there is no 'CHOP' in the map wren");
    EXPECT_EQ(failureOf([&] { phy.snapshot("CHOP.*"); }).advice(),
              "nothing in the map wren matches 'CHOP.*'");
}

TEST_F(SnapshotTest, DiffersByField) {
    const Snapshot before = phy.snapshot("**");
    phy["CHIP.CONTROL.SPEED"] = "1000 Mb/s";
    phy["CHIP.TWO.HEIGHT"] = 23;
    set(4, 0x1002);
    EXPECT_EQ(textsOf(diff(before, phy.snapshot("**"))),
              (Names{"CHIP.CONTROL.SPEED: 3 -> 1000 Mb/s", "CHIP.TEMPERATURE.VALUE: 0 C -> 1 C",
                     "CHIP.TEMPERATURE: 0x0000 -> 0x1000", "CHIP.TWO.HEIGHT: 0x0016 -> 0x0017"}));
}

TEST_F(SnapshotTest, DiffersInTheLowestBit_WhetherAFieldHasItOrNot) {
    give(
        R"("registers": {"FREE": {"at": "30.0", "fields": {"LEVEL": "15:1"}}, "SWITCH": {"at": "30.1", "fields": {"ON": 0}}})");
    const Snapshot before = phy.snapshot("**");
    phy["FREE"] = 1;
    phy["SWITCH"] = 1;
    EXPECT_EQ(textsOf(diff(before, phy.snapshot("**"))),
              (Names{"FREE: 0x0000 -> 0x0001", "SWITCH.ON: 0 -> 1"}));
}

TEST_F(SnapshotTest, RestoredBringsBackWhatCanBeWritten_AndClearsNoAlarm) {
    const Snapshot before = phy.snapshot("**");
    phy["CHIP.CONTROL"] = 1;
    phy["CHIP.ONE.WIDTH"] = 99;
    phy["CHIP.PAGE"] = 7;
    const Restored restored = phy.restore(before);
    EXPECT_EQ(textsOf(restored.notTaken), Names{});
    EXPECT_EQ(restored.written, 9U);
    EXPECT_EQ(textsOf(diff(before, phy.snapshot("**"))), Names{});
    EXPECT_EQ(held(2), 3U);
}

TEST_F(SnapshotTest, RestoredGivesWriteOnlyBitsTheirResetValue) {
    const Snapshot before = phy.snapshot("CHIP.MODE");
    set(6, 0x7700);
    phy.restore(before);
    EXPECT_EQ(held(6), 0x0110U);
}

TEST_F(SnapshotTest, RestoredStartsNothingThatClearsItself) {
    Snapshot snapshot{map, {{map.find("CHIP.CONTROL"), 0xA041}}, {}};
    EXPECT_EQ(toRestore(snapshot).at(0).value, 0x2041U);
}

TEST_F(SnapshotTest, RestoredWritesNoRegisterWithSideEffects_ButOneOfWhichOnlyTheLowestBitCanBeWritten) {
    give(R"("registers": {
        "TRIGGER": {"at": "30.0", "side-effects": true}, "SWITCH": {"at": "30.1", "fields": {"ON": 0}},
        "LATCH": {"at": "30.2", "fields": {"LEVEL": "7:0", "SEEN": "8 latching-high"}},
        "QUEUE": {"at": "30.3", "side-effects": true, "fields": {"LEVEL": "7:0", "SEEN": "8 latching-high"}},
        "START": {"at": "30.4", "fields": {"LEVEL": "7:0 rw side-effects", "SEEN": "8 clear-on-read"}}})");
    Names restored;
    for (const Snapshot::Value& each : toRestore(phy.snapshot(Scope("**").sideEffects())))
        restored.push_back(each.reg->name());
    EXPECT_EQ(restored, (Names{"SWITCH", "LATCH"}));
}

TEST_F(SnapshotTest, RestoredSendsNothing_WhenNothingCanBeWritten) {
    const Snapshot before = phy.snapshot("CHIP.ERRORS");
    board.forgetRequests();
    const Restored restored = phy.restore(before);
    EXPECT_EQ(restored.written, 0U);
    EXPECT_EQ(accesses(), Names{});
}

TEST_F(SnapshotTest, RestoredWritesInTheMapsOrder) {
    const Snapshot before = phy.snapshot({"CHIP.TEMPERATURE", "CHIP.CONTROL"});
    board.forgetRequests();
    phy.restore(before);
    EXPECT_EQ(argumentsOf(board.requestsOf("mdio_mixedblock").at(0))["writeAddresses"],
              (nlohmann::ordered_json{0x23U << 24U | 0x1EC000U, 0x23U << 24U | 0x1EC004U}));
}

TEST_F(SnapshotTest, RestoredWritesWhatIsToldBefore) {
    const Snapshot before = phy.snapshot({"CHIP.CONTROL", "CHIP.ALARMS", "CHIP.MODE"});
    std::vector<std::pair<std::string, std::uint64_t>> told;
    for (const Snapshot::Value& each : toRestore(before))
        told.emplace_back(each.reg->name(), each.value);
    std::vector<std::pair<std::string, std::uint64_t>> sent;
    board.forgetRequests();
    phy.restore(before);
    const auto arguments = argumentsOf(board.requestsOf("mdio_mixedblock").at(0));
    for (std::size_t i = 0; i < arguments["writeAddresses"].size(); ++i)
        sent.emplace_back(told.at(i).first, arguments["writeData"][i].get<std::uint64_t>());
    EXPECT_EQ(told, sent);
    EXPECT_EQ(told.at(0).first, "CHIP.CONTROL");
}

TEST_F(SnapshotTest, RestoredNamesWhatDidNotTake) {
    set(4, 2);
    const Snapshot before = phy.snapshot({"CHIP.CONTROL", "CHIP.TEMPERATURE"});
    board.useMap({1, 3, 0, OrvaneSim::mappedRegisters(RegisterMap::parse(R"({"format": "orvane-map-1",
        "name": "stuck", "registers": {"CONTROL": {"at": "30.0xC000", "access": "ro", "reset": 0},
        "TEMPERATURE": {"at": "30.0xC004", "access": "ro", "reset": 0}}})"))});
    EXPECT_EQ(textsOf(phy.restore(before).notTaken),
              (Names{"CHIP.CONTROL.SPEED: 3 -> 10 Mb/s", "CHIP.TEMPERATURE.VALUE: 1 C -> 0 C"}));
}

TEST_F(SnapshotTest, EndsWithinItsTime_WhenTheBoardIsMute) {
    phy.open();
    board.hang();
    const auto begun = std::chrono::steady_clock::now();
    const Failure failure = failureOf([&] { phy.snapshot("**", within(300ms)); });
    EXPECT_THAT(failure.kind(), testing::AnyOf(FailureKind::TimedOut, FailureKind::Unreachable));
    EXPECT_LT(std::chrono::steady_clock::now() - begun, 3s);
}

} // namespace
} // namespace OrvaneTest
