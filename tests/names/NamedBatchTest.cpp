// The steps that registers on pages need within a batch.
#include "tests/support/names/MappedBoard.h"

namespace OrvaneTest {
namespace {

using namespace Orvane;
using ::OrvaneTest::Names;

class NamedBatchTest : public testing::Test, protected MappedBoard {
protected:
    const MapRegister& page = *map.find("CHIP.PAGE");
    NamedBatch batch{{{&page, 0x0047}}};

    const MapRegister& named(const char* name) const { return *map.find(name); }
    std::string planned() { return plan(batch.finish(), RegisterMap()); }
};

TEST_F(NamedBatchTest, ReadsWhatASelectRegisterHeld_ThoughItIsReadAfterItsPages) {
    set(0x1F, 0x0047);
    const auto height = batch.read(named("CHIP.TWO.HEIGHT"));
    const auto select = batch.read(page);
    const BatchResult result = phy.run(batch.finish());
    EXPECT_EQ(result[height], 22U);
    EXPECT_EQ(result[select], 0x0047U);
}

TEST_F(NamedBatchTest, LeavesASelectRegisterAlone_WhenNothingTurnedIt) {
    batch.read(page);
    batch.write(named("CHIP.CONTROL"), 0x2001);
    EXPECT_EQ(planned(), "read  30.0xC01F\n"
                         "write 30.0xC000 0x2001\n");
}

TEST_F(NamedBatchTest, TurnsAPageOnce_AndPutsItBackInTheEnd) {
    batch.read(named("CHIP.TWO.HEIGHT"));
    batch.write(named("CHIP.TWO.HEIGHT"), 3);
    batch.read(named("CHIP.ONE.WIDTH"));
    EXPECT_EQ(planned(), "write 30.0xC01F 0x0042\n"
                         "read  30.0xC010\n"
                         "write 30.0xC010 0x0003\n"
                         "write 30.0xC01F 0x0041\n"
                         "read  30.0xC011\n"
                         "write 30.0xC01F 0x0047\n");
}

TEST_F(NamedBatchTest, PutsBackWhatItWroteToASelectRegisterItself) {
    batch.write(page, 0x0091);
    batch.read(named("CHIP.TWO.HEIGHT"));
    EXPECT_EQ(planned(), "write 30.0xC01F 0x0091\n"
                         "write 30.0xC01F 0x0092\n"
                         "read  30.0xC010\n"
                         "write 30.0xC01F 0x0091\n");
}

} // namespace
} // namespace OrvaneTest
