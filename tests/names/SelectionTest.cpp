// What names, blocks and patterns mean in a map, and which of the registers may be read by the way.
#include "ov_sys/names/Selection.h"

#include <gtest/gtest.h>

namespace OrvaneTest {
namespace {

using namespace Orvane;
using List = std::vector<std::string>;

class SelectionTest : public testing::Test {
protected:
    const RegisterMap map = RegisterMap::parse(R"({"format": "orvane-map-1", "name": "wren", "blocks": {
        "LANE": {"at": "30.0", "count": 2, "stride": 16, "registers": {
            "CONTROL": {"at": 0}, "ERRORS": {"at": 1, "count": 2, "access": "clear-on-read"}}},
        "CHIP": {"at": "30.256", "registers": {
            "STATUS": {"at": 0, "access": "ro", "fields": {"LINK": "2 latching-low", "UP": 0}},
            "KEY": {"at": 1, "access": "wo"}, "TRIGGER": {"at": 2, "side-effects": true}}}}})");

    static List namesOf(const std::vector<const MapRegister*>& registers) {
        List names;
        for (const MapRegister* const each : registers)
            names.push_back(each->name());
        return names;
    }
    List taken(const Scope& scope) const { return namesOf(select(map, scope).registers); }
};

TEST_F(SelectionTest, OfABlockIsWhatIsSafeToReadInIt) {
    const Selection lane = select(map, "LANE[1]");
    EXPECT_EQ(namesOf(lane.registers), List{"LANE[1].CONTROL"});
    EXPECT_EQ(namesOf(lane.leftOut), (List{"LANE[1].ERRORS[0]", "LANE[1].ERRORS[1]"}));
}

TEST_F(SelectionTest, OfAnArrayIsEveryElement) {
    EXPECT_EQ(taken("LANE"), (List{"LANE[0].CONTROL", "LANE[1].CONTROL"}));
    EXPECT_EQ(taken(Scope("LANE[0].ERRORS").sideEffects()), (List{"LANE[0].ERRORS[0]", "LANE[0].ERRORS[1]"}));
}

TEST_F(SelectionTest, OfANameInFullIsTheRegister_WhateverAReadDoesToIt) {
    EXPECT_EQ(taken("CHIP.TRIGGER"), List{"CHIP.TRIGGER"});
    EXPECT_EQ(taken("CHIP.STATUS.UP"), List{"CHIP.STATUS"});
}

TEST_F(SelectionTest, OfOverlappingNamesHasEachRegisterOnce_InFileOrder) {
    EXPECT_EQ(taken({"CHIP.*", "CHIP.STATUS", "LANE[0].CONTROL", "*.CONTROL"}),
              (List{"LANE[0].CONTROL", "LANE[1].CONTROL", "CHIP.STATUS"}));
}

TEST_F(SelectionTest, WithSideEffectsLeavesOutOnlyWhatAReadTellsNothingOf) {
    const Selection chip = select(map, Scope("CHIP").sideEffects());
    EXPECT_EQ(namesOf(chip.registers), (List{"CHIP.STATUS", "CHIP.TRIGGER"}));
    EXPECT_EQ(namesOf(chip.leftOut), List{"CHIP.KEY"});
}

TEST_F(SelectionTest, OfWhatIsNotThereThrows) {
    EXPECT_THROW(select(map, "CHIPS"), MapError);
    EXPECT_THROW(select(map, "CHIPS.*"), MapError);
    EXPECT_THROW(select(map, {"CHIP", "LANE[2]"}), MapError);
}

} // namespace
} // namespace OrvaneTest
