// Names and fields on the command line, against a PHY that behaves by its map.
#include "tests/support/tools/Program.h"

#include <filesystem>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <nlohmann/json.hpp>
#include <orvane/lab_maps.h>

namespace OrvaneTest {
namespace {

using OrvaneSim::Space;
using testing::HasSubstr;
using testing::StartsWith;

constexpr const char* kWren = R"({
  "format": "orvane-map-1", "name": "wren", "identifiers": ["0x00112230/0xFFFFFFF0"],
  "blocks": {"CHIP": {"at": "30.0xC000", "registers": {
    "CONTROL": {"at": 0, "reset": "0x2000", "text": "Control of the chip.", "fields": {
        "RESET": "15 self-clearing: Resets the chip",
        "SPEED": {"bits": "6,13", "values": {"0": "10 Mb/s", "1": "100 Mb/s", "2": "1000 Mb/s"}},
        "LED": "0: Lights the LED"}},
    "STATUS": {"at": 1, "reset": 4, "access": "ro", "fields": {"LINK": "2 latching-low", "UP": 0}},
    "ERRORS": {"at": 2, "reset": 5, "access": "clear-on-read"},
    "TEMPERATURE": {"at": 3, "access": "ro", "fields": {"VALUE": {"bits": "7:0", "scale": 0.5, "unit": "C"}}},
    "PAGE": {"at": "0x1F"}},
    "blocks": {"EYE": {"at": "0x10", "page": {"select": "CHIP.PAGE", "value": 2},
                       "registers": {"HEIGHT": {"at": 0, "reset": 22}}}}}}})";

class OrvaneNames : public testing::Test, protected OneBoardLab {
protected:
    Folder folder;
    std::string file = folder.write("wren.json", kWren);

    OrvaneNames() {
        board.useMap({0, 3, 0x00112233, OrvaneSim::mappedRegisters(Orvane::RegisterMap::parse(kWren))});
    }

    // With the map; DEVICE and PHY follow the verb.
    Outcome named(const std::string& verb, const Arguments& rest) const {
        Arguments words{verb, "OV0001:0", "3"};
        words.insert(words.end(), rest.begin(), rest.end());
        words.insert(words.end(), {"--map", file});
        return run(words);
    }
    void set(unsigned number, unsigned value) {
        board.setRegister(Space::C45, 0, 3, 0x1EC000 + number, value);
    }
    unsigned held(unsigned number) const { return board.registerValue(Space::C45, 0, 3, 0x1EC000 + number); }
};

TEST_F(OrvaneNames, OfOneRegisterPrintItsValue) {
    EXPECT_EQ(named("read", {"CHIP.CONTROL"}), prints("0x2000\n"));
}

TEST_F(OrvaneNames, OfOneFieldPrintWhatItMeans) {
    EXPECT_EQ(named("read", {"CHIP.CONTROL.SPEED"}), prints("100 Mb/s\n"));
}

TEST_F(OrvaneNames, OfTheStandardNeedNoMap) {
    board.setRegister(Space::C45, 0, 3, 0x070001, 0x0029);
    EXPECT_EQ(run({"read", "OV0001:0", "3", "AN.STATUS"}), prints("0x0029\n"));
}

TEST_F(OrvaneNames, ShowFieldsWhereTheyAreAskedFor) {
    set(3, 97);
    EXPECT_EQ(named("read", {"CHIP.CONTROL", "30.0xC003", "1.2", "--fields"}),
              prints("ADDRESS    VALUE   REGISTER          BITS  FIELD     MEANING\n"
                     "30.0xC000  0x2000  CHIP.CONTROL      15    RESET     0\n"
                     "                                     6,13  SPEED     100 Mb/s\n"
                     "                                     0     LED       0\n"
                     "30.0xC003  0x0061  CHIP.TEMPERATURE  7:0   VALUE     48.5 C\n"
                     "1.0x0002   0x0011  PMA.ID1           15:0  OUI_HIGH  0x11\n"));
}

