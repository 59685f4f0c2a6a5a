// What a map changes for one PHY or revision.
#include "tests/support/maps/MapTexts.h"

#include <gtest/gtest.h>

namespace OrvaneTest {
namespace {

using namespace Orvane;

const std::string kBase = R"("blocks": {"A": {"at": "30.0", "registers": {
    "CTRL": {"at": 0, "reset": 1, "fields": {"ON": "0", "MODE": "2:1"}}, "OLD": {"at": 1}}}},
    "overrides": )";

MapOptions phy(std::uint32_t identifier) {
    MapOptions options;
    options.identifier = identifier;
    return options;
}

TEST(Overrides, ApplyToThePhyTheyName) {
    const std::string text =
        kBase + R"([{"identifier": "0x00112230/0xFFFFFFF0", "blocks": {"A": {"registers": {
        "CTRL": {"reset": 3}}}}}])";
    EXPECT_EQ(mapOf(text).find("A.CTRL")->reset(), 1U);
    EXPECT_EQ(mapOf(text, phy(0x00112235)).find("A.CTRL")->reset(), 3U);
    EXPECT_EQ(mapOf(text, phy(0x00112245)).find("A.CTRL")->reset(), 1U);
}

TEST(Overrides, ApplyToTheRevisionsTheyName) {
    const std::string text =
        kBase + R"([{"revision": "1..2", "blocks": {"A": {"registers": {"CTRL": {"reset": 3}}}}}])";
    EXPECT_EQ(mapOf(text, phy(0x10)).find("A.CTRL")->reset(), 1U);
    EXPECT_EQ(mapOf(text, phy(0x11)).find("A.CTRL")->reset(), 3U);
    EXPECT_EQ(mapOf(text, phy(0x13)).find("A.CTRL")->reset(), 1U);
    EXPECT_EQ(mapOf(text).find("A.CTRL")->reset(), 1U);
}

TEST(Overrides, KeepWhatTheyDoNotName) {
    const RegisterMap map =
        mapOf(kBase + R"([{"blocks": {"A": {"registers": {"CTRL": {"fields": {"MODE": "3:1"}}}}}}])");
    EXPECT_EQ(map.find("A.CTRL")->reset(), 1U);
    EXPECT_EQ(map.at("A.CTRL.MODE").field->width, 3U);
    EXPECT_EQ(map.at("A.CTRL.ON").field->width, 1U);
}

TEST(Overrides, TakeFieldsAndRegistersAway) {
    const RegisterMap map = mapOf(
        kBase +
        R"([{"blocks": {"A": {"remove": ["OLD"], "registers": {"CTRL": {"fields": {"MODE": null}}}}}}])");
    EXPECT_EQ(map.size(), 1U);
    EXPECT_FALSE(map.resolve("A.CTRL.MODE"));
    EXPECT_TRUE(map.resolve("A.CTRL.ON"));
}

TEST(Overrides, AddRegisters) {
    const RegisterMap map = mapOf(kBase + R"([{"blocks": {"A": {"registers": {"NEW": {"at": 5}}}}}])");
    EXPECT_EQ(map.find("A.NEW")->address().text(), "30.0x0005");
}

TEST(Overrides, ThatDoNotApplyAreCheckedAllTheSame) {
    EXPECT_EQ(
        problemsOf(kBase + R"([{"identifier": "0x1", "blocks": {"A": {"remove": ["NONE"], "registers": {
        "CTRL": {"reset": "0x10000"}, "CRTL": {"reset": 1}}}}}])"),
        "map:3: overrides[0].blocks.A.remove[0]: names no register or block that is here\n"
        "map:4: overrides[0].blocks.A.registers.CTRL.reset: 0x10000 is wider than the register's 16 bits\n"
        "map:4: overrides[0].blocks.A.registers.CRTL: 'at' is missing");
}

TEST(Overrides, WithARevisionThatIsNoneAreRefused) {
    EXPECT_EQ(problemsOf(kBase + R"([{"revision": "2..1"}])"),
              "map:3: overrides[0].revision: has to be a revision of 0 to 15, or a range, as \"0..2\"");
}

TEST(Overrides, OfBlocksApplyToThePhyTheyNameOnly) {
    const std::string text = kBase + R"([{"identifier": "0x11", "blocks": {"A": {"at": "30.0x100"},
        "NEW": {"at": "30.0x200", "registers": {"R": {"at": 0}}}}}])";
    EXPECT_EQ(mapOf(text).find("A.CTRL")->address().text(), "30.0x0000");
    EXPECT_EQ(mapOf(text).find("NEW.R"), nullptr);
    EXPECT_EQ(mapOf(text, phy(0x11)).find("A.CTRL")->address().text(), "30.0x0100");
    EXPECT_EQ(mapOf(text, phy(0x11)).find("NEW.R")->address().text(), "30.0x0200");
}

TEST(Overrides, ApplyToTheLastRevisionTheyName) {
    const std::string text =
        kBase + R"([{"revision": "8..15", "blocks": {"A": {"registers": {"CTRL": {"reset": 3}}}}}])";
    EXPECT_EQ(mapOf(text, phy(0x1F)).find("A.CTRL")->reset(), 3U);
    EXPECT_EQ(mapOf(text, phy(0x17)).find("A.CTRL")->reset(), 1U);
    EXPECT_NE(problemsOf(kBase + R"([{"revision": "1..16"}])"), "");
}

TEST(Overrides, ThatLeaveAFieldBeyondTheRegisterAreToldAtTheirFields) {
    EXPECT_EQ(problemsOf(R"("registers": {"R": {"at": "7.1", "fields": {"HIGH": "15:8"}}},
        "overrides": [{"registers": {"R": {"width": 8, "fields": {"LOW": 0}}}}])"),
              "map:2: overrides[0].registers.R.fields: 'HIGH' has bits beyond the register's 8");
}

TEST(Overrides, AloneRemove) {
    EXPECT_EQ(problemsOf(R"("blocks": {"B": {"remove": ["X"]}})"),
              "map:1: blocks.B.remove: is for overrides");
}

TEST(Overrides, ChangeWhatStandsBehindWhatTheyRemove) {
    const RegisterMap map =
        mapOf(R"("registers": {"A": {"at": "7.1"}, "B": {"at": "7.2"}, "C": {"at": "7.3"}},
        "overrides": [{"remove": ["A"], "registers": {"C": {"reset": 9}}}])");
    EXPECT_EQ(map.size(), 2U);
    EXPECT_EQ(map.find("C")->reset(), 9U);
}

TEST(Overrides, AreForOneRevisionOrARange) {
    for (const char* revision : {"0", "15", "0..15", "3..3"})
        EXPECT_EQ(problemsOf(R"("overrides": [{"revision": ")" + std::string(revision) + R"("}])"), "")
            << revision;
    for (const char* revision : {"16", "0..16", "3..2", "", "..", "1.."})
        EXPECT_EQ(problemsOf(R"("overrides": [{"revision": ")" + std::string(revision) + R"("}])"),
                  R"(map:1: overrides[0].revision: has to be a revision of 0 to 15, or a range, as "0..2")")
            << revision;
}

} // namespace
} // namespace OrvaneTest
