// Every register of a map is found by its name, whether an array repeats it or not.
#include "ov_sys/maps/NameIndex.h"

#include "ov_sys/maps/Content.h"
#include "tests/support/maps/MapTexts.h"

#include <gmock/gmock.h>
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

// An index of registers of these names, without a map around.
class Indexed {
public:
    explicit Indexed(std::vector<std::string> names) : names_(std::move(names)) {
        for (const std::string& name : names_)
            registers_.push_back(MapBuilder::registerOf(name, {}, definition_));
        twice = index.fill(registers_);
    }
    // The names that are not found where they are.
    std::vector<std::string> lost() const {
        std::vector<std::string> missed;
        for (std::size_t i = 0; i < names_.size(); ++i)
            if (index.find(names_[i]) != i)
                missed.push_back(names_[i]);
        return missed;
    }

    Maps::NameIndex index;
    std::vector<std::uint32_t> twice;

private:
    std::vector<std::string> names_;
    MapDefinition definition_;
    std::vector<MapRegister> registers_;
};

// Arrays of so many elements, one in each of what is around.
std::vector<std::string> elementsIn(const std::vector<std::string>& around, const std::string& name,
                                    unsigned count) {
    std::vector<std::string> names;
    for (const std::string& each : around)
        for (unsigned i = 0; i < count; ++i)
            names.push_back(each + name + '[' + std::to_string(i) + ']');
    return names;
}

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
    for (const char* name :
         {"CHIP[3].ID", "CHIP[0].R[12]", "CHIP[0].R[01]", "CHIP[0].R[]", "CHIP[0].R[x]", "CHIP[0].R",
          "CHIP.R[0]", "CHIP[0].LANE[4].A", "CHIP[0].R[4294967296]", "CHIP[0].R[0", "CHIP[0].R[0]]",
          "CHIP[0].R[:]", "CHIP[0].R[1/]", "SHIP[0].ID", "CLIP[0].ID", "[0]", ""})
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

TEST(NameIndex, HasOneEntryForAllElementsOfARegularArray) {
    const Indexed indexed(elementsIn(elementsIn(elementsIn({"X"}, "CHIP", 3), ".LANE", 4), ".R", 12));
    EXPECT_EQ(indexed.index.entries(), 1U);
    EXPECT_EQ(indexed.lost(), kNone);
    EXPECT_EQ(indexed.index.find("XCHIP[3].LANE[0].R[0]"), Maps::NameIndex::kNone);
}

TEST(NameIndex, HasOneEntryForEachOfTheArraysOfAMap) {
    std::vector<std::string> names{"ID"};
    for (const std::string& lane : elementsIn({""}, "LANE", 11))
        for (const char* name : {".A", ".B", ".C"})
            names.push_back(lane + name);
    const Indexed indexed(names);
    EXPECT_EQ(indexed.index.entries(), 1U + 3);
    EXPECT_EQ(indexed.lost(), kNone);
}

TEST(NameIndex, HasAnEntryForEachElementOfAnIrregularArray_AndOneMoreForAll) {
    const Indexed indexed({"A[0]", "A[1]", "A[2]", "B[2]", "B[1]", "B[0]", "C[0]", "C[1]", "D[0]", "D[2]"});
    EXPECT_EQ(indexed.index.entries(), 1U + 4 + 1 + 3);
    EXPECT_EQ(indexed.lost(), kNone);
    EXPECT_EQ(indexed.index.find("D[1]"), Maps::NameIndex::kNone);
}

TEST(NameIndex, SharesTheEntriesOfNamesOf128LettersTwelveIndicesAndSixDigits) {
    const auto entriesOf = [](const std::vector<std::string>& names) {
        const Indexed indexed(names);
        EXPECT_EQ(indexed.lost(), kNone);
        return indexed.index.entries();
    };
    EXPECT_EQ(entriesOf(elementsIn({""}, std::string(125, 'n'), 3)), 1U);
    EXPECT_EQ(entriesOf(elementsIn({""}, std::string(126, 'n'), 3)), 3U);
    EXPECT_EQ(entriesOf(elementsIn({"R[0][0][0][0][0][0][0][0][0][0][0]"}, "", 3)), 1U);
    EXPECT_EQ(entriesOf(elementsIn({"R[0][0][0][0][0][0][0][0][0][0][0][0]"}, "", 3)), 3U);
    EXPECT_EQ(entriesOf(elementsIn({"R"}, "", 100001)), 1U);
    EXPECT_EQ(entriesOf({"R[0]", "R[1000000]"}), 2U);
}

TEST(NameIndex, TellsOfNamesThatAreThereTwice_AndFindsTheFirst) {
    const Indexed indexed({"A[0]", "A[1]", "A[0]", "B", "B"});
    EXPECT_THAT(indexed.twice, testing::ElementsAre(2, 4));
    EXPECT_EQ(indexed.index.find("A[0]"), 0U);
    EXPECT_EQ(indexed.index.find("B"), 3U);
}

} // namespace
} // namespace OrvaneTest