TEST_F(OrvaneNames, AreShownBesideSeveralValues) {
    EXPECT_EQ(named("read", {"CHIP.CONTROL", "CHIP.PAGE"}),
              prints("ADDRESS    REGISTER      VALUE   BITS                 DECIMAL\n"
                     "30.0xC000  CHIP.CONTROL  0x2000  0010 0000 0000 0000     8192\n"
                     "30.0xC01F  CHIP.PAGE     0x0000  0000 0000 0000 0000        0\n"));
}

TEST_F(OrvaneNames, WithFieldsAreOneLineOfCsvForEachRegister) {
    EXPECT_EQ(
        named("read", {"CHIP.STATUS", "--fields", "--csv"}),
        prints("record,device,board,port,phy,space,at,name,value,fields,error.kind,error.code,error.text\n"
               "register,OV0001:0,OV0001,0,3,c45,30.0xC001,CHIP.STATUS,4,\"LINK 1, UP 0\",,,\n"));
}

TEST_F(OrvaneNames, WithFieldsAreRegistersWithAListInJson) {
    EXPECT_EQ(
        nlohmann::json::parse(named("modify", {"CHIP.CONTROL.SPEED", "2", "--fields", "--json"}).output),
        nlohmann::json::parse(R"([{"record": "register", "device": "OV0001:0", "board": "OV0001",
                "port": 0, "phy": 3, "space": "c45", "mmd": 30, "register": 49152, "at": "30.0xC000",
                "name": "CHIP.CONTROL", "before": 8192, "written": 64, "value": 64, "fields": [
                {"field": "RESET", "bits": "15", "raw": 0, "meaning": "0"},
                {"field": "SPEED", "bits": "6,13", "raw": 2, "meaning": "1000 Mb/s", "was": "100 Mb/s"},
                {"field": "LED", "bits": "0", "raw": 0, "meaning": "0"}]}])"));
}

TEST_F(OrvaneNames, OfOneFieldAreThatFieldInJson) {
    const auto records = nlohmann::json::parse(named("read", {"CHIP.CONTROL.SPEED", "--json"}).output);
    EXPECT_EQ(
        records.at(0)["fields"],
        nlohmann::json::parse(R"([{"field": "SPEED", "bits": "6,13", "raw": 1, "meaning": "100 Mb/s"}])"));
}

TEST_F(OrvaneNames, OfADryRunAreThoseOfTheMapForTheIdentifierThatIsGiven) {
    std::filesystem::create_directories(folder.path("orvane/maps"));
    folder.write("orvane/maps/wren.json", kWren);
    Environment environment = OneBoardLab::environment();
    environment["XDG_CONFIG_HOME"] = folder.path("");
    Arguments words{"read", "OV0001:0", "3", "30.0xC000", "--dry-run"};
    EXPECT_EQ(orvane(words, environment),
              fails(0,
                    "orvane: no board is asked, so maps that are chosen by the PHY's identifier are left out "
                    "(--phy-identifier says which PHY it is)\n",
                    "read  30.0xC000\n"));
    words.insert(words.end(), {"--phy-identifier", "0x00112233"});
    EXPECT_EQ(orvane(words, environment), prints("read  30.0xC000         CHIP.CONTROL\n"));
    EXPECT_TRUE(board.requests().empty());
}

TEST_F(OrvaneNames, OfADryRunOfADumpAreThoseOfTheMapForThePhyThatItWasTakenOf) {
    std::filesystem::create_directories(folder.path("orvane/maps"));
    folder.write("orvane/maps/wren.json", kWren);
    Environment environment = OneBoardLab::environment();
    environment["XDG_CONFIG_HOME"] = folder.path("");
    const std::string dump = folder.path("a.dump");
    orvane({"dump", "OV0001:0", "3", "CHIP.CONTROL", "-o", dump}, environment);
    board.forgetRequests();
    const Outcome outcome = orvane({"restore", dump, "--dry-run"}, environment);
    EXPECT_EQ(outcome.error, "");
    EXPECT_THAT(outcome.output, StartsWith("write 30.0xC000 0x2000  CHIP.CONTROL: "));
    EXPECT_TRUE(board.requests().empty());
}

