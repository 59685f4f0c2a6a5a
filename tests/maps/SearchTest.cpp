// Names by pattern, word, beginning and likeness.
#include "tests/support/maps/MapTexts.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace OrvaneTest {
namespace {

using namespace Orvane;
using testing::ElementsAre;
using testing::IsEmpty;

class Search : public testing::Test {
protected:
    const RegisterMap map = mapOf(R"("blocks": {
        "AN": {"at": "7.0", "registers": {
            "CTRL": {"at": 0, "text": "Control of negotiation", "fields": {"RESTART": "9: Begins anew", "ENABLE": "12"}},
            "STATUS": {"at": 1, "fields": {"LINK": "2: The link is up"}}}},
        "PMA": {"at": "1.0", "registers": {"STATUS": {"at": 1, "fields": {"LINK": "2"}}},
            "blocks": {"LANE": {"at": 16, "count": 2, "stride": 1, "registers": {"R": {"at": 0}}}}}})");

    static std::vector<std::string> names(const std::vector<MapReference>& list) {
        std::vector<std::string> all;
        for (const MapReference& each : list)
            all.push_back(each.name());
        return all;
    }
};

TEST_F(Search, OneStarStaysWithinOneLevel) {
    EXPECT_THAT(names(map.match("AN.*")), ElementsAre("AN.CTRL", "AN.STATUS"));
    EXPECT_THAT(names(map.match("*.STATUS")), ElementsAre("AN.STATUS", "PMA.STATUS"));
    EXPECT_THAT(names(map.match("AN.*.*")),
                ElementsAre("AN.CTRL.RESTART", "AN.CTRL.ENABLE", "AN.STATUS.LINK"));
}

TEST_F(Search, TwoStarsReachAllLevels) {
    EXPECT_THAT(names(map.match("**.LINK")), ElementsAre("AN.STATUS.LINK", "PMA.STATUS.LINK"));
    EXPECT_THAT(names(map.match("PMA.**")),
                ElementsAre("PMA.STATUS", "PMA.STATUS.LINK", "PMA.LANE[0].R", "PMA.LANE[1].R"));
}

TEST_F(Search, APatternWithoutStarsIsAName) {
    EXPECT_THAT(names(map.match("AN.STATUS")), ElementsAre("AN.STATUS"));
    EXPECT_THAT(names(map.match("PMA.LANE[?].R")), ElementsAre("PMA.LANE[0].R", "PMA.LANE[1].R"));
    EXPECT_THAT(names(map.match("AN")), IsEmpty());
    EXPECT_THAT(names(map.match("")), IsEmpty());
}

TEST_F(Search, AManyStarredPatternEndsSoon) {
    std::string pattern;
    for (int i = 0; i < 2000; ++i)
        pattern += "*A";
    EXPECT_THAT(names(map.match(pattern)), IsEmpty());
}

TEST_F(Search, FindsWordsInNamesAndTextsInAnyCase) {
    EXPECT_THAT(names(map.search("link")), ElementsAre("AN.STATUS.LINK", "PMA.STATUS.LINK"));
    EXPECT_THAT(names(map.search("NEGOTIATION an")), ElementsAre("AN.CTRL"));
    EXPECT_THAT(names(map.search("  ")), IsEmpty());
}

TEST_F(Search, CompletesLevelByLevel) {
    EXPECT_THAT(map.complete(""), ElementsAre("AN.", "PMA."));
    EXPECT_THAT(map.complete("PM"), ElementsAre("PMA."));
    EXPECT_THAT(map.complete("AN."), ElementsAre("AN.CTRL", "AN.STATUS"));
    EXPECT_THAT(map.complete("AN.CTRL"), ElementsAre("AN.CTRL"));
    EXPECT_THAT(map.complete("AN.CTRL."), ElementsAre("AN.CTRL.RESTART", "AN.CTRL.ENABLE"));
    EXPECT_THAT(map.complete("X"), IsEmpty());
}

TEST_F(Search, ANameThatIsNearlyThereIsSuggested) {
    EXPECT_EQ(map.suggestion("an.status.link"), "AN.STATUS.LINK");
    EXPECT_EQ(map.suggestion("AN.STATSU"), "AN.STATUS");
    EXPECT_EQ(map.suggestion("COMPLETELY.DIFFERENT"), "");
    EXPECT_EQ(map.suggestion(std::string(100000, 'A')), "");
    try {
        map.at("AN.STATUS.LINC");
        FAIL() << "found";
    } catch (const MapError& error) {
        EXPECT_STREQ(error.what(),
                     "there is no 'AN.STATUS.LINC' in the map test; did you mean 'AN.STATUS.LINK'?");
    }
}

TEST_F(Search, NamesAreExact) {
    EXPECT_EQ(map.find("an.status"), nullptr);
    EXPECT_EQ(map.resolve("AN.STATUS.LINK").name(), "AN.STATUS.LINK");
    EXPECT_FALSE(map.resolve("AN.STATUS."));
    EXPECT_FALSE(map.resolve(""));
}

TEST_F(Search, StarsAlsoStandForNoText) {
    for (const char* pattern : {"AN.*CTRL", "AN.CTRL*", "*AN.CTRL", "**AN.CTRL", "***AN.CTRL", "A**N.C*T*RL"})
        EXPECT_THAT(names(map.match(pattern)), ElementsAre("AN.CTRL")) << pattern;
}

TEST_F(Search, OneStarAndAQuestionMarkStandForNoDot) {
    EXPECT_THAT(names(map.match("*.R")), IsEmpty());
    EXPECT_THAT(names(map.match("PMA?STATUS")), IsEmpty());
}

TEST_F(Search, OfLettersOnlyIgnoresTheCase) {
    const RegisterMap signs = mapOf(R"("registers": {"AZ": {"at": "7.1", "text": "@["}})");
    EXPECT_THAT(names(signs.search("az")), ElementsAre("AZ"));
    EXPECT_THAT(names(signs.search("@[")), ElementsAre("AZ"));
    EXPECT_THAT(names(signs.search("`")), IsEmpty());
    EXPECT_THAT(names(signs.search("{")), IsEmpty());
}

TEST_F(Search, ANameIsSuggestedUpToThreeLettersOff) {
    const RegisterMap near = mapOf(
        R"("registers": {"ABCDEFGHIJKL": {"at": "7.1"}, "ABCDEFGHIJKX": {"at": "7.2"}, "XY": {"at": "7.3"}})");
    const auto suggested = [&](const char* name) { return near.suggestion(name); };
    for (const char* name : {"abcdefghijkl", "xxxDEFGHIJKL", "DEFGHIJKL", "123ABCDEFGHIJKL", "BACDEFGHIJKL",
                             "ABCDEFGHI", "ABCDEFGHIJKL123", "1BC2EF3HIJKL"})
        EXPECT_EQ(suggested(name), "ABCDEFGHIJKL") << name;
    for (const char* name : {"xxxxEFGHIJKL", "EFGHIJKL", "1234ABCDEFGHIJKL", "1BC2EF3HI4KL", "XZ", "Z",
                             "DEFGHIJKL123", "12ABCXYFGHIJKL", "ABCXYFGHIJ"})
        EXPECT_EQ(suggested(name), "") << name;
    EXPECT_EQ(suggested("ABCDEFGHIJXX"), "ABCDEFGHIJKX");
    EXPECT_EQ(suggested("xy"), "XY");
    EXPECT_EQ(suggested("XYZ"), "XY");
}

} // namespace
} // namespace OrvaneTest
