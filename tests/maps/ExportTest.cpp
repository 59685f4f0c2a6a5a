// Maps written out: as the source form, as a C header, as Markdown.
#include "tests/support/maps/MapTexts.h"

#include <cstdio>
#include <fstream>
#include <gtest/gtest.h>
#include <unistd.h>

namespace OrvaneTest {
namespace {

using namespace Orvane;

// Everything that a register says.
std::string describe(const MapRegister& reg) {
    std::string all = reg.name() + ' ' + reg.address().text() + ' ' + std::to_string(reg.width()) + ' ' +
                      std::to_string(reg.reset().value_or(7)) + nameOf(reg.access()) + reg.text() +
                      (reg.isSafeToRead() ? "safe" : "unsafe") +
                      (reg.page() ? reg.page()->select->name() : "");
    for (const MapField& field : reg.fields()) {
        all += '\n' + field.name + ' ' + field.bitsText() + nameOf(field.access) + field.text + field.unit +
               std::to_string(field.scale) + std::to_string(field.offset) + (field.isSigned ? "signed" : "") +
               (field.sideEffects ? "effects" : "");
        for (const MapChoice& choice : field.choices)
            all += std::to_string(choice.value) + choice.name;
    }
    return all;
}

TEST(Export, ToJsonReadsBackAsTheSameMap) {
    for (const RegisterMap& map : {RegisterMap::ieee8023(), RegisterMap::load(std::string(ORVANE_MAP_FILES) +
                                                                              "/accepted/everything.json")}) {
        const RegisterMap copy = RegisterMap::parse(map.toJson(), "copy");
        EXPECT_EQ(copy.name(), map.name());
        EXPECT_EQ(copy.text(), map.text());
        EXPECT_EQ(copy.identifiers().size(), map.identifiers().size());
        ASSERT_EQ(copy.size(), map.size());
        for (std::size_t i = 0; i < map.size(); ++i)
            EXPECT_EQ(describe(copy.registers()[i]), describe(map.registers()[i]));
    }
}

TEST(Export, ToJsonEscapesWhatJsonDoesNotHold) {
    const RegisterMap map = registerOf(R"("text": "a\"b\\c\u0001d\u001f\né")");
    EXPECT_EQ(RegisterMap::parse(map.toJson()).find("R")->text(), "a\"b\\c\x01"
                                                                  "d\x1F\n\xC3\xA9");
}

TEST(Export, ToCHeaderHasAddressesMasksShiftsAndValues) {
    const RegisterMap map =
        mapOf(R"("registers": {"CTRL": {"at": "30.0xC000", "reset": 64, "text": "Ends */ here", "fields": {
        "SPEED": {"bits": "6,13", "values": {"0": "10 Mb/s", "2": "1000 Mb/s"}}, "LEVEL": "3:2"}}})");
    EXPECT_EQ(map.toCHeader("CHIP"), "/* Registers of the map test */\n"
                                     "#ifndef CHIP_REGISTERS_H\n"
                                     "#define CHIP_REGISTERS_H\n"
                                     "\n/* CTRL at 30.0xC000: Ends * / here */\n"
                                     "#define CHIP_CTRL_MMD 30\n"
                                     "#define CHIP_CTRL_ADDRESS 0xC000U\n"
                                     "#define CHIP_CTRL_RESET_VALUE 0x0040U\n"
                                     "#define CHIP_CTRL_SPEED_MASK 0x2040U\n"
                                     "#define CHIP_CTRL_SPEED_IS_10_MB_S 0x0000U\n"
                                     "#define CHIP_CTRL_SPEED_IS_1000_MB_S 0x0040U\n"
                                     "#define CHIP_CTRL_LEVEL_MASK 0x000CU\n"
                                     "#define CHIP_CTRL_LEVEL_SHIFT 2\n"
                                     "\n#endif\n");
}

TEST(Export, ToCHeaderNeedsAPrefixThatIsAnIdentifier) {
    EXPECT_THROW(RegisterMap::ieee8023().toCHeader("9x"), MapError);
    EXPECT_THROW(RegisterMap::ieee8023().toCHeader("A[0]"), MapError);
    EXPECT_THROW(RegisterMap::ieee8023().toCHeader(""), MapError);
}

TEST(Export, ToCHeaderOfTheWholeStandardCompiles) {
    const std::string path = "/tmp/orvane-header-" + std::to_string(getpid()) + ".h";
    std::ofstream(path) << RegisterMap::ieee8023().toCHeader("IEEE")
                        << "int holds[IEEE_AN_STATUS_LINK_MASK == 4 && IEEE_PMA_CONTROL1_SPEED_IS_10_GB_S == "
                           "0x2040 ? 1 : -1];\n";
    EXPECT_EQ(std::system(("cc -std=c99 -pedantic -Wall -Werror -fsyntax-only -x c " + path).c_str()), 0);
    std::remove(path.c_str());
}