TEST_F(OrvaneNames, ByAPatternLeaveOutWhatAReadChanges) {
    const Outcome outcome = named("read", {"CHIP.*"});
    EXPECT_EQ(outcome.error,
              "orvane: left out, for a read changes them or tells nothing: CHIP.STATUS CHIP.ERRORS "
              "(--side-effects reads them)\n");
    EXPECT_EQ(held(2), 5U);
}

TEST_F(OrvaneNames, ByAPatternReadWhatAReadChanges_WhereThatIsAskedFor) {
    EXPECT_EQ(named("read", {"CHIP.ERR*", "--side-effects"}), prints("0x0005\n"));
    EXPECT_EQ(held(2), 0U);
}

TEST_F(OrvaneNames, OfLatchedBitsTellWhatWasAndWhatIs) {
    set(1, 0);
    set(1, 5);
    EXPECT_EQ(named("read", {"CHIP.STATUS", "--twice"}),
              prints("ADDRESS    VALUE   REGISTER     BITS  FIELD  MEANING  BEFORE\n"
                     "30.0xC001  0x0005  CHIP.STATUS  2     LINK   1        0\n"
                     "                                0     UP     1\n"));
    EXPECT_EQ(board.requestsOf("mdio_mixedblock").size() + board.requestsOf("mdio_read").size(), 1U);
}

TEST_F(OrvaneNames, ThatAreNotThereAreAnsweredWithTheNearest) {
    EXPECT_EQ(
        named("read", {"CHIP.CONTROLL"}),
        fails(2, "orvane: there is no 'CHIP.CONTROLL' in wren, ieee8023; did you mean 'CHIP.CONTROL'?\n"));
}

TEST_F(OrvaneNames, OfRegistersOnPagesReachThem_AndThePageIsAsBefore) {
    set(0x1F, 7);
    EXPECT_EQ(named("read", {"CHIP.EYE.HEIGHT"}), prints("0x0016\n"));
    EXPECT_EQ(named("write", {"CHIP.EYE.HEIGHT", "23"}), prints(""));
    EXPECT_EQ(named("read", {"30.0xC010@2"}), prints("0x0017\n"));
    EXPECT_EQ(held(0x1F), 7U);
}

TEST_F(OrvaneNames, OfFieldsAreWritten_ByNumberOrChoice) {
    EXPECT_EQ(named("write", {"CHIP.CONTROL.SPEED", "1000 Mb/s", "CHIP.CONTROL.LED", "1"}), prints(""));
    EXPECT_EQ(held(0), 0x0041U);
}

TEST_F(OrvaneNames, OfFieldsThatCannotTakeAValueAreRefusedUnsent) {
    EXPECT_EQ(named("write", {"CHIP.CONTROL.SPEED", "4"}),
              fails(2, "orvane: CHIP.CONTROL.SPEED must not be above 3 (0x3): '4'\n"));
    EXPECT_EQ(named("write", {"CHIP.STATUS.LINK", "1"}),
              fails(2, "orvane: nothing can be written to CHIP.STATUS.LINK: its access is latching-low\n"));
    EXPECT_TRUE(board.requests("mdio").empty());
}

TEST_F(OrvaneNames, OfFieldsAreModified_AndWhatChangedIsMarked) {
    EXPECT_EQ(named("modify", {"CHIP.CONTROL.SPEED", "2", "--fields"}),
              prints("ADDRESS    VALUE   REGISTER      BITS  FIELD  MEANING    BEFORE\n"
                     "30.0xC000  0x0040  CHIP.CONTROL  15    RESET  0\n"
                     "                                 6,13  SPEED  1000 Mb/s  100 Mb/s\n"
                     "                                 0     LED    0\n"));
}

TEST_F(OrvaneNames, OfWholeRegistersNeedAMaskToBeModified) {
    EXPECT_EQ(named("modify", {"CHIP.CONTROL", "1"}),
              fails(2, "orvane: MASK is required, but for a field\n"));
}

