// Blocks, arrays and pages, laid out; what overlaps or is missing.
#include "tests/support/maps/MapTexts.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace OrvaneTest {
namespace {

using namespace Orvane;
using testing::ElementsAre;

std::vector<std::string> lines(const RegisterMap& map) {
    std::vector<std::string> all;
    for (const MapRegister& each : map.registers())
        all.push_back(each.name() + " " + each.address().text());
    return all;
}

TEST(Layout, CountsDistancesFromTheBlocksAround) {
    const RegisterMap map = mapOf(R"("blocks": {"A": {"at": "30.0x100", "registers": {"R": {"at": 2}},
        "blocks": {"B": {"at": "0x10", "registers": {"S": {"at": 3}, "T": {"at": "7.5"}}}}}})");
    EXPECT_THAT(lines(map), ElementsAre("A.R 30.0x0102", "A.B.S 30.0x0113", "A.B.T 7.0x0005"));
}

TEST(Layout, RepeatsRegistersAndBlocks) {
    const RegisterMap map = mapOf(R"("blocks": {"L": {"at": "30.0", "count": 2, "stride": "0x20",
        "registers": {"R": {"at": 1, "count": 2}, "S": {"at": 8, "count": 2, "stride": 4}}}})");
    EXPECT_THAT(lines(map), ElementsAre("L[0].R[0] 30.0x0001", "L[0].R[1] 30.0x0002", "L[0].S[0] 30.0x0008",
                                        "L[0].S[1] 30.0x000C", "L[1].R[0] 30.0x0021", "L[1].R[1] 30.0x0022",
                                        "L[1].S[0] 30.0x0028", "L[1].S[1] 30.0x002C"));
}

TEST(Layout, StepsByBytesInThe32BitSpace) {
    const RegisterMap map = mapOf(R"("registers": {"R": {"at": "ext32:0x80000000", "count": 2}})");
    EXPECT_THAT(lines(map), ElementsAre("R[0] ext32:0x80000000", "R[1] ext32:0x80000004"));
}

TEST(Layout, GivesEachElementOfAPagedBlockItsPage) {
    const RegisterMap map = mapOf(R"("registers": {"PAGE": {"at": "c22:31", "fields": {"NR": "7:0"}}},
        "blocks": {"P": {"at": "c22:0", "count": 2, "page": {"select": "PAGE.NR", "value": 3, "step": 2},
                         "registers": {"R": {"at": 16}}}})");
    EXPECT_THAT(lines(map), ElementsAre("PAGE c22:0x1F", "P[0].R c22:0x10@3", "P[1].R c22:0x10@5"));
    const MapPage page = map.find("P[1].R")->page().value();
    EXPECT_EQ(page.select, map.find("PAGE"));
    EXPECT_EQ(page.field, map.at("PAGE.NR").field);
    EXPECT_EQ(page.value, 5U);
    EXPECT_FALSE(map.find("PAGE")->page().has_value());
}

TEST(Layout, FindsByAddressWithItsPage) {
    const RegisterMap map = mapOf(R"("registers": {"PAGE": {"at": "c22:31"}},
        "blocks": {"P": {"at": "c22:0", "page": {"select": "PAGE", "value": 3}, "registers": {"R": {"at": 16}}}})");
    EXPECT_EQ(map.find(MapAddress::parse("c22:16@3")), map.find("P.R"));
    EXPECT_EQ(map.find(MapAddress::parse("c22:16")), nullptr);
    EXPECT_EQ(map.find(MapAddress::parse("c22:31")), map.find("PAGE"));
}

TEST(Layout, IteratesInFileOrderAndInAddressOrder) {
    const RegisterMap map = mapOf(R"("registers": {"B": {"at": "7.2"}, "A": {"at": "7.1"}})");
    EXPECT_THAT(lines(map), ElementsAre("B 7.0x0002", "A 7.0x0001"));
    EXPECT_THAT(map.inAddressOrder(), ElementsAre(map.find("A"), map.find("B")));
}

TEST(Layout, OfTwoRegistersAtOneAddressIsRefused) {
    EXPECT_EQ(problemsOf(R"("registers": {"A": {"at": "7.1"}, "B": {"at": "7.1"}})"),
              "map:1: registers.B: B at 7.0x0001 overlaps with A at 7.0x0001");
}

TEST(Layout, OfBytesThatOverlapIsRefused) {
    EXPECT_EQ(problemsOf(R"("registers": {"A": {"at": "ext32:0", "width": 64}, "B": {"at": "ext32:4"}})"),
              "map:1: registers.B: B at ext32:0x00000004 overlaps with A at ext32:0x00000000");
    EXPECT_EQ(problemsOf(R"("registers": {"A": {"at": "ext32:0"}, "B": {"at": "ext32:4"}})"), "");
}

