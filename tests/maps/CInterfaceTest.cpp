// The maps of C: statuses, records, texts, and what is refused.
#include <algorithm>
#include <gtest/gtest.h>
#include <orvane/maps.h>
#include <orvane/maps.hpp>
#include <string>
#include <tuple>
#include <vector>

namespace OrvaneTest {
namespace {

class CMaps : public testing::Test {
protected:
    void SetUp() override { ASSERT_EQ(orvane_map_ieee8023(&map), ORVANE_MAP_OK); }
    void TearDown() override { orvane_map_release(map); }

    // Takes a text over.
    static std::string take(char* text) {
        const std::string taken = text == nullptr ? "(null)" : text;
        orvane_map_free(text);
        return taken;
    }

    orvane_map* map = nullptr;
};

TEST_F(CMaps, ResolveAFieldWithItsRegister) {
    orvane_map_register reg;
    orvane_map_field field;
    int isField = 0;
    ASSERT_EQ(orvane_map_resolve(map, "AN.STATUS.LINK", &reg, &field, &isField, nullptr), ORVANE_MAP_OK);
    EXPECT_STREQ(reg.name, "AN.STATUS");
    EXPECT_EQ(reg.mmd, 7U);
    EXPECT_EQ(reg.number, 1U);
    EXPECT_EQ(reg.is_safe_to_read, 0);
    EXPECT_EQ(isField, 1);
    EXPECT_STREQ(field.access, "latching-low");
    EXPECT_EQ(field.mask, 4U);
}

TEST_F(CMaps, SuggestANameThatIsNearlyThere) {
    char* suggestion = nullptr;
    EXPECT_EQ(orvane_map_resolve(map, "an.status.link", nullptr, nullptr, nullptr, &suggestion),
              ORVANE_MAP_NOT_FOUND);
    EXPECT_EQ(take(suggestion), "AN.STATUS.LINK");
}

TEST_F(CMaps, FindByAddressAndListFields) {
    orvane_map_register reg;
    ASSERT_EQ(orvane_map_find(map, ORVANE_MAP_C22, 0, 0, -1, &reg), ORVANE_MAP_OK);
    EXPECT_STREQ(reg.name, "C22.CONTROL");
    orvane_map_field field;
    ASSERT_EQ(orvane_map_field_at(map, reg.index, 2, &field), ORVANE_MAP_OK);
    EXPECT_STREQ(field.name, "SPEED");
    std::uint64_t value = 0;
    const char* name = nullptr;
    ASSERT_EQ(orvane_map_choice_at(map, &field, 2, &value, &name), ORVANE_MAP_OK);
    EXPECT_EQ(value, 2U);
    EXPECT_STREQ(name, "1000 Mb/s");
    EXPECT_EQ(orvane_map_choice_at(map, &field, 4, &value, &name), ORVANE_MAP_NOT_FOUND);
    EXPECT_EQ(orvane_map_field_at(map, reg.index, reg.fields, &field), ORVANE_MAP_NOT_FOUND);
    EXPECT_EQ(orvane_map_find(map, ORVANE_MAP_C22, 0, 30, -1, &reg), ORVANE_MAP_NOT_FOUND);
    EXPECT_EQ(orvane_map_find(map, 9, 0, 30, -1, &reg), ORVANE_MAP_INVALID);
}

TEST_F(CMaps, TakeAFieldOutPutItInAndExplainIt) {
    orvane_map_field speed;
    ASSERT_EQ(orvane_map_resolve(map, "C22.CONTROL.SPEED", nullptr, &speed, nullptr, nullptr), ORVANE_MAP_OK);
    std::uint64_t number = 0;
    ASSERT_EQ(orvane_map_extract(map, &speed, 0x2000, &number), ORVANE_MAP_OK);
    EXPECT_EQ(number, 1U);
    ASSERT_EQ(orvane_map_insert(map, &speed, 0x8000, 2, &number, nullptr), ORVANE_MAP_OK);
    EXPECT_EQ(number, 0x8040U);
    char* text = nullptr;
    EXPECT_EQ(orvane_map_insert(map, &speed, 0, 4, &number, &text), ORVANE_MAP_INVALID);
    EXPECT_EQ(take(text), "SPEED: 0x4 does not fit into 2 bits");
    char* note = nullptr;
    ASSERT_EQ(orvane_map_explain(map, &speed, 2, &text, &note), ORVANE_MAP_OK);
    EXPECT_EQ(take(text), "1000 Mb/s");
    EXPECT_EQ(take(note), "");
}

TEST_F(CMaps, TellWhatIsWrongWithAText) {
    orvane_map* none = nullptr;
    char* problems = nullptr;
    const std::string text = "{\"format\": \"orvane-map-1\"}";
    EXPECT_EQ(orvane_map_parse(text.data(), text.size(), "x.json", nullptr, &none, &problems),
              ORVANE_MAP_INVALID);
    EXPECT_EQ(none, nullptr);
    EXPECT_EQ(take(problems), "x.json:1: 'name' is missing");
    EXPECT_EQ(orvane_map_load("/nowhere", nullptr, &none, &problems), ORVANE_MAP_INVALID);
    EXPECT_EQ(take(problems), "/nowhere: cannot be read: No such file or directory");
    EXPECT_EQ(orvane_map_load(nullptr, nullptr, &none, nullptr), ORVANE_MAP_INVALID);
}

TEST_F(CMaps, ApplyOverridesForAnIdentifier) {
    const std::string text =
        R"({"format": "orvane-map-1", "name": "t", "registers": {"R": {"at": "7.1", "reset": 1}},
        "overrides": [{"identifier": "0x10", "registers": {"R": {"reset": 2}}}]})";
    const std::uint32_t identifier = 0x10;
    orvane_map* own = nullptr;
    ASSERT_EQ(orvane_map_parse(text.data(), text.size(), nullptr, &identifier, &own, nullptr), ORVANE_MAP_OK);
    orvane_map_register reg;
    ASSERT_EQ(orvane_map_register_at(own, 0, &reg), ORVANE_MAP_OK);
    EXPECT_EQ(reg.reset, 2U);
    std::size_t size = 0;
    EXPECT_EQ(orvane_map_size(own, &size), ORVANE_MAP_OK);
    EXPECT_EQ(size, 1U);
    EXPECT_EQ(orvane_map_register_at(own, 1, &reg), ORVANE_MAP_NOT_FOUND);
    orvane_map_release(own);
}

