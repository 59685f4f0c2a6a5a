// Fields within a register's value: taking out, putting in, meaning.
#include "tests/support/maps/MapTexts.h"

#include <gtest/gtest.h>

namespace OrvaneTest {
namespace {

using namespace Orvane;

std::string refusal(const MapField& field, std::uint64_t raw) {
    try {
        field.insert(0, raw);
    } catch (const MapError& error) {
        return error.what();
    }
    return "no refusal";
}

TEST(Field, InPiecesIsJoinedFromTheMostSignificantPieceOn) {
    const RegisterMap map = registerOf(R"("fields": {"SPEED": "6,13"})");
    const MapField& speed = *map.at("R.SPEED").field;
    EXPECT_EQ(speed.mask, 0x2040U);
    EXPECT_EQ(speed.width, 2U);
    EXPECT_EQ(speed.bitsText(), "6,13");
    EXPECT_EQ(speed.extract(0x0040), 2U);
    EXPECT_EQ(speed.extract(0x2000), 1U);
}

TEST(Field, InsertedReplacesItsOwnBitsOnly) {
    const RegisterMap map = registerOf(R"("fields": {"A": "15:12,3:0"})");
    EXPECT_EQ(map.at("R.A").field->insert(0xFFFF, 0x5A), 0x5FFAU);
}

TEST(Field, TakesAllOf64BitsInAndOut) {
    const RegisterMap map =
        mapOf(R"("registers": {"R": {"at": "ext32:0", "width": 64, "fields": {"A": "63:0"}}})");
    const MapField& field = *map.at("R.A").field;
    EXPECT_EQ(field.insert(1, 0xFEDCBA9876543210), 0xFEDCBA9876543210U);
    EXPECT_EQ(field.extract(0xFEDCBA9876543210), 0xFEDCBA9876543210U);
}

TEST(Field, RefusesAValueThatDoesNotFitByItsName) {
    const RegisterMap map = registerOf(R"("fields": {"LEVEL": "5:4", "ON": "0"})");
    EXPECT_EQ(refusal(*map.at("R.LEVEL").field, 4), "LEVEL: 0x4 does not fit into 2 bits");
    EXPECT_EQ(refusal(*map.at("R.ON").field, 2), "ON: 0x2 does not fit into 1 bit");
}

TEST(Field, SignedAndScaledBecomesItsUnit) {
    const RegisterMap map = registerOf(
        R"("fields": {"T": {"bits": "7:0", "signed": true, "scale": 0.5, "offset": 20, "unit": "C"}})");
    const auto decoded = RegisterMap::decode(*map.find("R"), 0xFD);
    ASSERT_EQ(decoded.size(), 1U);
    EXPECT_EQ(decoded[0].raw, 0xFDU);
    EXPECT_EQ(decoded[0].number, -3);
    EXPECT_DOUBLE_EQ(decoded[0].scaled, 18.5);
    EXPECT_EQ(decoded[0].valueText(), "18.5 C");
}

TEST(Field, FindsTheRawValueOfAScaledOne) {
    const RegisterMap map =
        registerOf(R"("fields": {"T": {"bits": "7:0", "signed": true, "scale": 0.5, "unit": "C"}})");
    const MapField& field = *map.at("R.T").field;
    EXPECT_EQ(field.rawOf(-1.5), 0xFDU);
    EXPECT_EQ(field.rawOf(63.5), 0x7FU);
    EXPECT_THROW(field.rawOf(64), MapError);
    EXPECT_THROW(field.rawOf(-64.5), MapError);
}

TEST(Field, OfEnumeratedValuesShowsTheirNames) {
    const RegisterMap map =
        registerOf(R"("fields": {"M": {"bits": "1:0", "values": {"0": "off", "0b10": "on"}}})");
    EXPECT_EQ(RegisterMap::decode(*map.find("R"), 2)[0].valueText(), "on");
    EXPECT_EQ(RegisterMap::decode(*map.find("R"), 1)[0].valueText(), "1");
    EXPECT_EQ(map.at("R.M").field->choice("on")->value, 2U);
    EXPECT_EQ(map.at("R.M").field->choice("On"), nullptr);
}

TEST(Field, ThatLatchedSaysWhatHappenedSinceTheLastRead) {
    const RegisterMap map = registerOf(R"("fields": {"LINK": "2 latching-low", "FAULT": "4 latching-high"})");
    const auto bad = RegisterMap::decode(*map.find("R"), 0x10);
    EXPECT_EQ(bad[0].note(), "was high since the last read");
    EXPECT_EQ(bad[1].note(), "was low since the last read");
    const auto good = RegisterMap::decode(*map.find("R"), 0x04);
    EXPECT_EQ(good[0].note(), "");
    EXPECT_EQ(good[1].note(), "");
}

TEST(Field, ListIsDecodedFromTheMostSignificantOn) {
    const RegisterMap map = registerOf(R"("fields": {"LOW": "3:0", "HIGH": "15:8", "MIDDLE": "5"})");
    const auto decoded = RegisterMap::decode(*map.find("R"), 0x1234);
    ASSERT_EQ(decoded.size(), 3U);
    EXPECT_EQ(decoded[0].field->name, "HIGH");
    EXPECT_EQ(decoded[0].valueText(), "0x12");
    EXPECT_EQ(decoded[1].field->name, "MIDDLE");
    EXPECT_EQ(decoded[2].valueText(), "0x4");
}

TEST(Field, InShortFormHasAccessAndText) {
    const RegisterMap map = registerOf(R"("fields": {"A": "7:4 ro side-effects: First: second"})");
    const MapField& field = *map.at("R.A").field;
    EXPECT_EQ(field.access, MapAccess::ro);
    EXPECT_TRUE(field.sideEffects);
    EXPECT_EQ(field.text, "First: second");
}

TEST(Field, WithoutAccessTakesItsRegisters) {
    const RegisterMap map = registerOf(R"("access": "ro", "fields": {"A": 1, "B": "2 rw"})");
    EXPECT_EQ(map.at("R.A").field->access, MapAccess::ro);
    EXPECT_EQ(map.at("R.B").field->access, MapAccess::rw);
}

TEST(Field, BitsThatAreNoneAreRefused) {
    const std::string refused = " are no bits: \"15\", \"15:12\" and \"13,6\" are, up to 63";
    for (const std::string bits : {"12:15", "64", "", "1,", "a", "-1", "3:", "1 :0"}) {
        SCOPED_TRACE(bits);
        EXPECT_EQ(problemsOfRegister(R"("fields": {"A": {"bits": ")" + bits + R"("}})"),
                  ".fields.A.bits: '" + bits + "'" + refused);
    }
}

TEST(Field, WithABitTwiceIsRefused) {
    EXPECT_EQ(problemsOfRegister(R"("fields": {"A": "3:1,2"})"), ".fields.A: has a bit twice");
}

TEST(Field, BeyondTheRegistersWidthIsRefused) {
    EXPECT_EQ(problemsOfRegister(R"("width": 8, "fields": {"A": "8"})"),
              ".fields.A: 'A' has bits beyond the register's 8");
}

TEST(Field, ThatSharesABitIsRefused) {
    EXPECT_EQ(problemsOfRegister(R"("fields": {"A": "3:1", "B": "5,3"})"), ".fields.B: 'B' has a bit of 'A'");
}

TEST(Field, WithAnUnknownAccessIsRefused) {
    EXPECT_EQ(problemsOfRegister(R"("fields": {"A": "3 read-only"})"), ".fields.A: 'read-only' is no access");
}

TEST(Field, WithAValueThatDoesNotFitIsRefused) {
    EXPECT_EQ(problemsOfRegister(R"("fields": {"A": {"bits": "3:2", "values": {"4": "four"}}})"),
              ".fields.A: names the value 4, which needs more than 2 bits");
}

TEST(Field, WithTwoNamesForAValueIsRefused) {
    EXPECT_EQ(problemsOfRegister(R"("fields": {"A": {"bits": "3:2", "values": {"1": "a", "0x1": "b"}}})"),
              ".fields.A.values: has two names for 1");
}

TEST(Field, WithAScaleOfNothingIsRefused) {
    EXPECT_EQ(problemsOfRegister(R"("fields": {"A": {"bits": "3:2", "scale": 0}})"),
              ".fields.A.scale: must not be 0");
}

TEST(Field, OfAPieceOf63BitsIsTakenOutAndPutIn) {
    const RegisterMap map =
        mapOf(R"("registers": {"R": {"at": "ext32:0", "width": 64, "fields": {"A": "0,63:1"}}})");
    const MapField& field = *map.at("R.A").field;
    EXPECT_EQ(field.extract(1), std::uint64_t{1} << 63U);
    EXPECT_EQ(field.insert(0, std::uint64_t{1} << 63U), 1U);
}

TEST(Field, SignedIsNegativeWhereItsHighestBitIsSet) {
    const RegisterMap map =
        registerOf(R"("fields": {"A": {"bits": "7:0", "signed": true}, "B": {"bits": "8", "signed": true}})");
    EXPECT_EQ(map.at("R.A").field->number(0x80), -128);
    EXPECT_EQ(map.at("R.A").field->number(0x40), 64);
    EXPECT_EQ(map.at("R.B").field->number(1), -1);
    EXPECT_EQ(map.at("R.B").field->number(0), 0);
}

TEST(Field, OfUpToThreeBitsIsShownInDecimal) {
    const RegisterMap map = registerOf(R"("fields": {"A": "6:4", "B": "3:0"})");
    EXPECT_EQ(RegisterMap::decode(*map.find("R"), 0x75)[0].valueText(), "7");
    EXPECT_EQ(RegisterMap::decode(*map.find("R"), 0x75)[1].valueText(), "0x5");
}

TEST(Field, OfOneBitWithAValueThatDoesNotFitIsRefused) {
    EXPECT_EQ(problemsOfRegister(R"("fields": {"A": {"bits": 3, "values": {"2": "two"}}})"),
              ".fields.A: names the value 2, which needs more than 1 bit");
}

TEST(Field, HasNamesOf200BytesForItsValuesAtMost) {
    const auto problemsOfName = [](std::size_t size) {
        return problemsOfRegister(R"("fields": {"A": {"bits": 3, "values": {"0": ")" +
                                  std::string(size, 'x') + "\"}}}");
    };
    EXPECT_EQ(problemsOfName(200), "");
    EXPECT_EQ(problemsOfName(201), ".fields.A.values.0: has to be a string of 1 to 200 bytes");
}

TEST(Field, WithTwoNamesForALaterValueIsRefused) {
    EXPECT_EQ(problemsOfRegister(
                  R"("fields": {"A": {"bits": "3:2", "values": {"0": "a", "2": "b", "0b10": "c"}}})"),
              ".fields.A.values: has two names for 2");
}

} // namespace
} // namespace OrvaneTest
