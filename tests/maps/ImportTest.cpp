// Files of other kinds made into maps: what arrives, and what is reported as left behind.
#include "tests/support/maps/ImportedText.h"
#include "tests/support/maps/MapTexts.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace OrvaneTest {
namespace {

using namespace Orvane;
using testing::ElementsAre;
using testing::HasSubstr;

ImportedMap importOf(const std::string& name, const ImportOptions& options = {}) {
    return RegisterMap::importFile(std::string(ORVANE_MAP_FILES) + "/imported/" + name, options);
}

TEST(ImportSvd, PlacesPeripheralsClustersAndArrays) {
    EXPECT_THAT(linesOf(importOf("board.svd").map),
                ElementsAre("TIMER0.CTRL ext32:0x80001000", "TIMER0.COUNT ext32:0x80001004",
                            "TIMER0.MATCH[0] ext32:0x80001010", "TIMER0.MATCH[1] ext32:0x80001014",
                            "TIMER0.MATCH[2] ext32:0x80001018", "TIMER0.MATCH[3] ext32:0x8000101C",
                            "TIMER0.PORTA_IN ext32:0x80001020", "TIMER0.PORTB_IN ext32:0x80001024",
                            "TIMER0.CH[0].LEVEL ext32:0x80001044", "TIMER0.CH[1].LEVEL ext32:0x8000104C",
                            "TIMER1.CTRL ext32:0x80002000", "TIMER1.COUNT ext32:0x80002004",
                            "TIMER1.MATCH[0] ext32:0x80002010", "TIMER1.MATCH[1] ext32:0x80002014",
                            "TIMER1.MATCH[2] ext32:0x80002018", "TIMER1.MATCH[3] ext32:0x8000201C",
                            "TIMER1.PORTA_IN ext32:0x80002020", "TIMER1.PORTB_IN ext32:0x80002024",
                            "TIMER1.CH[0].LEVEL ext32:0x80002044", "TIMER1.CH[1].LEVEL ext32:0x8000204C"));
}

TEST(ImportSvd, CarriesFieldsValuesAndAccessesOver) {
    const RegisterMap map = importOf("board.svd").map;
    EXPECT_EQ(map.text(), "A device that nobody makes.");
    EXPECT_EQ(map.find("TIMER0.CTRL")->reset(), 0x10U);
    EXPECT_EQ(map.at("TIMER0.CTRL.EN").field->choice(1)->name, "on");
    EXPECT_EQ(map.at("TIMER0.CTRL.MODE").field->mask, 0x70U);
    EXPECT_EQ(map.at("TIMER0.CTRL.DONE").field->access, MapAccess::w1c);
    EXPECT_EQ(map.find("TIMER0.COUNT")->access(), MapAccess::clearOnRead);
    EXPECT_EQ(map.find("TIMER0.MATCH[1]")->width(), 16U);
}

TEST(ImportSvd, ReportsWhatIsLeftBehind) {
    EXPECT_THAT(
        reportsOf(importOf("board.svd")),
        ElementsAre("16 TIMER0.CTRL.CLASH: its name or bits are taken or beyond the register; left out",
                    "42 TIMER0.OTHER: its place at ext32:0x80001000 is taken; left out",
                    "16 TIMER1.CTRL.CLASH: its name or bits are taken or beyond the register; left out",
                    "42 TIMER1.OTHER: its place at ext32:0x80002000 is taken; left out",
                    "50 LOOP: is derived over more than 8 others, or from itself",
                    "0 : element alternateRegister: 2 not carried over",
                    "0 : element cpu: 1 not carried over", "0 : element interrupt: 2 not carried over",
                    "0 : enumerated values without one value and name of their own: 2 not carried over"));
}

TEST(ImportUhal, PlacesNodesByWordsAndMakesMasksFields) {
    const ImportedMap imported = importOf("board.xml");
    const RegisterMap& map = imported.map;
    EXPECT_EQ(map.find("CTRL.REG")->address().text(), "ext32:0x00004000");
    EXPECT_EQ(map.at("CTRL.REG.ENABLE").field->text, "Runs");
    EXPECT_EQ(map.at("CTRL.REG.SPEED").field->bitsText(), "13,6");
    EXPECT_EQ(map.at("CTRL.REG.SPEED").field->access, MapAccess::ro);
    EXPECT_EQ(map.find("CTRL.COUNT")->address().text(), "ext32:0x00004004");
    EXPECT_EQ(map.find("MEMORY[15]")->address().text(), "ext32:0x0000803C");
    EXPECT_EQ(map.find("QUEUE")->access(), MapAccess::wo);
    EXPECT_FALSE(map.find("QUEUE")->isSafeToRead());
    EXPECT_THAT(reportsOf(imported),
                ElementsAre("11 QUEUE: is a port of 64 words; it became one register",
                            "12 ELSEWHERE: the file 'file://other.xml' is not followed; import it by itself",
                            "13 TWICE: its place at ext32:0x00004000 is taken; left out",
                            "0 : attribute fwinfo: 1 not carried over"));
}

TEST(ImportUhal, LeavesOutWhatIsTooWideForTheSpaceThatIsAskedFor) {
    ImportOptions options;
    options.space = MapSpace::c45;
    options.mmd = 30;
    options.addressUnit = 4;
    EXPECT_EQ(importOf("board.xml", options).map.find("CTRL.REG"), nullptr)
        << "a register of 32 bits in Clause 45";
}

TEST(ImportSvd, PutsRegistersIntoTheSpaceThatIsAskedFor) {
    ImportOptions options;
    options.space = MapSpace::smbus;
    options.addressUnit = 4;
    EXPECT_EQ(importOf("board.svd", options).map.find("TIMER0.MATCH[1]")->address().text(),
              "smbus:0x20000405");
}

TEST(ImportCsv, ReadsRegistersAndTheirFields) {
    const ImportedMap imported = importOf("board.csv");
    const RegisterMap& map = imported.map;
    ASSERT_EQ(map.size(), 2U);
    EXPECT_EQ(map.find("VEND1.CONTROL")->text(), "Control, of \"all\"");
    EXPECT_EQ(map.find("VEND1.CONTROL")->reset(), 0x40U);
    EXPECT_EQ(map.at("VEND1.CONTROL.RESET").field->access, MapAccess::selfClearing);
    EXPECT_EQ(map.at("VEND1.CONTROL.SPEED").field->bitsText(), "6,13");
    EXPECT_EQ(map.at("VEND1.CONTROL.SPEED").field->choice(2)->name, "fast");
    EXPECT_EQ(map.find(MapAddress::parse("c22:20"))->access(), MapAccess::clearOnRead);
    EXPECT_THAT(reportsOf(imported),
                ElementsAre("4 VEND1.CONTROL.SPEED: '9=wrong' is no value of it; left out",
                            "6 BAD: 'nowhere' is no address; left out",
                            "0 : column owner: 1 not carried over"));
}

TEST(Import, RefusesWhatItDoesNotKnow) {
    EXPECT_THAT(importError("{}"), HasSubstr("is a map already: load it"));
    EXPECT_THAT(importError("<html></html>"), HasSubstr("is neither CMSIS-SVD nor an address table of uHAL"));
    EXPECT_THAT(importError("<device><name>"), HasSubstr("is no XML: "));
    EXPECT_THAT(importError("a,b\n1,2\n"), HasSubstr("is no table of registers"));
    EXPECT_THAT(importError(""), HasSubstr("is no table of registers"));
}

TEST(Import, RefusesDocumentTypesWithTheirEntities) {
    EXPECT_THAT(importError("<?xml version=\"1.0\"?>\n<!DOCTYPE d [<!ENTITY a \"aaaa\"><!ENTITY b "
                            "\"&a;&a;\">]>\n<device>&b;</device>"),
                HasSubstr(":2: has a document type"));
}

TEST(Import, EndsOnHostileXml) {
    EXPECT_THAT(importError("<device>" + times(250000, "<a/>")),
                HasSubstr("more elements and attributes than 200000"));
    EXPECT_THAT(importError("<node>" + times(60000, "<node id='a'>") + times(60000, "</node>") + "</node>"),
                "none");
    EXPECT_THAT(
        importError("<device><peripherals><peripheral><name>P</name><registers><register><name>R%s</name>"
                    "<dim>1000000000</dim></register></registers></peripheral></peripherals></device>"),
        "none");
    const std::string cluster = "<cluster><name>C[%s]</name><dim>1000</dim><dimIncrement>4</dimIncrement>";
    EXPECT_THAT(importError("<device><peripherals><peripheral><name>P</name><registers>" + times(7, cluster) +
                            "<register><name>R</name></register>" + times(7, "</cluster>") +
                            "</registers></peripheral></peripherals></device>"),
                HasSubstr("becomes more than a map may have"));
}

TEST(Import, TakesUnitsOfUpTo8BytesAndMmdsUpTo31) {
    ImportOptions options;
    options.space = MapSpace::c45;
    options.mmd = 31;
    options.addressUnit = 8;
    EXPECT_EQ(importOf("board.svd", options).map.find("TIMER0.MATCH[0]"), nullptr) << "beyond 7.0xFFFF";
    options.mmd = 32;
    EXPECT_THROW(importOf("board.svd", options), MapError);
    options.mmd = 31;
    options.addressUnit = 9;
    EXPECT_THROW(importOf("board.svd", options), MapError);
}

TEST(ImportCsv, MakesNamesAndTextsThatAMapTakes) {
    const ImportedMap imported =
        importText("register,address,text\n"
                   "0B,7.1,  Hi!\tthere  \n"
                   "9a-b,7.2," +
                   std::string(1025, 'x') + "\n,7.3,\n" + std::string(61, 'N') + ",7.4,\nSHORT,7.5\n\n");
    EXPECT_THAT(linesOf(imported.map), ElementsAre("_0B 7.0x0001", "_9a_b 7.0x0002", "_ 7.0x0003",
                                                   std::string(60, 'N') + " 7.0x0004", "SHORT 7.0x0005"));
    EXPECT_EQ(imported.map.find("_0B")->text(), "Hi! there");
    EXPECT_EQ(imported.map.find("_9a_b")->text(), std::string(1024, 'x'));
    EXPECT_THAT(reportsOf(imported), ElementsAre());
}

TEST(ImportCsv, TakesTheWidthsAndAccessesThatAMapHas) {
    const ImportedMap imported = importText("register,address,width,reset,access,field,bits\n"
                                            "A,smbus:1,8,,,,\nB,ext32:0,16,,,,\nC,ext32:4,32,,,,\n"
                                            "D,ext32:8,64,,,,\nE,ext32:16,12,,,,\nF,7.1,12,0xFFFF,ro,F,0\n"
                                            "G,7.2,,0x10000,,,\nH,c22:1,32,,,,\n");
    std::vector<unsigned> widths;
    for (const MapRegister& each : imported.map.registers())
        widths.push_back(each.width());
    EXPECT_EQ(widths, (std::vector<unsigned>{8, 16, 32, 64, 32, 16, 16}));
    EXPECT_EQ(imported.map.find("F")->access(), MapAccess::rw);
    EXPECT_EQ(imported.map.at("F.F").field->access, MapAccess::ro);
    EXPECT_EQ(imported.map.find("F")->reset(), 0xFFFFU);
    EXPECT_THAT(reportsOf(imported), ElementsAre("8 G: its reset is wider than itself; left out",
                                                 "9 H: has 32 bits, where registers have 16; left out"));
}

TEST(ImportCsv, LeavesOutWhatHasTheNameOfARegisterOrABlock) {
    EXPECT_THAT(
        reportsOf(importText("register,address\nP.Q.R,7.1\nP.Q.R,7.2\nP,7.3\nP.Q,7.4\nP.Q.R.S,7.5\n")),
        ElementsAre("3 P.Q.R: its name is taken; left out", "4 P: its name is taken; left out",
                    "5 P.Q: its name is taken; left out", "6 P.Q.R.S: its name is taken; left out"));
}

TEST(ImportCsv, NeedsBothColumnsAmongTheFirst64) {
    const std::string refusal = ":1: is no table of registers: the first line has to name the columns "
                                "'register' and 'address'";
    EXPECT_EQ(importError("register\nA\n"), refusal);
    EXPECT_EQ(importError("address\n7.1\n"), refusal);
    EXPECT_EQ(importError(times(62, "x,") + "register,address\n" + times(62, ",") + "A,7.1\n"), "none");
    EXPECT_EQ(importError(times(63, "x,") + "register,address\n" + times(63, ",") + "A,7.1\n"), refusal);
}

TEST(ImportCsv, TellsOfALineThatHasNothingButAName) {
    EXPECT_THAT(reportsOf(importText("register,address\nA\n")),
                ElementsAre("2 A: '' is no address; left out"));
}

TEST(Import, KeepsAThousandReportsAndCountsTheRest) {
    std::string rows = "register,address\n";
    for (int i = 0; i < 1001; ++i)
        rows += "R,nowhere\n";
    const auto reports = reportsOf(importText(rows));
    ASSERT_EQ(reports.size(), 1001U);
    EXPECT_EQ(reports[999], "1001 R: 'nowhere' is no address; left out");
    EXPECT_EQ(reports[1000], "0 : further reports: 1 not carried over");
}

TEST(ImportUhal, LeavesOutWhatRunsIntoAnotherOne) {
    const ImportedMap imported =
        importText("<node id='T'><node id='M' address='0x10' mode='incremental' size='4'/><node id='IN' "
                   "address='0x13'/>\n"
                   "<node id='AFTER' address='0x14'/><node id='BEFORE' address='0xF'/>\n"
                   "<node id='ACROSS' address='0xD' mode='incremental' size='3'/>\n"
                   "<node id='BESIDE' address='0xD' mode='incremental' size='2'/>\n"
                   "<node id='LAST' address='0x3FFFFFFF'/><node id='BEYOND' address='0x40000000'/>\n"
                   "<node id='NOTHING' address='0x20'><node id='F' mask='0'/><node id='G' "
                   "mask='0xC0000001'/></node></node>");
    EXPECT_THAT(linesOf(imported.map),
                ElementsAre("M[0] ext32:0x00000040", "M[1] ext32:0x00000044", "M[2] ext32:0x00000048",
                            "M[3] ext32:0x0000004C", "AFTER ext32:0x00000050", "BEFORE ext32:0x0000003C",
                            "BESIDE[0] ext32:0x00000034", "BESIDE[1] ext32:0x00000038",
                            "LAST ext32:0xFFFFFFFC", "NOTHING ext32:0x00000080"));
    EXPECT_EQ(imported.map.at("NOTHING.G").field->bitsText(), "31:30,0");
    EXPECT_THAT(reportsOf(imported),
                ElementsAre("1 IN: its place at ext32:0x0000004C is taken; left out",
                            "3 ACROSS: its place at ext32:0x00000034 is taken; left out",
                            "5 BEYOND: 0x100000000 is no address of the space ext32; left out",
                            "6 NOTHING.F: has no bits; left out"));
}

TEST(ImportUhal, TakesEightNodesWithinEachOther) {
    const auto nested = [](int depth) {
        return importText(times(depth, "<node id='N'>") + "<node id='R'/>" + times(depth, "</node>"));
    };
    EXPECT_EQ(nested(9).map.size(), 1U);
    EXPECT_THAT(reportsOf(nested(10)), ElementsAre("1 N: lies deeper within nodes than 8; left out"));
}

TEST(ImportCsv, TakesValuesThatFitAndKeepsTheirNamesApart) {
    const ImportedMap imported = importText("register,address,field,bits,values\n"
                                            "A,7.1,F,1:0,0=a;3=b;4=c;1=a\nA,,G,x,\nB,7.2,H,0,0=" +
                                            std::string(201, 'n') + "\n");
    const MapField& field = *imported.map.at("A.F").field;
    ASSERT_EQ(field.choices.size(), 3U);
    EXPECT_EQ(field.choice(0)->name, "a");
    EXPECT_EQ(field.choice(1)->name, "a 1");
    EXPECT_EQ(field.choice(3)->name, "b");
    EXPECT_EQ(imported.map.at("B.H").field->choice(0)->name, std::string(200, 'n'));
    EXPECT_THAT(
        reportsOf(imported),
        ElementsAre("2 A.F: '4=c' is no value of it; left out",
                    "3 A.G: 'x' are no bits: \"15\", \"15:12\" and \"13,6\" are, up to 63; left out"));
}

TEST(ImportCsv, MakesTheFirstEightPartsOfANameBlocks) {
    EXPECT_THAT(linesOf(importText("register,address\nA.B.C.D.E.F.G.H.I.J,7.1\n").map),
                ElementsAre("A.B.C.D.E.F.G.H.I_J 7.0x0001"));
}

TEST(ImportCsv, TakesNamesAndValuesWhoseFirstPartIsEmpty) {
    const ImportedMap imported = importText("register,address,field,bits,values\n"
                                            ".A,7.1,F,0,;1=on\n..B,7.2\nC,7.4,F,0,=on\n");
    EXPECT_THAT(linesOf(imported.map), ElementsAre("C 7.0x0004", "_.A 7.0x0001", "_._.B 7.0x0002"));
    EXPECT_EQ(imported.map.at("_.A.F").field->choice(1)->name, "on");
    EXPECT_THAT(reportsOf(imported), ElementsAre("2 .A.F: '' is no value of it; left out",
                                                 "4 C.F: '=on' is no value of it; left out"));
}

TEST(ImportCsv, ReadsCellsAsTheyAreQuotedAndLinesAsTheyEnd) {
    const ImportedMap imported =
        importText("address,text,register\r\n7.1,\"x \"\"y, z\"\" w\",A\r\n7.2,,7\r\n,,\r\n7.3,,LAST");
    EXPECT_THAT(linesOf(imported.map), ElementsAre("A 7.0x0001", "_7 7.0x0002", "LAST 7.0x0003"));
    EXPECT_EQ(imported.map.find("A")->text(), "x \"y, z\" w");
    EXPECT_EQ(imported.map.find("A")->access(), MapAccess::rw);
    EXPECT_THAT(reportsOf(imported), ElementsAre("4 : '' is no address; left out"));
    EXPECT_THAT(linesOf(importText("register,address\n,7.3\n").map), ElementsAre("_ 7.0x0003"));
}

TEST(ImportCsv, KeepsTheTextOfAFieldWithValues_AndTakesNoValueWithoutAName) {
    const ImportedMap imported =
        importText("register,address,field,bits,text,values\nA,7.1,F,1:0,About,0=a;3\n");
    EXPECT_EQ(imported.map.at("A.F").field->text, "About");
    EXPECT_THAT(reportsOf(imported), ElementsAre("2 A.F: '3' is no value of it; left out"));
}

TEST(ImportUhal, TakesMasksAndQueuesAsTheyAre) {
    const ImportedMap imported =
        importText("<node id='T'><node id='R' address='0'><node id='F' mask='0x3'/></node>"
                   "<node id='Q' address='1' mode='port' size='4'/></node>");
    EXPECT_EQ(imported.map.at("R.F").field->bitsText(), "1:0");
    EXPECT_EQ(imported.map.find("R")->access(), MapAccess::rw);
    EXPECT_FALSE(imported.map.find("Q")->isSafeToRead());
}

TEST(ImportUhal, LeavesOutFieldsBeyondTheWord_AndRegistersBeyondEverySpace) {
    const ImportedMap imported =
        importText("<node id='T'><node id='R' address='0'><node id='F' mask='0x8000000000000001'/></node>\n"
                   "<node id='FAR' address='0x4000000000000000'/></node>");
    EXPECT_THAT(linesOf(imported.map), ElementsAre("R ext32:0x00000000"));
    EXPECT_THAT(reportsOf(imported),
                ElementsAre("1 R.F: its name or bits are taken or beyond the register; left out",
                            "2 FAR: 0xFFFFFFFFFFFFFFFC is no address of the space ext32; left out"));
}

TEST(ImportUhal, CountsAThousandKindsOfWhatItLeavesBehind) {
    std::string elements;
    for (int i = 1000; i < 2001; ++i)
        elements += "<e" + std::to_string(i) + "/>";
    const auto reports = reportsOf(importText("<node id='T'>" + elements + "<e1000/></node>"));
    ASSERT_EQ(reports.size(), 1000U);
    EXPECT_EQ(reports[0], "0 : element e1000: 2 not carried over");
    EXPECT_EQ(reports[999], "0 : element e1999: 1 not carried over");
}

TEST(Import, TakesAsManyRegistersAndBytesAsAMapMayHave) {
    const auto memory = [](const char* size) {
        return "<node id='T'><node id='M' address='0' mode='incremental' size='" + std::string(size) +
               "'/></node>";
    };
    EXPECT_EQ(importText(memory("131072")).map.size(), 131072U);
    EXPECT_EQ(importError(memory("131073")),
              ":1: becomes more than a map may have: 131072 registers and 8 MiB");
    const std::string head = "register,address\n";
    constexpr std::size_t kMost = 8U << 20U;
    EXPECT_EQ(importError(head + std::string(kMost - head.size(), 'x')), "none");
    EXPECT_EQ(importError(head + std::string(kMost + 1 - head.size(), 'x')),
              ": is larger than 8 MiB, with the files that include it");
    EXPECT_EQ(importError("{}"), ": is a map already: load it");
}

} // namespace
} // namespace OrvaneTest
