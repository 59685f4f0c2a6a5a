// orvane restore.
#include "tests/support/tools/Program.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <orvane/lab_maps.h>

namespace OrvaneTest {
namespace {

using OrvaneSim::Space;

constexpr const char* kFinch = R"({
  "format": "orvane-map-1", "name": "finch",
  "blocks": {"CHIP": {"at": "30.0xC000", "registers": {
    "CONTROL": {"at": 0, "fields": {"RESET": "15 self-clearing", "SPEED": "1:0"}},
    "STATUS": {"at": 1, "access": "ro"},
    "ERRORS": {"at": 2, "reset": 5, "access": "clear-on-read"}}}}})";

class OrvaneRestore : public testing::Test, protected OneBoardLab {
protected:
    Folder folder;
    const std::string file = folder.path("a.dump");

    void set(unsigned number, unsigned value, unsigned port = 0) {
        board.setRegister(Space::C45, port, 3, 0x1EC000 + number, value);
    }
    unsigned held(unsigned number, unsigned port = 0) const {
        return board.registerValue(Space::C45, port, 3, 0x1EC000 + number);
    }
    void dump(const std::string& range) const {
        EXPECT_EQ(run({"dump", "OV0001:0", "3", range, "-o", file}).status, 0);
    }
};

TEST_F(OrvaneRestore, WritesADumpBackToItsPhy) {
    set(0, 0x1111);
    set(1, 0x2222);
    dump("30.0xC000+2");
    set(0, 7);
    set(1, 8);
    EXPECT_EQ(run({"restore", file}), prints(file + ": 2 registers written\n"));
    EXPECT_EQ(held(0), 0x1111U);
    EXPECT_EQ(held(1), 0x2222U);
}

TEST_F(OrvaneRestore, WritesToOtherPhys_AndOnlyWhatItIsToldTo) {
    set(0, 0x1111);
    set(1, 0x2222);
    dump("30.0xC000+2");
    EXPECT_EQ(run({"restore", file, "OV0001:1", "3", "--only", "30.0xC001"}),
              prints(file + ": 1 registers written\n"));
    EXPECT_EQ(held(0, 1), 0U);
    EXPECT_EQ(held(1, 1), 0x2222U);
}

TEST_F(OrvaneRestore, ShowsWhatItWouldWriteAndSendsNothing) {
    set(0, 0x1111);
    dump("30.0xC000+2");
    board.forgetRequests();
    EXPECT_EQ(run({"restore", file, "--dry-run"}),
              prints("write 30.0xC000 0x1111\nwrite 30.0xC001 0x0000\n"));
    EXPECT_EQ(board.requests().size(), 0U);
}

TEST_F(OrvaneRestore, IsRefusedForAnotherKindOfPhyUnlessItIsForced) {
    set(0, 0x1111);
    dump("30.0xC000");
    board.setRegister(Space::C45, 1, 3, 0x10002, 0x0022);
    EXPECT_EQ(
        run({"restore", file, "OV0001:1", "3"}),
        fails(1, "orvane: OV0001:1: restore PHY 3: " + file +
                     " is of a PHY 0x0A5C1E83, this one is 0x00221E83 (--force takes it all the same)\n"));
    EXPECT_EQ(held(0, 1), 0U);
    EXPECT_EQ(run({"restore", file, "OV0001:1", "3", "--force"}).status, 0);
    EXPECT_EQ(held(0, 1), 0x1111U);
}

TEST_F(OrvaneRestore, NamesWhatDidNotTake) {
    board.useMap({0, 3, 0x0A5C1E83, OrvaneSim::mappedRegisters(Orvane::RegisterMap::parse(kFinch))});
    const std::string golden = folder.write(
        "golden", "# orvane dump 1\n# device OV0001:0\n# phy 3\n# space c45\n30.0xC001 0x0007\n");
    EXPECT_EQ(run({"restore", golden}),
              fails(1, "orvane: OV0001:0: restore PHY 3: 1 of 1 registers did not take\n",
                    "ADDRESS    WANTED  READ BACK\n30.0xC001  0x0007  0x0000\n"));
}

TEST_F(OrvaneRestore, StartsAndClearsNothingThatItsMapKnows) {
    board.useMap({0, 3, 0x0A5C1E83, OrvaneSim::mappedRegisters(Orvane::RegisterMap::parse(kFinch))});
    const std::string map = folder.write("finch.json", kFinch);
    const std::string golden =
        folder.write("golden", "# orvane dump 2\n# device OV0001:0\n# phy 3\n# space c45\n"
                               "30.0xC000 0x8002\n30.0xC001 0x0007\n30.0xC002 0x0001\n");
    EXPECT_EQ(run({"restore", golden, "--map", map, "--dry-run"}),
              prints("write 30.0xC000 0x0002  CHIP.CONTROL: RESET 0, SPEED 2\n"));
    EXPECT_EQ(run({"restore", golden, "--map", map}), prints(golden + ": 1 registers written\n"));
    EXPECT_EQ(held(2), 5U);
}

} // namespace
} // namespace OrvaneTest