TEST(Export, ToMarkdownHasATableForEachRegister) {
    const RegisterMap map =
        mapOf(R"("text": "Made up", "registers": {"R": {"at": "7.1", "access": "ro", "reset": 1,
        "text": "a|b <i>", "fields": {"LINK": "2 latching-low: Up", "M": {"bits": "1:0", "values": {"1": "one"}}}}})");
    EXPECT_EQ(map.toMarkdown(), "# test\n\nMade up\n\n## R\n\n"
                                "7.0x0001, 16 bits, ro, reset 0x0001, not read by the way. a\\|b \\<i\\>\n\n"
                                "| bits | field | access | meaning |\n|---|---|---|---|\n"
                                "| 2 | LINK | latching-low | Up |\n"
                                "| 1:0 | M | ro | 1: one |\n");
}

TEST(Export, ToJsonIsIndentedAndInHexadecimal) {
    const RegisterMap map = mapOf(R"("text": "T", "identifiers": ["0x10/0x0FFFFFF0"],
        "registers": {"PAGE": {"at": "c22:31"}, "A": {"at": "1.0", "count": 2}},
        "blocks": {"B": {"at": "30.0", "count": 2, "stride": 1, "page": {"select": "PAGE", "value": 1},
            "registers": {"R": {"at": 12, "reset": 5}}}})");
    EXPECT_EQ(map.toJson(), R"({
  "format": "orvane-map-1",
  "name": "test",
  "text": "T",
  "identifiers": ["0x00000010/0x0FFFFFF0"],
  "registers": {
    "PAGE": {
      "at": "c22:0x1F",
      "width": 16
    },
    "A": {
      "at": "1.0x0000",
      "count": 2,
      "width": 16
    }
  },
  "blocks": {
    "B": {
      "at": "30.0x0000",
      "count": 2,
      "stride": "0x1",
      "page": {
        "select": "PAGE",
        "value": 1
      },
      "registers": {
        "R": {
          "at": "0x000C",
          "width": 16,
          "reset": "0x0005"
        }
      }
    }
  }
}
)");
}

TEST(Export, ToCHeaderKeepsEqualNamesApart_AndCommentsClosed) {
    const RegisterMap map = mapOf(R"("registers": {"PAGE": {"at": "ext32:0"}}, "blocks": {
        "P": {"at": "ext32:8", "page": {"select": "PAGE", "value": 0}, "registers": {
            "R": {"at": 0, "width": 64, "text": "/* a\u001fb", "fields": {
                "LOW": "31:0", "A": {"bits": "63:62", "values": {"0": "-a--b-", "1": "A B", "2": "a/b"}}}}}}})");
    EXPECT_EQ(map.toCHeader("X"), "/* Registers of the map test */\n"
                                  "#ifndef X_REGISTERS_H\n"
                                  "#define X_REGISTERS_H\n"
                                  "\n/* PAGE at ext32:0x00000000 */\n"
                                  "#define X_PAGE_ADDRESS 0x0000U\n"
                                  "\n/* P.R at ext32:0x00000008@0: / * a b */\n"
                                  "#define X_P_R_ADDRESS 0x0008U\n"
                                  "#define X_P_R_PAGE 0\n"
                                  "#define X_P_R_LOW_MASK 0xFFFFFFFFU\n"
                                  "#define X_P_R_LOW_SHIFT 0\n"
                                  "#define X_P_R_A_MASK 0xC000000000000000ULL\n"
                                  "#define X_P_R_A_SHIFT 62\n"
                                  "#define X_P_R_A_IS_A_B 0x0000U\n"
                                  "#define X_P_R_A_IS_A_B_2 0x4000000000000000ULL\n"
                                  "#define X_P_R_A_IS_A_B_3 0x8000000000000000ULL\n"
                                  "\n#endif\n");
}

TEST(Export, ToMarkdownHasUnitsAndNoControlCharacters) {
    const RegisterMap map = registerOf(R"("text": "a\u001fb !", "fields": {
        "T": {"bits": "7:0", "scale": 0.5, "offset": 20, "unit": "C"}})");
    EXPECT_EQ(map.toMarkdown(), "# test\n\n\n\n## R\n\n"
                                "7.0x0001, 16 bits, rw. a b !\n\n"
                                "| bits | field | access | meaning |\n|---|---|---|---|\n"
                                "| 7:0 | T | rw | x 0.5 + 20 C |\n");
}

TEST(Export, ToCHeaderMarksNumbersBeyond32Bits) {
    const RegisterMap map =
        mapOf(R"("registers": {"R": {"at": "ext32:0", "width": 64, "fields": {"A": 31, "B": 32}}})");
    EXPECT_NE(map.toCHeader("X").find("X_R_A_MASK 0x80000000U\n"), std::string::npos);
    EXPECT_NE(map.toCHeader("X").find("X_R_B_MASK 0x100000000ULL\n"), std::string::npos);
}

} // namespace
} // namespace OrvaneTest
