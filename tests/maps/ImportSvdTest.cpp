// CMSIS-SVD of a register or two made into maps.
#include "tests/support/maps/ImportedText.h"
#include "tests/support/maps/MapTexts.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace OrvaneTest {
namespace {

using namespace Orvane;
using testing::ElementsAre;

// A device whose one peripheral P has these registers.
ImportedMap svdOf(const std::string& registers) {
    return importText("<device><peripherals><peripheral><name>P</name><registers>" + registers +
                      "</registers></peripheral></peripherals></device>");
}

std::string registerOf(const std::string& name, unsigned offset, const std::string& more) {
    return "<register><name>" + name + "</name><addressOffset>" + std::to_string(offset) +
           "</addressOffset>" + more + "</register>";
}

std::string fieldOf(const std::string& name, const std::string& more) {
    return "<field><name>" + name + "</name>" + more + "</field>";
}

std::string valueOf(const std::string& name, const std::string& value) {
    return "<enumeratedValue><name>" + name + "</name><value>" + value + "</value></enumeratedValue>";
}

TEST(Svd, RegistersHaveTheWidthsOfMaps_AndEffectsThatKeepThemFromBeingRead) {
    const ImportedMap imported = svdOf(
        registerOf("B", 0, "<size>8</size>") + registerOf("W", 8, "<size>64</size>") +
        registerOf("ODD", 16, "<size>24</size>") + registerOf("SEEN", 20, "<readAction>modify</readAction>") +
        registerOf("KEYED", 24, "<modifiedWriteValues>zeroToClear</modifiedWriteValues>"));
    std::vector<unsigned> widths;
    std::vector<bool> safe;
    for (const MapRegister& each : imported.map.registers()) {
        widths.push_back(each.width());
        safe.push_back(each.isSafeToRead());
    }
    EXPECT_THAT(widths, ElementsAre(8, 64, 32, 32, 32));
    EXPECT_THAT(safe, ElementsAre(true, true, true, false, false));
    EXPECT_THAT(reportsOf(imported), ElementsAre("0 : modifiedWriteValues zeroToClear: 1 not carried over"));
}

TEST(Svd, FieldsHaveBitsUpTo63AndValuesThatFit) {
    const std::string longest(200, 'n');
    const ImportedMap imported = svdOf(registerOf(
        "F", 0,
        "<size>64</size><fields>" +
            fieldOf("TOP", "<bitRange>[63:61]</bitRange><enumeratedValues>" + valueOf("six", "#110") +
                               valueOf(longest, "7") + valueOf("eight", "8") + valueOf(longest + 'n', "1") +
                               "</enumeratedValues>") +
            fieldOf("OVER", "<bitRange>[64:64]</bitRange>") + fieldOf("ONE", "<bitOffset>3</bitOffset>") +
            "</fields>"));
    const MapField& top = *imported.map.at("P.F.TOP").field;
    EXPECT_EQ(top.bitsText(), "63:61");
    ASSERT_EQ(top.choices.size(), 2U);
    EXPECT_EQ(top.choice(6)->name, "six");
    EXPECT_EQ(top.choice(7)->name, longest);
    EXPECT_EQ(imported.map.at("P.F.ONE").field->bitsText(), "3");
    EXPECT_THAT(
        reportsOf(imported),
        ElementsAre("1 P.F.OVER: has no bits; left out",
                    "0 : enumerated values without one value and name of their own: 2 not carried over"));
}

TEST(Svd, FieldsAre64InARegisterAtMost) {
    std::string fields;
    for (int i = 0; i < 65; ++i)
        fields += fieldOf("F" + std::to_string(i), "<bitOffset>" + std::to_string(i) + "</bitOffset>");
    const ImportedMap imported = svdOf(registerOf("R", 0, "<size>64</size><fields>" + fields + "</fields>"));
    EXPECT_EQ(imported.map.find("P.R")->fields().size(), 64U);
    EXPECT_THAT(reportsOf(imported), ElementsAre("1 F64: is one field more than a register has bits"));
}

TEST(Svd, ArraysOfOneElementAreArrays_AndNamedElementsAreRegisters) {
    const std::string one = "<dim>1</dim><dimIncrement>4</dimIncrement>";
    const std::string named = "<dim>2</dim><dimIncrement>4</dimIncrement><dimIndex>5,6</dimIndex>";
    EXPECT_THAT(linesOf(svdOf(registerOf("R[%s]", 0, one) + registerOf("S%s", 8, named)).map),
                ElementsAre("P.R[0] ext32:0x00000000", "P.S5 ext32:0x00000008", "P.S6 ext32:0x0000000C"));
}

TEST(Svd, RegistersAreDerivedOverEightOthersAtMost) {
    std::string registers = registerOf("R0", 0, "<description>First</description>");
    for (unsigned i = 1; i < 10; ++i)
        registers += "<register derivedFrom=\"R" + std::to_string(i - 1) + "\"><name>R" + std::to_string(i) +
                     "</name><addressOffset>" + std::to_string(4 * i) + "</addressOffset></register>";
    const ImportedMap imported = svdOf(registers);
    EXPECT_EQ(imported.map.find("P.R8")->text(), "First");
    EXPECT_THAT(reportsOf(imported), ElementsAre("1 R9: is derived over more than 8 others, or from itself"));
}

TEST(Svd, ClustersGoSevenDeepInTheirPeripheral) {
    const auto nested = [](int depth) {
        return svdOf(times(depth, "<cluster><name>C</name>") + registerOf("R", 0, "") +
                     times(depth, "</cluster>"));
    };
    EXPECT_EQ(nested(7).map.size(), 1U);
    EXPECT_THAT(reportsOf(nested(8)), ElementsAre("1 C: lies deeper within clusters than 8; left out"));
}

TEST(Svd, ClustersHave1024ElementsAtMost) {
    const auto clusters = [](unsigned count) {
        return svdOf("<cluster><name>C[%s]</name><dim>" + std::to_string(count) +
                     "</dim><dimIncrement>4</dimIncrement>" + registerOf("R", 0, "") + "</cluster>");
    };
    EXPECT_EQ(clusters(1024).map.size(), 1024U);
    EXPECT_THAT(reportsOf(clusters(1024)), ElementsAre());
    EXPECT_EQ(clusters(1025).map.size(), 1024U);
    EXPECT_THAT(reportsOf(clusters(1025)),
                ElementsAre("1 C[%s]: has more elements than 1024; those are taken"));
}

TEST(Svd, RegistersTakeWhatTheDeviceSays) {
    const ImportedMap imported = importText(
        "<device><size>16</size><access>read-only</access><resetValue>5</resetValue><vendorExtensions/>"
        "<peripherals><peripheral><name>P</name><appendToName>x</appendToName><registers>" +
        registerOf("R", 0, "<dataType>uint8_t</dataType>") +
        "</registers></peripheral></peripherals></device>");
    const MapRegister& reg = *imported.map.find("P.R");
    EXPECT_EQ(reg.width(), 16U);
    EXPECT_EQ(reg.access(), MapAccess::ro);
    EXPECT_EQ(reg.reset(), 5U);
    EXPECT_THAT(reportsOf(imported), ElementsAre("0 : element appendToName: 1 not carried over",
                                                 "0 : element dataType: 1 not carried over",
                                                 "0 : element vendorExtensions: 1 not carried over"));
}

TEST(Svd, RegistersOfClause45AreAtEvenBytesUpToTheLast) {
    ImportOptions options;
    options.space = MapSpace::c45;
    options.mmd = 30;
    const std::string size = "<size>16</size>";
    const ImportedMap imported =
        importText("<device><peripherals><peripheral><name>P</name><registers>" + registerOf("TWO", 4, size) +
                       registerOf("A[%s]", 2, size + "<dim>2</dim><dimIncrement>2</dimIncrement>") +
                       registerOf("LAST", 0x1FFFE, size) + registerOf("BEYOND", 0x20000, size) +
                       registerOf("ODD", 3, size) + "</registers></peripheral></peripherals></device>",
                   options);
    EXPECT_THAT(linesOf(imported.map), ElementsAre("P.TWO 30.0x0002", "P.LAST 30.0xFFFF"));
    EXPECT_THAT(reportsOf(imported),
                ElementsAre("1 P.A: its place at 30.0x0001 is taken; left out",
                            "1 P.BEYOND: 0x20000 is no address of the space c45; left out",
                            "1 P.ODD: 0x3 is no address of the space c45; left out"));
}

std::string arrayOf(const std::string& name, unsigned count, unsigned offset, const std::string& indices) {
    return registerOf(name, offset,
                      "<dim>" + std::to_string(count) + "</dim><dimIncrement>4</dimIncrement>" +
                          (indices.empty() ? "" : "<dimIndex>" + indices + "</dimIndex>"));
}

TEST(Svd, RegistersOfWhichNothingIsSaidAre32BitsToReadAndWrite) {
    const ImportedMap imported = svdOf(registerOf("R", 0, ""));
    const MapRegister& reg = *imported.map.find("P.R");
    EXPECT_EQ(reg.width(), 32U);
    EXPECT_EQ(reg.access(), MapAccess::rw);
    EXPECT_FALSE(reg.reset());
}

TEST(Svd, ElementsThatAreCountedFromZeroAtTheEndOfTheirNameAreArrays) {
    EXPECT_THAT(linesOf(svdOf(arrayOf("A%s", 2, 0, "") + arrayOf("B%s", 2, 8, "0-1") +
                              arrayOf("C[%s]", 3, 16, "0,1,2"))
                            .map),
                ElementsAre("P.A[0] ext32:0x00000000", "P.A[1] ext32:0x00000004", "P.B[0] ext32:0x00000008",
                            "P.B[1] ext32:0x0000000C", "P.C[0] ext32:0x00000010", "P.C[1] ext32:0x00000014",
                            "P.C[2] ext32:0x00000018"));
}

TEST(Svd, OtherElementsAreRegistersOfTheirOwnNames) {
    const ImportedMap imported =
        svdOf(arrayOf("A%s", 3, 0, "0,1,3") + arrayOf("B%s", 2, 16, "0,1,") + arrayOf("C%s", 3, 24, "x,y,") +
              arrayOf("%sD", 2, 36, "x,y") + arrayOf("%s", 2, 44, "") + arrayOf("N", 2, 52, "") +
              registerOf("%sE", 60, "") + registerOf("[%s]F", 64, ""));
    EXPECT_THAT(linesOf(imported.map),
                ElementsAre("P.A0 ext32:0x00000000", "P.A1 ext32:0x00000004", "P.A3 ext32:0x00000008",
                            "P.B0 ext32:0x00000010", "P.B1 ext32:0x00000014", "P.Cx ext32:0x00000018",
                            "P.Cy ext32:0x0000001C", "P.C ext32:0x00000020", "P.xD ext32:0x00000024",
                            "P.yD ext32:0x00000028", "P._0 ext32:0x0000002C", "P._1 ext32:0x00000030",
                            "P.N ext32:0x00000034", "P.E ext32:0x0000003C", "P.F ext32:0x00000040"));
    EXPECT_THAT(reportsOf(imported), ElementsAre("1 P.N: its name is taken; left out"));
}

TEST(Svd, ElementsWithNamesOfTheirOwnAre1024AtMost) {
    const auto named = [](unsigned count) {
        std::string indices = "x0";
        for (unsigned i = 1; i < count; ++i)
            indices += ",x" + std::to_string(i);
        return svdOf(arrayOf("R%s", count, 0, indices));
    };
    EXPECT_NE(named(1024).map.find("P.Rx1023"), nullptr);
    const ImportedMap more = named(1025);
    EXPECT_EQ(more.map.size(), 1024U);
    EXPECT_NE(more.map.find("P.Rx1023"), nullptr);
    EXPECT_THAT(reportsOf(more), ElementsAre("1 R%s: has more elements than 1024; those are taken"));
}

TEST(Svd, ArraysHave131072Elements_AndOneOfMoreIsARegister) {
    EXPECT_EQ(svdOf(arrayOf("R%s", 131072, 0, "")).map.size(), 131072U);
    const ImportedMap more = svdOf(arrayOf("R%s", 131073, 0, ""));
    EXPECT_THAT(linesOf(more.map), ElementsAre("P.R ext32:0x00000000"));
    EXPECT_THAT(reportsOf(more), ElementsAre("1 R%s: has more elements than 131072; one is taken"));
}

TEST(Svd, ClustersThatHaveNothingOfTheirOwnHaveTheRegistersOfThatWhichTheyDeriveFrom) {
    const auto derived = [](const std::string& content) {
        return linesOf(svdOf("<cluster><name>A</name>" + content +
                             "</cluster><cluster derivedFrom=\"A\"><name>B</name><addressOffset>16"
                             "</addressOffset></cluster>")
                           .map);
    };
    EXPECT_THAT(derived(registerOf("R", 0, "")),
                ElementsAre("P.A.R ext32:0x00000000", "P.B.R ext32:0x00000010"));
    EXPECT_THAT(derived("<cluster><name>C</name>" + registerOf("R", 0, "") + "</cluster>"),
                ElementsAre("P.A.C.R ext32:0x00000000", "P.B.C.R ext32:0x00000010"));
}

TEST(Svd, FieldsHaveTheirBitsByOtherMembers_WhereTheirRangeIsNone) {
    const std::string other = "<lsb>4</lsb><msb>5</msb>";
    for (const char* range : {"[3-0]", "[1:]", "3", ""}) {
        const ImportedMap imported = svdOf(
            registerOf("R", 0,
                       "<fields>" + fieldOf("F", "<bitRange>" + std::string(range) + "</bitRange>" + other) +
                           "</fields>"));
        ASSERT_TRUE(imported.map.resolve("P.R.F")) << range;
        EXPECT_EQ(imported.map.at("P.R.F").field->bitsText(), "5:4") << range;
    }
}

TEST(Svd, ValuesThatAreThereTwiceKeepTheFirstName) {
    const ImportedMap imported =
        svdOf(registerOf("R", 0,
                         "<fields>" +
                             fieldOf("F", "<bitRange>[1:0]</bitRange><enumeratedValues>" + valueOf("a", "1") +
                                              valueOf("b", "1") + valueOf("c", "2") + "</enumeratedValues>") +
                             "</fields>"));
    const MapField& field = *imported.map.at("P.R.F").field;
    ASSERT_EQ(field.choices.size(), 2U);
    EXPECT_EQ(field.choice(1)->name, "a");
    EXPECT_EQ(field.choice(2)->name, "c");
}

} // namespace
} // namespace OrvaneTest