TEST_F(OrvaneNames, AreDumped_AndComparedByField) {
    const std::string before = folder.path("before.dump");
    const Outcome dumped = named("dump", {"CHIP", "-o", before});
    EXPECT_EQ(dumped.output, before + ": 4 registers\n");
    EXPECT_THAT(
        folder.content("before.dump"),
        testing::EndsWith("# identifier 0x00112233\n# maps wren, ieee8023\n# space c45\n# ranges CHIP\n"
                          "30.0xC000 0x2000\n30.0xC003 0x0000\n30.0xC01F 0x0000\n"
                          "30.0xC010@2 0x0016\n"));
    set(0, 0x0041);
    EXPECT_EQ(run({"diff", before, "--live", "--fields", "--map", file}),
              fails(1, "",
                    "ADDRESS    VALUE   REGISTER      BITS  FIELD  MEANING    BEFORE\n"
                    "30.0xC000  0x0041  CHIP.CONTROL  6,13  SPEED  1000 Mb/s  100 Mb/s\n"
                    "                                 0     LED    1          0\n"));
}

TEST_F(OrvaneNames, OfARangeLeaveOutWhatAReadChanges_WhereAMapIsGiven) {
    const Outcome outcome = named("read", {"30.0xC000+4", "--csv"});
    EXPECT_THAT(outcome.error, HasSubstr("CHIP.STATUS CHIP.ERRORS"));
    EXPECT_EQ(held(2), 5U);
}

TEST_F(OrvaneNames, AreWatchedByField) {
    EXPECT_EQ(named("watch", {"CHIP.CONTROL", "--fields", "--count", "1"}),
              prints("1 30.0xC000 0x2000\n1 CHIP.CONTROL.RESET 0\n1 CHIP.CONTROL.SPEED 100 Mb/s\n1 "
                     "CHIP.CONTROL.LED 0\n"));
}

TEST_F(OrvaneNames, AreTakenFromTheEnvironment) {
    Environment with = environment();
    with["ORVANE_MAPS"] = file;
    EXPECT_EQ(orvane({"read", "OV0001:0", "3", "CHIP.CONTROL.SPEED"}, with), prints("100 Mb/s\n"));
}

TEST_F(OrvaneNames, AreFoundBesideTheUsersConfiguration_ByThePhysIdentifier) {
    std::filesystem::create_directories(folder.path("orvane/maps"));
    folder.write("orvane/maps/wren.json", kWren);
    Environment with = environment();
    with["XDG_CONFIG_HOME"] = folder.path("");
    EXPECT_EQ(orvane({"read", "OV0001:0", "3", "CHIP.CONTROL.SPEED"}, with), prints("100 Mb/s\n"));
    EXPECT_THAT(orvane({"read", "OV0001:0", "4", "CHIP.CONTROL.SPEED"}, with).error,
                StartsWith("orvane: there is no 'CHIP.CONTROL.SPEED' in ieee8023"));
}

TEST_F(OrvaneNames, OfABrokenMapBesideTheUsersConfigurationAreMissing_AndTheOthersAreThere) {
    std::filesystem::create_directories(folder.path("orvane/maps"));
    const std::string broken =
        folder.write("orvane/maps/broken.json", R"({"format": "orvane-map-1", "nme": "b"})");
    folder.write("orvane/maps/wren.json", kWren);
    Environment with = environment();
    with["XDG_CONFIG_HOME"] = folder.path("");
    const Outcome outcome = orvane({"read", "OV0001:0", "3", "CHIP.CONTROL.SPEED"}, with);
    EXPECT_EQ(outcome.status, 0);
    EXPECT_EQ(outcome.output, "100 Mb/s\n");
    EXPECT_THAT(outcome.error, StartsWith("orvane: left out: " + broken + ":1: "));
}

TEST_F(OrvaneNames, OnATerminalShowTheirFields) {
    EXPECT_THAT(
        orvaneOnTerminal({"read", "OV0001:0", "3", "CHIP.CONTROL", "--map", file}, environment()).output,
        HasSubstr("SPEED  100 Mb/s"));
}

TEST(OrvaneDecode, ExplainsAValueWithoutABoard) {
    const Outcome outcome = orvane({"decode", "7.1", "0x0029"});
    EXPECT_EQ(outcome.status, 0);
    EXPECT_THAT(outcome.output, HasSubstr("COMPLETE"));
    EXPECT_THAT(outcome.output, HasSubstr("0: was low since the last read"));
}

