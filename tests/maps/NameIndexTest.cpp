// Every register of a map is found by its name, whether an array repeats it or not.
#include "ov_sys/maps/NameIndex.h"

#include "tests/support/maps/MapTexts.h"

#include <gtest/gtest.h>

namespace OrvaneTest {
namespace {

using namespace Orvane;

// The registers that are not found where they are.
std::vector<std::string> lost(const RegisterMap& map) {
    std::vector<std::string> names;
    for (const MapRegister& each : map.registers())
        if (map.find(each.name()) != &each)
            names.push_back(each.name());
    return names;
}

const std::vector<std::string> kNone;

RegisterMap nested() {
    return mapOf(R"("blocks": {"CHIP": {"at": "ext32:0", "count": 3, "stride": "0x1000", "registers": {
        "ID": {"at": 0}, "R": {"at": 4, "count": 12}},
        "blocks": {"LANE": {"at": "0x100", "count": 4, "stride": "0x40", "registers": {"A": {"at": 0}, "B": {"at": 4, "count": 2}}}}}})");
}

TEST(NameIndex, FindsEveryElementOfArraysWithinArrays) {
    const RegisterMap map = nested();
    EXPECT_EQ(map.size(), 3U * (1 + 12 + 4 * 3));
    EXPECT_EQ(lost(map), kNone);
}

TEST(NameIndex, FindsNoElementThatIsNotThere) {
    const RegisterMap map = nested();
    for (const char* name : {"CHIP[3].ID", "CHIP[0].R[12]", "CHIP[0].R[01]", "CHIP[0].R[]", "CHIP[0].R[x]",
                             "CHIP[0].R", "CHIP.R[0]", "CHIP[0].LANE[4].A", "CHIP[0].R[4294967296]",
                             "CHIP[0].R[0", "CHIP[0].R[0]]", "[0]", ""})
        EXPECT_EQ(map.find(name), nullptr) << name;
    EXPECT_EQ(map.find(std::string(1000, '[')), nullptr);
}

TEST(NameIndex, FindsElementsThatAreDeclaredOneByOne) {
    const RegisterMap map = mapOf(R"("blocks": {
        "L[0]": {"at": "30.0", "registers": {"A": {"at": 0}, "B": {"at": 1}}},
        "L[1]": {"at": "30.16", "registers": {"C": {"at": 2}, "A": {"at": 0}}},
        "L[2]": {"at": "30.32", "registers": {"A": {"at": 0}}}})");
    EXPECT_EQ(lost(map), kNone);
    EXPECT_EQ(map.find("L[0].C"), nullptr);
    EXPECT_EQ(map.find("L[2].B"), nullptr);
}

TEST(NameIndex, FindsElementsThatAreDeclaredBackwards) {
    const RegisterMap map =
        mapOf(R"("registers": {"R[1]": {"at": "30.1"}, "R[0]": {"at": "30.0"}, "S": {"at": "30.2"}})");
    EXPECT_EQ(lost(map), kNone);
    EXPECT_EQ(map.find("R[2]"), nullptr);
}

} // namespace
} // namespace OrvaneTest