TEST(Layout, OfAPagedRegisterOverOneOfAllPagesIsRefused) {
    EXPECT_EQ(problemsOf(R"("registers": {"PAGE": {"at": "c22:31"}},
        "blocks": {"P": {"at": "c22:0", "page": {"select": "PAGE", "value": 3}, "registers": {"R": {"at": 31}}}})"),
              "map:2: blocks.P.registers.R: P.R at c22:0x1F@3 overlaps with PAGE at c22:0x1F");
}

TEST(Layout, OfAnArrayWhoseElementsOverlapIsRefused) {
    EXPECT_EQ(problemsOf(R"("blocks": {"L": {"at": "30.0", "count": 2, "stride": 1,
        "registers": {"R": {"at": 0}, "S": {"at": 1}}}})"),
              "map:2: blocks.L.registers.R: L[1].R at 30.0x0001 overlaps with L[0].S at 30.0x0001");
}

TEST(Layout, OfAnArrayWithAGapIsRefused) {
    EXPECT_EQ(problemsOf(R"("registers": {"L[0]": {"at": "7.1"}, "L[2]": {"at": "7.2"}})"),
              "map:1: registers.L[2]: the array has a gap: 'L[1]' is missing");
    EXPECT_EQ(problemsOf(R"("registers": {"L[0]": {"at": "7.1"}, "L[1]": {"at": "7.2"}})"), "");
}

TEST(Layout, OfARegisterAndABlockOfOneNameIsRefused) {
    EXPECT_EQ(problemsOf(R"("registers": {"A": {"at": "7.1"}}, "blocks": {"A": {"at": "7.2"}})"),
              "map:1: blocks.A: is the name of a register and of a block");
}

TEST(Layout, OfADistanceFromNowhereIsRefused) {
    EXPECT_EQ(problemsOf(R"("registers": {"A": {"at": 1}})"),
              "map:1: registers.A: 'at' is a distance, but no block around has an address");
}

TEST(Layout, BeyondTheSpaceIsRefused) {
    EXPECT_EQ(problemsOf(R"("registers": {"A": {"at": "7.0xFFFF", "count": 2}})"),
              "map:1: registers.A: A[1] lies beyond the last address of its space");
}

TEST(Layout, OfAPageThatNobodySelectsIsRefused) {
    EXPECT_EQ(problemsOf(R"("blocks": {"P": {"at": "c22:0", "page": {"select": "PAGE", "value": 3},
        "registers": {"R": {"at": 16}}}})"),
              "map:2: blocks.P.registers.R: the page's select register 'PAGE' is not there");
}

TEST(Layout, OfAPageThatDoesNotFitItsSelectorIsRefused) {
    EXPECT_EQ(problemsOf(R"("registers": {"PAGE": {"at": "c22:31", "fields": {"NR": "1:0"}}},
        "blocks": {"P": {"at": "c22:0", "page": {"select": "PAGE.NR", "value": 4}, "registers": {"R": {"at": 16}}}})"),
              "map:2: blocks.P.registers.R: its page does not fit into PAGE.NR");
}

TEST(Layout, OfAByteThatLiesBelowAnEarlierOneIsRefused) {
    EXPECT_EQ(problemsOf(R"("registers": {"B": {"at": "ext32:4"}, "A": {"at": "ext32:0", "width": 64}})"),
              "map:1: registers.A: A at ext32:0x00000000 overlaps with B at ext32:0x00000004");
}

TEST(Layout, OfARegisterOnPage0OverOneOfAllPagesIsRefused) {
    EXPECT_EQ(problemsOf(R"("registers": {"PAGE": {"at": "c22:31"}},
        "blocks": {"P": {"at": "c22:0", "page": {"select": "PAGE", "value": 0}, "registers": {"R": {"at": 31}}}})"),
              "map:2: blocks.P.registers.R: P.R at c22:0x1F@0 overlaps with PAGE at c22:0x1F");
}

TEST(Layout, OfAPageWhoseSelectorLiesOnPage0IsRefused) {
    EXPECT_EQ(problemsOf(R"("registers": {"PAGE": {"at": "c22:31"}}, "blocks": {
        "P": {"at": "c22:0", "page": {"select": "PAGE", "value": 0}, "registers": {"SUB": {"at": 30}}},
        "Q": {"at": "c22:0", "page": {"select": "P.SUB", "value": 1}, "registers": {"R": {"at": 16}}}})"),
              "map:3: blocks.Q.registers.R: the page's select register lies on a page itself");
}

TEST(Layout, MayHaveTheLastPageOfASelectorAndTheLastAddressOfASpace) {
    EXPECT_EQ(
        problemsOf(
            R"("registers": {"PAGE": {"at": "c22:31", "fields": {"NR": "1:0"}}, "LAST": {"at": "7.0xFFFF"}},
        "blocks": {"P": {"at": "c22:0", "page": {"select": "PAGE.NR", "value": 3}, "registers": {"R": {"at": 16}}}})"),
        "");
}

