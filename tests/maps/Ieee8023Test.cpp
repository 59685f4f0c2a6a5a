// The map of IEEE 802.3 that comes with the library.
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <orvane/maps.hpp>

namespace OrvaneTest {
namespace {

using namespace Orvane;

const RegisterMap& ieee() {
    return RegisterMap::ieee8023();
}

TEST(Ieee8023, HasClause22AndTheMmdsOfClause45) {
    std::set<std::string> places;
    for (const MapRegister& each : ieee().registers())
        places.insert(std::string(nameOf(each.address().space)) + " " + std::to_string(each.address().mmd));
    EXPECT_THAT(places, testing::ElementsAre("c22 0", "c45 1", "c45 3", "c45 30", "c45 31", "c45 4", "c45 5",
                                             "c45 6", "c45 7"));
    for (std::uint32_t number = 0; number < 16; ++number)
        EXPECT_NE(ieee().find(MapAddress{MapSpace::c22, 0, number}), nullptr) << number;
}

TEST(Ieee8023, ExplainsEveryRegisterAndField) {
    for (const MapRegister& reg : ieee().registers()) {
        EXPECT_FALSE(reg.text().empty()) << reg.name();
        for (const MapField& field : reg.fields())
            EXPECT_FALSE(field.text.empty()) << reg.name() << '.' << field.name;
    }
}

TEST(Ieee8023, NamesTheLinkOfAutoNegotiation) {
    const MapReference link = ieee().at("AN.STATUS.LINK");
    EXPECT_EQ(link.reg->address().text(), "7.0x0001");
    EXPECT_EQ(link.field->mask, 0x0004U);
    EXPECT_EQ(link.field->access, MapAccess::latchingLow);
}

TEST(Ieee8023, HasEveryLinkLatchedLowAndEveryFaultThatLatchesLatchedHigh) {
    unsigned links = 0;
    for (const MapReference& each : ieee().match("**.LINK"))
        if (each.reg->name() != "PCS.R_STATUS1") { // tells how it is now, beside what latches
            EXPECT_EQ(each.field->access, MapAccess::latchingLow) << each.name();
            ++links;
        }
    EXPECT_EQ(links, 8U);
    for (const MapReference& each : ieee().match("**.?X_FAULT"))
        EXPECT_EQ(each.field->access, MapAccess::latchingHigh) << each.name();
}

TEST(Ieee8023, HasEveryResetSelfClearing) {
    const auto resets = ieee().match("**.RESET");
    EXPECT_EQ(resets.size(), 10U);
    for (const MapReference& each : resets) {
        EXPECT_EQ(each.field->access, MapAccess::selfClearing) << each.name();
        EXPECT_EQ(each.field->mask, 0x8000U) << each.name();
    }
}

TEST(Ieee8023, KeepsCountersThatAReadClearsFromBeingReadByTheWay) {
    for (const char* name : {"C22.GIGABIT_STATUS", "PCS.EEE_WAKE_ERRORS", "PCS.R_STATUS2",
                             "PMA.FEC_CORRECTED_LOW", "PMA.FAST_RETRAIN", "C22.MMD_DATA", "AN.STATUS"})
        EXPECT_FALSE(ieee().find(name)->isSafeToRead()) << name;
    EXPECT_TRUE(ieee().find("PMA.ID1")->isSafeToRead());
}

TEST(Ieee8023, ReadsTheSpeedFromItsPieces) {
    const MapRegister& control = *ieee().find("PMA.CONTROL1");
    EXPECT_EQ(control.field("SPEED")->choice(control.field("SPEED")->extract(0x2058))->name, "2.5 Gb/s");
    EXPECT_EQ(control.field("SPEED")->choice(control.field("SPEED")->extract(0x0040))->name, "1000 Mb/s");
}

TEST(Ieee8023, DecodesAStatusWord) {
    std::string shown;
    for (const DecodedField& each : RegisterMap::decode(*ieee().find(MapAddress::parse("7.1")), 0x0029))
        if (each.raw != 0 || !each.note().empty())
            shown += each.field->name + "=" + each.valueText() +
                     (each.note().empty() ? " " : " (" + each.note() + ") ");
    EXPECT_EQ(shown, "COMPLETE=1 ABLE=1 LINK=0 (was low since the last read) PARTNER_ABLE=1 ");
}

TEST(Ieee8023, MayBeIncludedAndExtended) {
    const RegisterMap map =
        RegisterMap::parse(R"({"format": "orvane-map-1", "name": "chip", "include": ["ieee8023"],
        "blocks": {"VEND1": {"registers": {"OWN": {"at": "0xC000"}}}}})");
    EXPECT_EQ(map.find("VEND1.OWN")->address().text(), "30.0xC000");
    EXPECT_EQ(map.size(), ieee().size() + 1);
}

} // namespace
} // namespace OrvaneTest
