// --json and --csv: what verbs print for programs, held against the schema of records.
#include "tests/support/tools/Program.h"

#include <algorithm>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <nlohmann/json.hpp>
#include <regex>

namespace OrvaneTest {
namespace {

using testing::StartsWith;

// A verb, and how many records it prints.
struct Story {
    std::string name;
    Arguments words;
    std::size_t records;
};

const Story kStories[] = {
    {"Info", {"info", "OV0001:0", "--phy", "3"}, 1},
    {"List", {"list"}, 3},
    {"Scan", {"scan", "OV0001:0", "3-4"}, 2},
    {"Ping", {"ping", "OV0001:0", "-c", "2", "-i", "0"}, 3},
    {"Read", {"read", "OV0001:0", "3", "1.2", "1.3"}, 2},
    {"ReadFields", {"read", "OV0001:0", "3", "AN.STATUS", "AN.CONTROL", "--fields"}, 2},
    {"ReadTwice", {"read", "OV0001:0", "3", "AN.STATUS", "--twice"}, 1},
    {"ReadDry", {"read", "OV0001:0", "3", "1.2+4", "--dry-run"}, 4},
    {"Decode", {"decode", "7.1", "4", "AN.CONTROL", "0x1000"}, 2},
    {"DumpOut", {"dump", "OV0001:0", "3", "1.0+300", "-o", "-"}, 300},
    {"WriteUnread", {"write", "OV0001:0", "3", "30.0xC010+2", "1"}, 2},
    {"WatchFields", {"watch", "OV0001:0", "3", "AN.STATUS", "--count", "1", "--fields"}, 1},
    {"Write", {"write", "OV0001:0", "3", "30.0xC010", "1", "--readback"}, 1},
    {"Modify", {"modify", "OV0001:0", "3", "30.0xC010", "1", "1"}, 1},
    {"Watch", {"watch", "OV0001:0", "3", "1.2", "1.3", "--count", "1"}, 2},
    {"I2cGet", {"i2c", "get", "OV0001:0", "0", "0x50", "0", "6"}, 6},
    {"I2cRead", {"i2c", "read", "OV0001:0", "0", "0x50", "0x41", "2"}, 2},
    {"I2cGather", {"i2c", "gather", "OV0001:0", "0:0x50:0x40:2", "0:0x48:0:2"}, 4},
    {"I2cDump", {"i2c", "dump", "OV0001:0", "0", "0x50"}, 256},
    {"I2cSet", {"i2c", "set", "OV0001:0", "0", "0x50", "0x40", "1"}, 1},
    {"GpioGet", {"gpio", "get", "OV0001:0", "0", "16"}, 2},
    {"GpioOutputs", {"gpio", "outputs", "OV0001:0", "0"}, 1},
    {"GpioBitBang", {"gpio", "bitbang", "OV0001:0", "0=0", "16"}, 2},
    {"GpioInfo", {"gpio", "info", "OV0001:0"}, 32},
    {"GpioReset", {"gpio", "reset", "OV0001:0"}, 1},
    {"JtagIds", {"jtag", "ids", "OV0001:0"}, 2},
    {"JtagMax", {"jtag", "max", "OV0001:0"}, 1},
    {"JtagShift", {"jtag", "shift", "OV0001:0", "", "111110100"}, 1},
    {"JtagMulti", {"jtag", "multi", "OV0001:0", ":111110100:", "0000:0001:10"}, 2},
    {"AdcCapture", {"adc", "capture", "OV0001:0", "--channels", "5", "--samples", "3"}, 6},
    {"AdcMaxima", {"adc", "max", "OV0001:0"}, 1},
    {"ThermalState", {"thermal", "state", "OV0001:0"}, 1},
    {"ThermalWatch", {"thermal", "watch", "OV0001:0", "0", "85", "--count", "3", "--interval", "0"}, 3},
    {"Exec", {"exec", "OV0001:0", "hostname"}, 1},
};

class OrvaneRecords : public testing::TestWithParam<Story>, protected OneBoardLab {};

INSTANTIATE_TEST_SUITE_P(Verb, OrvaneRecords, testing::ValuesIn(kStories),
                         [](const auto& test) { return test.param.name; });

// How many records fit the schema, in the words of the check.
std::string checked(const std::string& records) {
    const Folder folder;
    return shellOutput(ORVANE_CHECK_RECORDS " 2>&1 <" + folder.write("records.json", records));
}

std::size_t lines(const std::string& text) {
    return static_cast<std::size_t>(std::count(text.begin(), text.end(), '\n'));
}

TEST_P(OrvaneRecords, FitTheSchemaAndAreLinesOfCsv) {
    run({"thermal", "connect", "OV0001:0"});
    Arguments words = GetParam().words;
    words.emplace_back("--json");
    const Outcome json = run(words);
    EXPECT_EQ(json.status, 0) << json;
    EXPECT_EQ(checked(json.output), std::to_string(GetParam().records) + " fit\n") << json.output;
    words.back() = "--csv";
    const Outcome csv = run(words);
    EXPECT_EQ(csv.status, 0) << csv;
    EXPECT_THAT(csv.output, StartsWith("record,device,board,port,phy,"));
    EXPECT_EQ(lines(csv.output), GetParam().records + 1);
}

struct OrvaneRecord : testing::Test, OneBoardLab {};

TEST_F(OrvaneRecord, HasNumbersAsNumbers) {
    EXPECT_EQ(nlohmann::json::parse(run({"i2c", "get", "OV0001:0", "0", "0x50", "5", "--json"}).output),
              nlohmann::json::parse(R"([{"record": "byte", "device": "OV0001:0", "board": "OV0001", "port": 0,
                "phy": 0, "bus": 0, "target": 80, "register": 5, "value": 49}])"));
    EXPECT_EQ(
        run({"i2c", "get", "OV0001:0", "0", "0x50", "5", "--csv"}),
        prints("record,device,board,port,phy,bus,target,register,value,error.kind,error.code,error.text\n"
               "byte,OV0001:0,OV0001,0,0,0,80,5,49,,,\n"));
}

TEST_F(OrvaneRecord, OfAnOperationWithoutResultTellsThatItWasDone) {
    EXPECT_EQ(run({"gpio", "set", "OV0001:0", "0=1", "--csv"}),
              prints("record,device,board,port,phy,operation,error.kind,error.code,error.text\n"
                     "done,OV0001:0,OV0001,0,0,gpio set 0=1,,,\n"));
}

TEST_F(OrvaneRecord, OfWrongUsageIsAFailure) {
    const Outcome outcome = run({"gpio", "set", "OV0001:0", "3", "--json"});
    EXPECT_EQ(outcome.status, 2);
    EXPECT_EQ(checked(outcome.output), "1 fit\n");
    EXPECT_EQ(nlohmann::json::parse(outcome.output)[0]["error"]["kind"], "usage");
}

TEST_F(OrvaneRecord, OfAFailureHasItsKindAndTheBoardsCode) {
    const Outcome outcome = run({"i2c", "get", "OV0001:0", "0", "0x33", "0", "--json"});
    EXPECT_EQ(outcome.status, 1);
    EXPECT_THAT(outcome.error, StartsWith("orvane: OV0001:0: i2c get 0 0x33 0: "));
    EXPECT_EQ(checked(outcome.output), "1 fit\n");
    const auto record = nlohmann::json::parse(outcome.output).at(0);
    EXPECT_EQ(record["record"], "failure");
    EXPECT_EQ(record["device"], "OV0001:0");
    EXPECT_EQ(record["error"]["kind"], "board_error");
    EXPECT_EQ(record["error"]["code"], -121);
}

TEST_F(OrvaneRecord, OfALogFitsTheSchema) {
    const Folder folder;
    const std::string log = folder.path("session.log");
    run({"gpio", "get", "OV0001:0", "0", "--log", log});
    orvane({"note", "here", "--log", log});
    EXPECT_EQ(checked(orvane({"log", log, "--timeline", "--json"}).output), "5 fit\n");
    const std::string old = folder.write("old.log", "0,3,MR,01,0002,0003\n0,3,MR,01,0002,0004\nup\n");
    EXPECT_EQ(checked(orvane({"log", old, "--json"}).output), "1 fit\n");
    EXPECT_EQ(checked(orvane({"log", old, "--register", "1.2", "--json"}).output), "2 fit\n");
    EXPECT_EQ(checked(orvane({"log", old, "--timeline", "--json"}).output), "3 fit\n");
    EXPECT_EQ(checked(orvane({"config", "--json"}).output), "4 fit\n");
}

TEST_F(OrvaneRecord, OfManyPlacesIsInOneDocumentWithTheFailures) {
    const Outcome outcome = run({"read", "OV0001:0,OV0001:7", "3", "AN.STATUS", "--fields", "--json"});
    EXPECT_EQ(outcome.status, 1);
    EXPECT_EQ(checked(outcome.output), "2 fit\n") << outcome.output;
    const auto records = nlohmann::json::parse(outcome.output);
    EXPECT_EQ(records.at(0)["fields"].size(), 9U);
    EXPECT_EQ(records.at(1)["device"], "OV0001:7");
    EXPECT_EQ(records.at(1)["error"]["kind"], "failed");
}

TEST_F(OrvaneRecord, OfWhatIsWrittenToFilesFitsTheSchema) {
    const Folder folder;
    const std::string dump = folder.path("a.dump");
    const auto expect = [](const Outcome& outcome, int status, const std::string& count) {
        EXPECT_EQ(outcome.status, status) << outcome;
        EXPECT_EQ(checked(outcome.output), count + " fit\n") << outcome.output;
    };
    expect(run({"dump", "OV0001:0", "3", "30.0xC010+4", "-o", dump, "--json"}), 0, "1");
    expect(run({"dump", "OV0001:0", "3-4", "1.2", "-o", folder.path("dumps"), "--json"}), 0, "2");
    expect(run({"restore", dump, "--dry-run", "--json"}), 0, "4");
    expect(run({"restore", dump, "--json"}), 0, "1");
    run({"write", "OV0001:0", "3", "30.0xC010+2", "7"});
    expect(run({"diff", dump, "--live", "--fields", "--json"}), 1, "2");
    const std::string map = folder.path("map.json");
    expect(orvane({"map", "export", "ieee8023", "-o", map, "--json"}), 0, "1");
    expect(orvane({"map", "check", map, "--json"}), 0, "1");
    expect(orvane({"map", "check", map, dump, "--json"}), 1, "2");
    const std::string table = folder.write("chip.csv", "register,address,colour\nR,7.1,red\n");
    expect(orvane({"map", "import", table, "-o", folder.path("chip.json"), "--json"}), 0, "2");
    expect(orvane({"map", "export", "ieee8023", "--json"}), 2, "1");
    expect(orvane({"note", "here", "--log", folder.path("a.log"), "--json"}), 0, "1");
    run({"gpio", "get", "OV0001:0", "0", "--log", folder.path("a.log")});
    expect(orvane({"log", folder.path("a.log"), "--html", folder.path("a.html"), "--json"}), 0, "1");
    expect(orvane({"export", dump, "--html", folder.path("b.html"), "--json"}), 0, "1");
}

TEST_F(OrvaneRecord, OfAReplayTellsWhatDiffersAndWhatCameOfAll) {
    const Folder folder;
    const std::string log = folder.path("session.log");
    run({"write", "OV0001:0", "3", "30.0xC010", "1", "--readback", "--log", log});
    run({"i2c", "get", "OV0001:0", "0", "0x50", "0x40", "--log", log});
    EXPECT_EQ(checked(run({"replay", log, "--dry-run", "--json"}).output), "3 fit\n");
    run({"i2c", "set", "OV0001:0", "0", "0x50", "0x40", "0x77"});
    const Outcome outcome = run({"replay", log, "--to", "OV0001:0", "--keep-going", "--json"});
    EXPECT_EQ(outcome.status, 1) << outcome;
    EXPECT_EQ(checked(outcome.output), "2 fit\n") << outcome.output;
    const auto records = nlohmann::json::parse(outcome.output);
    EXPECT_EQ(records.at(0)["operation"], "i2c.readRegister");
    EXPECT_EQ(records.at(0)["result"], "bytes=77");
    EXPECT_EQ(records.at(1), nlohmann::json::parse(R"({"record": "summary", "device": "OV0001:0",
        "board": "OV0001", "port": 0, "writes": 1, "reads": 1, "calls": 1, "differing": 1, "skipped": 0,
        "total": 3})"));
}

// Verbs as completion knows them, each with the words that may stand behind it.
TEST(OrvaneVerb, HasRecordsForPrograms) {
    const std::string script = orvane({"generate", "bash"}).output;
    const std::regex line("\n    '(orvane[^']*)'\\) words='([^']*)' ;;");
    std::size_t verbs = 0;
    for (std::sregex_iterator each(script.begin(), script.end(), line), end; each != end; ++each) {
        const std::string path = (*each)[1];
        const std::string words = (*each)[2];
        const bool hasVerbs = words.rfind("--", 0) != 0 && words.rfind("-", 0) != 0;
        const bool isOfPython = path == "orvane run" || path == "orvane serve" || path == "orvane metrics";
        if (hasVerbs || isOfPython)
            continue;
        EXPECT_NE(words.find("--json"), std::string::npos) << path;
        EXPECT_NE(words.find("--csv"), std::string::npos) << path;
        ++verbs;
    }
    EXPECT_GT(verbs, 40U);
}

TEST_F(OrvaneRecord, OfMapsFitsTheSchema) {
    EXPECT_EQ(checked(orvane({"map", "show", "--json"}).output), "1 fit\n");
    EXPECT_EQ(checked(orvane({"map", "show", "AN.STATUS.LINK", "--json"}).output), "1 fit\n");
}

} // namespace
} // namespace OrvaneTest