TEST(Layout, LeavesElementsOfAPagedBlockWithoutAStepOnOnePage) {
    const RegisterMap map = mapOf(R"("registers": {"PAGE": {"at": "c22:31"}},
        "blocks": {"P": {"at": "c22:0", "count": 2, "stride": 4, "page": {"select": "PAGE", "value": 3},
                         "registers": {"R": {"at": 16}}}})");
    EXPECT_THAT(lines(map), ElementsAre("PAGE c22:0x1F", "P[0].R c22:0x10@3", "P[1].R c22:0x14@3"));
}

TEST(Layout, OfStridesAndPagesTakesNumbersOf32Bits) {
    const auto problemsWith = [](const std::string& stride, const std::string& value,
                                 const std::string& step) {
        return problemsOf(
            R"("registers": {"PAGE": {"at": "ext32:0"}}, "blocks": {"P": {"at": "ext32:16", "count": 1,
            "stride": )" +
            stride + R"(, "page": {"select": "PAGE", "value": )" + value + R"(, "step": )" + step +
            R"(}, "registers": {"R": {"at": 0}}}})");
    };
    const std::string most = "4294967295";
    const std::string more = "4294967296";
    const std::string refusal = ": has to be from 0 to 4294967295";
    EXPECT_EQ(problemsWith(most, most, most), "");
    EXPECT_EQ(problemsWith("0", "0", "0"), "");
    EXPECT_EQ(problemsWith(more, "0", "0"), "map:2: blocks.P.stride" + refusal);
    EXPECT_EQ(problemsWith("0", more, "0"), "map:2: blocks.P.page.value" + refusal);
    EXPECT_EQ(problemsWith("0", "0", more), "map:2: blocks.P.page.step" + refusal);
}

TEST(Layout, OfNamesTakes128CharactersWithTheBlocks) {
    const auto problemsOfName = [](std::size_t length) {
        return problemsOf(R"("blocks": {")" + std::string(64, 'B') + R"(": {"registers": {")" +
                          std::string(length - 65, 'R') + R"(": {"at": "7.1"}}}})");
    };
    EXPECT_EQ(problemsOfName(128), "");
    EXPECT_NE(problemsOfName(129).find(": has a name, with its blocks', longer than 128"), std::string::npos);
}

TEST(Layout, BehindTheLastAddressIsToldOfANameOf128Characters) {
    const std::string block(60, 'B');
    const std::string reg(64, 'R');
    EXPECT_EQ(problemsOf(R"("blocks": {")" + block + R"(": {"at": "c22:30", "registers": {")" + reg +
                         R"(": {"at": "1", "count": 2}}}})"),
              "map:1: blocks." + block + ".registers." + reg + ": " + block + '.' + reg +
                  "[1] lies beyond the last address of its space");
}

TEST(Layout, OfBlocksGoesEightDeep) {
    const auto problemsOfDepth = [](int depth) {
        std::string text = R"("registers": {"R": {"at": "7.1"}})";
        for (int i = 0; i < depth; ++i)
            text = R"("blocks": {"B": {)" + text + "}}";
        return problemsOf(text);
    };
    EXPECT_EQ(problemsOfDepth(8), "");
    EXPECT_NE(problemsOfDepth(9).find(": lies deeper within blocks than 8"), std::string::npos);
}

TEST(Layout, HasRoomFor131072RegistersAndBlocks) {
    const std::string registers = R"("registers": {"R": {"at": "ext32:0", "count": 131072})";
    EXPECT_EQ(mapOf(registers + "}").size(), 131072U);
    EXPECT_EQ(problemsOf(registers + R"(, "S": {"at": "7.1"}})"),
              "map:1: registers.S: there are more registers than 131072");
    const std::string blocks = R"("blocks": {"B": {"count": 131072})";
    EXPECT_EQ(problemsOf(blocks + "}"), "");
    EXPECT_EQ(problemsOf(blocks + R"(, "C": {}})"), "map:1: blocks.C: there are more blocks than 131072");
}

TEST(Layout, OfAnArrayBesideARegisterOfItsNameIsRefused) {
    EXPECT_EQ(problemsOf(R"("registers": {"L": {"at": "7.1"}, "L[0]": {"at": "7.2"}})"),
              "map:1: registers.L[0]: 'L' is there without an index, too");
}

TEST(Layout, TellsWhatItOverlapsWithFarBehindTheFirstRegister) {
    EXPECT_EQ(problemsOf(R"("registers": {"A": {"at": "30.0", "count": 80}, "PAGE": {"at": "30.100"}},
        "blocks": {"P": {"at": "30.0", "page": {"select": "PAGE", "value": 3}, "registers": {"R": {"at": 79}}}})"),
              "map:2: blocks.P.registers.R: P.R at 30.0x004F@3 overlaps with A[79] at 30.0x004F");
}

} // namespace
} // namespace OrvaneTest