TEST_F(CMaps, GiveNamesAndExportsAsTexts) {
    char* text = nullptr;
    ASSERT_EQ(orvane_map_match(map, "C22.ID*", &text), ORVANE_MAP_OK);
    EXPECT_EQ(take(text), "C22.ID1\nC22.ID2\n");
    ASSERT_EQ(orvane_map_search(map, "jabber", &text), ORVANE_MAP_OK);
    EXPECT_EQ(take(text), "C22.STATUS.JABBER\n");
    ASSERT_EQ(orvane_map_complete(map, "VEND", &text), ORVANE_MAP_OK);
    EXPECT_EQ(take(text), "VEND1.\nVEND2.\n");
    ASSERT_EQ(orvane_map_to_json(map, &text), ORVANE_MAP_OK);
    EXPECT_NE(take(text).find("\"LINK\": \"2 latching-low: "), std::string::npos);
    ASSERT_EQ(orvane_map_to_markdown(map, &text), ORVANE_MAP_OK);
    EXPECT_EQ(take(text).substr(0, 10), "# ieee8023");
    EXPECT_EQ(orvane_map_to_c_header(map, "9", &text), ORVANE_MAP_INVALID);
    ASSERT_EQ(orvane_map_to_c_header(map, "X", &text), ORVANE_MAP_OK);
    EXPECT_NE(take(text).find("#define X_AN_STATUS_LINK_MASK 0x0004U"), std::string::npos);
}

