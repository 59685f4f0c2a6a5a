// What batches and routed accesses would send, against what they do send.
#include "tests/support/names/MappedBoard.h"

namespace OrvaneTest {
namespace {

using namespace Orvane;
using ::OrvaneTest::Names;

class PlanTest : public testing::Test, protected MappedBoard {
protected:
    // The addresses that the board was asked for.
    std::vector<std::uint32_t> asked() const {
        std::vector<std::uint32_t> words;
        for (const Request& request : board.requests("mdio")) {
            const auto arguments = argumentsOf(request);
            for (const auto& word : arguments["addresses"])
                words.push_back(word.get<std::uint32_t>() & 0x1FFFFFU);
        }
        return words;
    }
    static std::vector<std::uint32_t> wordsOf(const Batch& batch) {
        std::vector<std::uint32_t> words;
        for (const Batch::Operation& each : batch.operations())
            words.push_back(each.address.word());
        return words;
    }
};

TEST_F(PlanTest, NamesWhatWouldBeSent_OnEachPage) {
    Batch batch;
    batch.write({30, 0xC000}, 0x2001);
    batch.write({30, 0xC01F}, 2);
    batch.read({30, 0xC010});
    batch.read({1, 1});
    EXPECT_EQ(plan(batch, map),
              "write 30.0xC000 0x2001  CHIP.CONTROL: RESET 0, MODEL 0, SPEED 100 Mb/s, LED 1\n"
              "write 30.0xC01F 0x0002  CHIP.PAGE: OTHER 0x0, NUMBER 0x2\n"
              "read  30.0xC010         CHIP.TWO.HEIGHT\n"
              "read  1.0x0001\n");
    EXPECT_EQ(accesses(), Names{});
}

TEST_F(PlanTest, NamesARegisterOnThePageThatAWholeRegisterSelects) {
    give(R"("registers": {"PAGE": {"at": "30.31"}},
        "blocks": {"THREE": {"at": "30.16", "page": {"select": "PAGE", "value": 3}, "registers": {"HEIGHT": {"at": 0}}}})");
    Batch batch;
    batch.read({30, 16});
    batch.write({30, 31}, 3);
    batch.read({30, 16});
    EXPECT_EQ(plan(batch, map), "read  30.0x0010\n"
                                "write 30.0x001F 0x0003  PAGE\n"
                                "read  30.0x0010         THREE.HEIGHT\n");
}

TEST_F(PlanTest, NamesAWordBehindItsAddressAndValue) {
    Batch batch;
    batch.write(ext32(0x100), 0x5);
    EXPECT_EQ(plan(batch, map), "write ext32.0x00000100 0x00000005  WORD\n");
}

TEST_F(PlanTest, ExpandsAReadByFirmware) {
    EXPECT_EQ(plan(routedSteps({28, 0x0123}), RegisterMap()), "write 30.0xC47F 0x0000\n"
                                                              "write 30.0xC47C 0x0123\n"
                                                              "write 30.0xC47E 0x011C\n"
                                                              "read  30.0xC47F\n"
                                                              "read  30.0xC47D\n");
    EXPECT_EQ(accesses(), Names{});
}

TEST_F(PlanTest, ExpandsAWriteOverClause22) {
    RegisterPaths over;
    over.overClause22 = true;
    EXPECT_EQ(plan(routedSteps({7, 0x0010}, 0xABCD, over), RegisterMap()), "write c22.13 0x0007\n"
                                                                           "write c22.14 0x0010\n"
                                                                           "write c22.13 0x4007\n"
                                                                           "write c22.14 0xABCD\n");
}

TEST_F(PlanTest, OfARoutedWriteIsWhatTheWriteSends) {
    const Phy plain = rack.open("board7:0").phy(0);
    RegisterPaths noFirmware;
    noFirmware.byFirmware = {false, false, false, false, false};
    for (const RegisterAddress address :
         {RegisterAddress{10, 0x55}, RegisterAddress{11, 0x1004}, RegisterAddress{27, 0x20},
          RegisterAddress{28, 0x0101}, RegisterAddress{1, 5}}) {
        board.forgetRequests();
        plain.routed(noFirmware).write(address, 0x1234);
        EXPECT_EQ(wordsOf(routedSteps(address, 0x1234, noFirmware)), asked()) << toText(address);
    }
}

TEST_F(PlanTest, IsEmpty_WhereNoPathLeads) {
    RegisterPaths noFirmware;
    noFirmware.byFirmware = {false, false, false, false, false};
    EXPECT_EQ(routedSteps({28, 0x0700}, std::nullopt, noFirmware).size(), 0U);
    EXPECT_EQ(routedSteps({11, 0x4000}, std::nullopt, noFirmware).size(), 0U);
    EXPECT_EQ(routedSteps({11, 0x4000}, 1, noFirmware).size(), 0U);
    EXPECT_EQ(routedSteps(clause22(3)).size(), 0U);
}

TEST_F(PlanTest, OfARoutedWriteTakesValuesOf16Bits) {
    EXPECT_GT(routedSteps({28, 0x0123}, 0xFFFF).size(), 0U);
    EXPECT_EQ(routedSteps({28, 0x0123}, 0x10000).size(), 0U);
}

} // namespace
} // namespace OrvaneTest
