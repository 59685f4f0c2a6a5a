// Records as a table, JSON and CSV.
#include "tools/orvane/output/RecordSink.h"

#include "tests/support/tools/PrintedText.h"

#include <gtest/gtest.h>

namespace OrvaneTool {
namespace {

using OrvaneTest::printedBy;

const RecordForm kForm{{"line", "level"}, {{"line", "LINE", true}, {"level", "LEVEL"}}};

Record line(unsigned number, unsigned level) {
    Record record("line");
    record.device("OV0001:10").phy(3).put("line", number).put("level", {level != 0 ? "high" : "low", level});
    return record;
}

Record failure() {
    Record record("failure");
    record.device("OV0002:0").error({"timed_out", -110, "it took too long, \x1b"});
    return record;
}

std::string printed(Format format, Pace pace, const std::vector<Record>& records) {
    return printedBy([&](Stream& stream) {
        RecordSink sink(stream, format, kForm, pace);
        for (const Record& record : records)
            sink.put(record);
        sink.finish();
        sink.finish(); // once is enough
    });
}

TEST(RecordSink, AsTextPrintsATableWithoutFailures) {
    EXPECT_EQ(printed(Format::Text, Pace::Together, {line(2, 1), failure(), line(16, 0)}),
              "LINE  LEVEL\n   2  high\n  16  low\n");
}

TEST(RecordSink, AsTextPrintsNothing_WhereTheVerbDoes) {
    EXPECT_EQ(printed(Format::Text, Pace::OneByOne, {line(2, 1)}), "");
}

TEST(RecordSink, AsJsonPrintsOneArrayWithNumbersAndErrorObjects) {
    EXPECT_EQ(nlohmann::json::parse(printed(Format::Json, Pace::Together, {line(2, 1), failure()})),
              nlohmann::json::parse(R"([
        {"record": "line", "device": "OV0001:10", "board": "OV0001", "port": 10, "phy": 3, "line": 2, "level": 1},
        {"record": "failure", "device": "OV0002:0", "board": "OV0002", "port": 0,
         "error": {"kind": "timed_out", "code": -110, "text": "it took too long, \u001b"}}])"));
}

TEST(RecordSink, AsJsonOfNoRecordIsAnEmptyArray) {
    EXPECT_EQ(printed(Format::Json, Pace::Together, {}), "[]\n");
}

TEST(RecordSink, AsJsonEscapesControlCharacters) {
    Record record("note");
    record.put("text", "a\x1b\xc2\x9b\x7f");
    EXPECT_EQ(printed(Format::Json, Pace::OneByOne, {record}),
              "{\"record\":\"note\",\"text\":\"a\\u001b\\u009b\\u007f\"}\n");
}

TEST(RecordSink, AsJsonPrintsRecordsThatComeOneByOneOnALineEach) {
    EXPECT_EQ(
        printed(Format::Json, Pace::OneByOne, {line(2, 1), line(3, 0)}),
        R"({"record":"line","device":"OV0001:10","board":"OV0001","port":10,"phy":3,"line":2,"level":1})"
        "\n"
        R"({"record":"line","device":"OV0001:10","board":"OV0001","port":10,"phy":3,"line":3,"level":0})"
        "\n");
}

TEST(RecordSink, AsCsvHasTheSameColumnsForRecordsAndFailures) {
    EXPECT_EQ(printed(Format::Csv, Pace::Together, {line(2, 1), failure()}),
              "record,device,board,port,phy,line,level,error.kind,error.code,error.text\n"
              "line,OV0001:10,OV0001,10,3,2,1,,,\n"
              "failure,OV0002:0,OV0002,0,,,,timed_out,-110,\"it took too long, \\x1b\"\n");
}

TEST(RecordSink, AsCsvOfNoRecordHasItsColumns) {
    EXPECT_EQ(printed(Format::Csv, Pace::Together, {}),
              "record,device,board,port,phy,line,level,error.kind,error.code,error.text\n");
}

TEST(RecordSink, AsCsvHasTheItemsOfListsInOneField) {
    Record record("line");
    record.put("line", Cell("", std::vector<int>{0, 1, 10}));
    EXPECT_EQ(printed(Format::Csv, Pace::OneByOne, {record}),
              "record,device,board,port,phy,line,level,error.kind,error.code,error.text\n"
              "line,,,,,0 1 10,,,,\n");
}

TEST(Record, OfARegisterHasItsMmdInClause45Only) {
    Record c45("register");
    c45.at("c45", 1, 2, "1.0x0002");
    EXPECT_EQ(c45.json().dump(),
              R"({"record":"register","space":"c45","mmd":1,"register":2,"at":"1.0x0002"})");
    Record wide("register");
    wide.at("ext32", 0, 0x80004000, "0x80004000");
    EXPECT_EQ(wide.json().dump(),
              R"({"record":"register","space":"ext32","register":2147500032,"at":"0x80004000"})");
}

TEST(Record, OfALibrarysFailureSaysWhereItWasAndWhichKind) {
    Orvane::FailureDetails details;
    details.kind = Orvane::FailureKind::BoardError;
    details.board = "OV0001";
    details.port = 0;
    details.phy = 3;
    details.code = -121;
    const Failure problem("OV0001:0: it failed", Orvane::Failure(details));
    EXPECT_EQ(failureRecord(problem).json().dump(),
              R"({"record":"failure","device":"OV0001:0","board":"OV0001","port":0,"phy":3,)"
              R"("error":{"kind":"board_error","code":-121,"text":"OV0001:0: it failed"}})");
}

} // namespace
} // namespace OrvaneTool