TEST_F(CMaps, ImportFilesAndTellWhatIsLeftBehind) {
    orvane_map* own = nullptr;
    char* problems = nullptr;
    const std::string path = std::string(ORVANE_MAP_FILES) + "/imported/board.xml";
    ASSERT_EQ(orvane_map_import(path.c_str(), ORVANE_MAP_EXT32, 0, &own, &problems), ORVANE_MAP_OK);
    const std::string reports = take(problems);
    EXPECT_NE(reports.find("TWICE: its place at ext32:0x00004000 is taken; left out\n"), std::string::npos);
    EXPECT_EQ(std::count(reports.begin(), reports.end(), '\n'), 4);
    orvane_map_release(own);
    EXPECT_EQ(orvane_map_import("/nowhere", ORVANE_MAP_EXT32, 0, &own, nullptr), ORVANE_MAP_INVALID);
}

TEST_F(CMaps, TakeTheFourSpacesAndMmdsUpTo31) {
    orvane_map_register reg;
    for (const auto& [space, mmd, status] :
         std::vector<std::tuple<int, unsigned, int>>{{ORVANE_MAP_C45, 31, ORVANE_MAP_NOT_FOUND},
                                                     {ORVANE_MAP_SMBUS, 0, ORVANE_MAP_NOT_FOUND},
                                                     {-1, 0, ORVANE_MAP_INVALID},
                                                     {ORVANE_MAP_SMBUS + 1, 0, ORVANE_MAP_INVALID},
                                                     {ORVANE_MAP_C45, 32, ORVANE_MAP_INVALID}}) {
        SCOPED_TRACE(std::to_string(space) + ' ' + std::to_string(mmd));
        EXPECT_EQ(orvane_map_find(map, space, mmd, 0xFFFF, -1, &reg), status);
        orvane_map* own = nullptr;
        const std::string path = std::string(ORVANE_MAP_FILES) + "/imported/board.csv";
        EXPECT_EQ(orvane_map_import(path.c_str(), space, mmd, &own, nullptr),
                  status == ORVANE_MAP_INVALID ? ORVANE_MAP_INVALID : ORVANE_MAP_OK);
        orvane_map_release(own);
    }
}

TEST_F(CMaps, TellTheIndexOfARegisterAndOfAField) {
    orvane_map_register reg;
    orvane_map_field field;
    ASSERT_EQ(orvane_map_resolve(map, "C22.STATUS.LINK", &reg, &field, nullptr, nullptr), ORVANE_MAP_OK);
    orvane_map_field same;
    ASSERT_EQ(orvane_map_field_at(map, reg.index, field.index, &same), ORVANE_MAP_OK);
    EXPECT_EQ(field.register_index, reg.index);
    EXPECT_STREQ(same.name, "LINK");
}

TEST_F(CMaps, TellTheIndexesOfRegistersFarBehindTheFirst) {
    const Orvane::RegisterMap same = Orvane::RegisterMap::ieee8023();
    ASSERT_GT(same.size(), 100U);
    std::size_t index = 0;
    for (const Orvane::MapRegister& each : same.registers()) {
        orvane_map_register reg;
        orvane_map_field field;
        ASSERT_EQ(orvane_map_resolve(map, each.name().c_str(), &reg, &field, nullptr, nullptr),
                  ORVANE_MAP_OK);
        EXPECT_EQ(reg.index, index) << each.name();
        if (!each.fields().empty()) {
            const std::string name = each.name() + '.' + each.fields().back().name;
            ASSERT_EQ(orvane_map_resolve(map, name.c_str(), &reg, &field, nullptr, nullptr), ORVANE_MAP_OK);
            EXPECT_EQ(field.register_index, index) << name;
            EXPECT_EQ(field.index, each.fields().size() - 1) << name;
        }
        ++index;
    }
}

} // namespace
} // namespace OrvaneTest