TEST(OrvaneDecode, RefusesWhatNoMapHas) {
    EXPECT_EQ(orvane({"decode", "30.0xC000", "1"}), fails(1, "orvane: no map has 30.0xC000\n"));
}

TEST(OrvaneMap, IsChecked_AndEverythingWrongIsTold) {
    const Folder folder;
    const std::string good = folder.write("wren.json", kWren);
    EXPECT_EQ(orvane({"map", "check", good}), prints(good + ": wren, 6 registers\n"));
    const std::string bad = folder.write(
        "bad.json",
        R"({"format": "orvane-map-1", "name": "bad", "registers": {"R": {"at": "7.1", "acess": "rw"}}})");
    EXPECT_EQ(orvane({"map", "check", bad}),
              fails(1, "orvane: " + bad + ":1: registers.R.acess: is not known here\n"));
}

TEST(OrvaneMap, IsShownByName) {
    const Folder folder;
    EXPECT_EQ(orvane({"map", "show", "CHIP.CONTROL", "--map", folder.write("wren.json", kWren)}),
              prints("NAME                ADDRESS    BITS  ACCESS         TEXT\n"
                     "CHIP.CONTROL        30.0xC000  16    rw             Control of the chip.\n"
                     "CHIP.CONTROL.RESET  30.0xC000  15    self-clearing  Resets the chip\n"
                     "CHIP.CONTROL.SPEED  30.0xC000  6,13  rw\n"
                     "CHIP.CONTROL.LED    30.0xC000  0     rw             Lights the LED\n"));
}

TEST(OrvaneMap, IsSearchedByWords) {
    const Folder folder;
    EXPECT_EQ(orvane({"map", "search", "lights", "--map", folder.write("wren.json", kWren)}),
              prints("NAME              ADDRESS    BITS  ACCESS  TEXT\n"
                     "CHIP.CONTROL.LED  30.0xC000  0     rw      Lights the LED\n"));
    EXPECT_EQ(orvane({"map", "search", "xyzzy"}),
              fails(1, "orvane: nothing has 'xyzzy' in its name or text\n"));
}

TEST(OrvaneMap, IsImported_AndWhatIsNotCarriedOverIsTold) {
    const Folder folder;
    const std::string table = folder.write("chip.csv", "register,address,colour\nR,7.1,red\n");
    const Outcome outcome = orvane({"map", "import", table, "-o", folder.path("chip.json")});
    EXPECT_EQ(outcome.status, 0);
    EXPECT_THAT(outcome.error, HasSubstr("not carried over: "));
    EXPECT_EQ(orvane({"map", "check", folder.path("chip.json")}).output,
              folder.path("chip.json") + ": imported, 1 registers\n");
}

TEST(OrvaneMap, IsExportedAsACHeader) {
    const Folder folder;
    EXPECT_THAT(
        orvane({"map", "export", folder.write("wren.json", kWren), "--form", "c", "--prefix", "W"}).output,
        HasSubstr("W_CHIP_CONTROL_SPEED_MASK"));
}

TEST(OrvaneMap, CompletesNames) {
    const Folder folder;
    EXPECT_EQ(orvane({"map", "complete", "CHIP.C", "--map", folder.write("wren.json", kWren)}),
              prints("CHIP.CONTROL\n"));
    const std::string script = folder.write("completion", orvane({"generate", "bash"}).output);
    const std::string words =
        folder.write("try", "orvane() { \"$ORVANE_TOOL\" \"$@\"; }\nsource " + script +
                                "\nCOMP_WORDS=(orvane read OV0001:0 3 --map " + folder.path("wren.json") +
                                " CHIP.CONTROL.S)\nCOMP_CWORD=6\n_orvane\n"
                                "printf '%s\\n' \"${COMPREPLY[@]}\"\n");
    EXPECT_EQ(shellOutput("export ORVANE_TOOL; bash " + words), "CHIP.CONTROL.SPEED\n");
}

} // namespace
} // namespace OrvaneTest
