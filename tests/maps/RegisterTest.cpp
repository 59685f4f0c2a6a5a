// What a register tells of itself: access, safety, masks.
#include "tests/support/maps/MapTexts.h"

#include <gtest/gtest.h>

namespace OrvaneTest {
namespace {

using namespace Orvane;

TEST(Register, WithoutFieldsHasTheMasksOfItsAccess) {
    const RegisterMap map = mapOf(R"("registers": {
        "RW": {"at": "1.0"}, "RO": {"at": "1.1", "access": "ro"}, "WO": {"at": "1.2", "access": "wo"},
        "CNT": {"at": "1.3", "access": "clear-on-read"}, "KEEP": {"at": "1.4", "access": "reserved"}})");
    EXPECT_EQ(map.find("RW")->writableMask(), 0xFFFFU);
    EXPECT_EQ(map.find("RO")->writableMask(), 0U);
    EXPECT_FALSE(map.find("WO")->isReadable());
    EXPECT_FALSE(map.find("WO")->isSafeToRead());
    EXPECT_EQ(map.find("CNT")->changedByReadMask(), 0xFFFFU);
    EXPECT_FALSE(map.find("CNT")->isSafeToRead());
    EXPECT_FALSE(map.find("KEEP")->isWritable());
}

TEST(Register, WithALatchingFieldIsNotSafeToRead) {
    const RegisterMap map = registerOf(R"("access": "ro", "fields": {"A": "0", "LINK": "2 latching-low"})");
    EXPECT_FALSE(map.find("R")->isSafeToRead());
    EXPECT_EQ(map.find("R")->changedByReadMask(), 0x0004U);
}

TEST(Register, WithSideEffectsIsNotSafeToRead) {
    EXPECT_FALSE(registerOf(R"("side-effects": true)").find("R")->isSafeToRead());
    EXPECT_FALSE(registerOf(R"("fields": {"A": "0 ro side-effects"})").find("R")->isSafeToRead());
    EXPECT_TRUE(registerOf(R"("fields": {"A": "0 ro"})").find("R")->isSafeToRead());
}

TEST(Register, WithFieldsIsWritableInThoseThatAre) {
    const RegisterMap map =
        registerOf(R"("fields": {"A": "15 self-clearing", "B": "7:4 ro", "C": "3 w1c", "D": "2 reserved"})");
    EXPECT_EQ(map.find("R")->writableMask(), 0x8008U);
}

TEST(Register, HasTheWidthOfItsSpaceUnlessToldOtherwise) {
    const RegisterMap map = mapOf(R"("registers": {
        "C45": {"at": "1.0"}, "C22": {"at": "c22:0"}, "EXT": {"at": "ext32:0"}, "SMB": {"at": "smbus:0"},
        "BYTE": {"at": "smbus:1", "width": 8}})");
    EXPECT_EQ(map.find("C45")->width(), 16U);
    EXPECT_EQ(map.find("C22")->width(), 16U);
    EXPECT_EQ(map.find("EXT")->width(), 32U);
    EXPECT_EQ(map.find("SMB")->width(), 16U);
    EXPECT_EQ(map.find("BYTE")->width(), 8U);
}

TEST(Register, TellsItsResetOnlyWhereThereIsOne) {
    const RegisterMap map =
        mapOf(R"("registers": {"A": {"at": "1.0", "reset": "0x0040"}, "B": {"at": "1.1"}})");
    EXPECT_EQ(map.find("A")->reset(), 0x40U);
    EXPECT_FALSE(map.find("B")->reset().has_value());
}

TEST(Register, WithAResetWiderThanItselfIsRefused) {
    EXPECT_EQ(problemsOfRegister(R"("reset": "0x10000")"),
              ".reset: 0x10000 is wider than the register's 16 bits");
}

TEST(Register, OfClause45WithMoreThan16BitsIsRefused) {
    EXPECT_EQ(problemsOfRegister(R"("width": 32)"), ": has a width of 32 bits, where registers have 16");
}

TEST(Register, WithAnOddWidthIsRefused) {
    EXPECT_EQ(problemsOfRegister(R"("width": 12)"), ".width: has to be 8, 16, 32 or 64");
}

TEST(Register, WithAnUnknownMemberIsRefused) {
    EXPECT_EQ(problemsOfRegister(R"("comment": "x")"), ".comment: is not known here");
}

TEST(Register, WithMoreFieldsThanBitsIsRefused) {
    std::string fields;
    for (int i = 0; i < 65; ++i)
        fields += (i > 0 ? ", \"F" : "\"F") + std::to_string(i) + "\": " + std::to_string(i % 64);
    EXPECT_NE(
        problemsOfRegister("\"fields\": {" + fields + "}").find("is one field more than a register has bits"),
        std::string::npos);
}

TEST(Register, MayHave8To64Bits) {
    const auto problemsOfWidth = [](const std::string& width) {
        return problemsOf(R"("registers": {"R": {"at": "ext32:0", "width": )" + width + "}}");
    };
    for (const char* width : {"8", "16", "32", "64"})
        EXPECT_EQ(problemsOfWidth(width), "") << width;
    for (const char* width : {"7", "65"})
        EXPECT_EQ(problemsOfWidth(width), "map:1: registers.R.width: has to be from 8 to 64") << width;
}

TEST(Register, OfClause22WithMoreThan16BitsIsRefused) {
    EXPECT_EQ(problemsOf(R"("registers": {"R": {"at": "c22:1", "width": 32}})"),
              "map:1: registers.R: has a width of 32 bits, where registers have 16");
}

TEST(Register, MayHaveAFieldForEachOf64Bits) {
    std::string fields;
    for (int i = 0; i < 64; ++i)
        fields += (i > 0 ? ", \"F" : "\"F") + std::to_string(i) + "\": " + std::to_string(i);
    EXPECT_EQ(problemsOf(R"("registers": {"R": {"at": "ext32:0", "width": 64, "fields": {)" + fields + "}}}"),
              "");
}

TEST(Register, HasATextOf4096BytesAtMost_AndSoDoItsFieldsAndBlock) {
    for (const std::size_t size : {4096U, 4097U}) {
        const std::string text = R"("text": ")" + std::string(size, 'x') + '"';
        const std::string refusal = size == 4096 ? "" : ".text: is longer than 4096 bytes";
        EXPECT_EQ(problemsOfRegister(text), refusal);
        EXPECT_EQ(problemsOfRegister(R"("fields": {"F": {"bits": 0, )" + text + "}}"),
                  refusal.empty() ? "" : ".fields.F" + refusal);
        EXPECT_EQ(problemsOf(R"("blocks": {"B": {)" + text + "}}"),
                  refusal.empty() ? "" : "map:1: blocks.B" + refusal);
    }
}

TEST(Register, WithAFieldThatHasAnIndexIsRefused) {
    EXPECT_EQ(problemsOfRegister(R"("fields": {"F[0]": 0})"),
              ".fields.F[0]: is no name: letters, digits and '_', a letter first, 64 at most");
}

} // namespace
} // namespace OrvaneTest
