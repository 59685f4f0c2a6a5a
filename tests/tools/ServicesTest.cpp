// orvane i2c, gpio, jtag, adc and thermal.
#include "tests/support/tools/Program.h"

#include <cerrno>
#include <csignal>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace OrvaneTest {
namespace {

using testing::ContainsRegex;
using testing::HasSubstr;
using testing::MatchesRegex;
using testing::StartsWith;

// A row of commands on one board, each with what it prints.
struct Step {
    Arguments words; // behind which the device is put in at the third place
    std::string output;
};

struct Story {
    std::string name;
    std::vector<Step> steps;
};

const Story kStories[] = {
    {"I2cRegistersAreReadWrittenAndMasked",
     {{{"i2c", "get", "0", "0x50", "0", "6"}, "0x4F 0x56 0x30 0x30 0x30 0x31\n"},
      {{"i2c", "set", "0", "0x50", "0x40", "0xC0", "0xFF"}, ""},
      {{"i2c", "mask", "0", "0x50", "0x40", "0x0F", "0x05"}, ""},
      {{"i2c", "get", "0", "0x50", "0x40", "2", "1"}, "0xC5 0xFF\n"},
      {{"i2c", "get", "0", "0x50", "0x40"}, "0xC5\n"},
      {{"i2c", "gather", "0:0x50:0x40:2", "0:0x48:0:2"}, "0:0x50:0x40:2 0xC5 0xFF\n0:0x48:0:2 0x19 0x00\n"}}},
    {"I2cBytesAreSentAsTheyAre",
     {{{"i2c", "write", "0", "0x50", "0x41", "0x12", "0x34"}, ""},
      {{"i2c", "read", "0", "0x50", "0x41", "2"}, "0x12 0x34\n"}}},
    {"GpioLinesAreSetEnabledAndRead",
     {{{"gpio", "enable", "0=1"}, ""},
      {{"gpio", "set", "0=1", "3=0"}, ""},
      {{"gpio", "get", "0", "16", "3"}, "1 1 0\n"},
      {{"gpio", "outputs", "0", "1"}, "1 0\n"},
      {{"gpio", "bitbang", "0=0", "16", "0=1", "16"}, "0 0 1 1\n"},
      {{"gpio", "default", "0"}, ""},
      {{"gpio", "outputs", "0"}, "0\n"},
      {{"gpio", "reset"}, ""}}},
    {"JtagChainIsIdentifiedAndShifted",
     {{{"jtag", "ids"}, "0xA2F3EB85\n0x9D3BAD6F\n"},
      {{"jtag", "max"}, "1024\n"},
      {{"jtag", "shift", "", "111110100"}, "111111111\n"},
      {{"jtag", "multi", ":111110100:", "0000:0001:10"}, "111111111\n1010\n"}}},
    {"AdcIsDrivenStepByStep",
     {{{"adc", "init"}, ""},
      {{"adc", "mask", "3"}, ""},
      {{"adc", "start"}, ""},
      {{"adc", "event", "hello"}, ""},
      {{"adc", "data", "4"}, "128\n128\n138\n138\n"},
      {{"adc", "events"}, "0 hello\n"},
      {{"adc", "max"}, "138\n138\n"},
      {{"adc", "dump-file", "/tmp/x"}, ""},
      {{"adc", "stop"}, ""}}},
    {"ThermalUnitIsDrivenToASetPoint",
     {{{"thermal", "connect"}, ""},
      {{"thermal", "set", "0", "85", "1"}, ""},
      {{"thermal", "watch", "0", "85", "--count", "3", "--interval", "0"}, "1 40.00\n2 51.25\n3 59.69\n"},
      {{"thermal", "state"}, "2\n"},
      {{"thermal", "settle", "0"}, "84.92\n"},
      {{"thermal", "get", "0"}, "84.94\n"},
      {{"thermal", "default", "0", "-5.5"}, ""},
      {{"thermal", "start", "1"}, ""},
      {{"thermal", "stop"}, ""},
      {{"thermal", "disconnect"}, ""}}},
};

class OrvaneService : public testing::TestWithParam<Story>, protected OneBoardLab {};

INSTANTIATE_TEST_SUITE_P(Board, OrvaneService, testing::ValuesIn(kStories),
                         [](const auto& test) { return test.param.name; });

TEST_P(OrvaneService, DoesAndPrintsWhatItsOperationsAre) {
    board.wireGpio(0, 16);
    for (const Step& step : GetParam().steps) {
        Arguments words = step.words;
        words.insert(words.begin() + 2, "OV0001:0");
        EXPECT_EQ(run(words), prints(step.output)) << testing::PrintToString(words);
    }
}

struct OrvaneServices : testing::Test, OneBoardLab {};

TEST_F(OrvaneServices, ThatTheBoardRefusesAreNamedWithTheCause) {
    EXPECT_EQ(run({"i2c", "get", "OV0001:0", "0", "0x33", "0"}),
              fails(1, "orvane: OV0001:0: i2c get 0 0x33 0: the board answers: Remote I/O error (-121)\n"));
    EXPECT_EQ(run({"thermal", "get", "OV0001:0", "0"}),
              fails(1, "orvane: OV0001:0: thermal get 0: the unit is not connected; 'orvane thermal connect "
                       "OV0001:0' connects it\n"));
}

TEST_F(OrvaneServices, OfAPortThatTheBoardDoesNotHaveNameThoseThatItHas) {
    EXPECT_EQ(
        run({"gpio", "get", "OV0001:7", "0"}),
        fails(1, "orvane: OV0001:7: open: device not found; there are OV0001:0, OV0001:1, OV0001:10\n"));
}

TEST_F(OrvaneServices, TellThatAnArgumentCannotBeBeforeAnythingIsSent) {
    EXPECT_EQ(run({"i2c", "get", "OV0001:0", "10", "0x50", "0"}).status, 2);
    EXPECT_TRUE(board.requestsOf("i2c_read_reg").empty());
}

TEST_F(OrvaneServices, WithoutAnOperationAreMisused) {
    EXPECT_EQ(run({"i2c"}), fails(2, "orvane: VERB is required\nTry 'orvane i2c --help'.\n"));
    EXPECT_EQ(run({"gpio", "set", "OV0001:0", "3"}),
              fails(2, "orvane: '3' has no level: it is LINE=0 or LINE=1\n"));
    EXPECT_EQ(run({"jtag", "shift", "OV0001:0", "01x", "000"}),
              fails(2, "orvane: '01x' is not a row of 0 and 1\n"));
}

TEST_F(OrvaneServices, ShowAWholeI2cDevice) {
    const Outcome outcome = run({"i2c", "dump", "OV0001:0", "0", "0x50"});
    EXPECT_EQ(outcome.status, 0);
    EXPECT_THAT(outcome.output,
                StartsWith("     0  1  2  3  4  5  6  7  8  9  a  b  c  d  e  f    0123456789abcdef\n"
                           "00: 4f 56 30 30 30 31 ff ff ff ff ff ff ff ff ff ff    OV0001..........\n"
                           "10: ff "));
    EXPECT_THAT(outcome.output, HasSubstr("\nf0: ff "));
}

TEST_F(OrvaneServices, ShowEveryGpioLine) {
    board.driveGpio(2, true);
    const Outcome outcome = run({"gpio", "info", "OV0001:0"});
    EXPECT_EQ(outcome.status, 0);
    EXPECT_THAT(outcome.output, StartsWith("line  0: input  0\nline  1: input  0\nline  2: input  1\n"));
    EXPECT_THAT(outcome.output, HasSubstr("\nline 31: input  0\n"));
}

OrvaneSim::Waveform ramp(double offset) {
    return {OrvaneSim::Waveform::Shape::Ramp, offset, 16, 16};
}

TEST_F(OrvaneServices, DrawACaptureAndSaveItAsCsv) {
    const Folder folder;
    board.setWaveform(0, ramp(0));
    board.setWaveform(2, ramp(100));
    const Outcome outcome = run(
        {"adc", "capture", "OV0001:0", "--channels", "5", "--samples", "3", "-o", folder.path("both.csv")});
    EXPECT_EQ(outcome.status, 0) << outcome;
    EXPECT_THAT(outcome.output, StartsWith("channel 0, 3 samples\n     255 |\n"));
    EXPECT_THAT(outcome.output, HasSubstr("       0 |***\nchannel 2, 3 samples\n"));
    EXPECT_EQ(folder.content("both.csv"), "sample,channel0,channel2\n0,0,100\n1,1,101\n2,2,102\n");
}

TEST_F(OrvaneServices, SaveACaptureAsAPicture) {
    const Folder folder;
    board.setWaveform(0, ramp(0));
    EXPECT_EQ(run({"adc", "capture", "OV0001:0", "--samples", "2", "-o", folder.path("curve.pgm")}).status,
              0);
    std::string pixels(2 * 256, '\xFF');
    pixels[255 * 2] = pixels[254 * 2 + 1] = '\0'; // 0, then 1
    EXPECT_EQ(folder.content("curve.pgm"), "P5\n2 256\n255\n" + pixels);
}

TEST_F(OrvaneServices, OverwriteNoFileUnlessTheyAreForcedTo) {
    const Folder folder;
    const std::string file = folder.write("curve.csv", "precious");
    EXPECT_EQ(run({"adc", "capture", "OV0001:0", "--samples", "2", "-o", file}),
              fails(1, "orvane: " + file + ": it exists; --force overwrites it\n"));
    EXPECT_EQ(folder.content("curve.csv"), "precious");
    EXPECT_TRUE(board.requests().empty());
    EXPECT_EQ(run({"adc", "capture", "OV0001:0", "--samples", "2", "-o", file, "--force"}).status, 0);
    EXPECT_THAT(folder.content("curve.csv"), StartsWith("sample,channel0\n"));
}

// A temperature goes nowhere without control.
TEST_F(OrvaneServices, SayThatThermalControlIsOff) {
    run({"thermal", "connect", "OV0001:0"});
    EXPECT_EQ(
        run({"thermal", "set", "OV0001:0", "0", "85"}),
        (Outcome{0, "",
                 "orvane: OV0001:0: control is off: channel 0 keeps the set point for when it is started, by "
                 "--start or 'orvane thermal start OV0001:0 0'\n"}));
    EXPECT_EQ(
        run({"thermal", "settle", "OV0001:0", "0"}),
        fails(1,
              "orvane: OV0001:0: thermal settle 0: control is off, so that nothing settles; --start starts "
              "it\n"));
    EXPECT_EQ(run({"thermal", "settle", "OV0001:0", "0", "--start"}), prints("84.92\n"));
}

TEST_F(OrvaneServices, StartThermalControlWithTheSetPoint) {
    run({"thermal", "connect", "OV0001:0"});
    EXPECT_EQ(run({"thermal", "set", "OV0001:0", "0", "85", "--start"}), prints(""));
    EXPECT_EQ(run({"thermal", "state", "OV0001:0"}), prints("2\n"));
}

// The board forgets its sessions at the next request of a procedure, and refuses one new session.
void loseSessionsAt(OrvaneSim::Board& board, const std::string& procedure) {
    board.onRequest([&board, procedure, lost = false](const OrvaneSim::Request& request) mutable {
        if (lost || request.procedure != procedure)
            return;
        lost = true;
        board.inject({"setup", "open_connection", OrvaneSim::Fault::Kind::ResultCode, 1, -EACCES});
        board.forgetSessions();
    });
}

constexpr const char* kGap = "gap 20[-0-9T:.]+Z to 20[-0-9T:.]+Z: refused";

TEST_F(OrvaneServices, WatchATemperatureThroughABoardThatWasLostForAWhile) {
    const Arguments words{"thermal", "watch", "OV0001:0", "0", "--count", "2", "--interval", "10"};
    run({"thermal", "connect", "OV0001:0"});
    loseSessionsAt(board, "thrm_gettemperature");
    const Outcome outcome = run(words);
    EXPECT_EQ(outcome.status, 0) << outcome;
    EXPECT_THAT(outcome.output, MatchesRegex(std::string(kGap) + "\n1 25.00\n2 25.00\n1 gap\n"));
}

TEST_F(OrvaneServices, EndAWatchWithGapsAsAFailure_WhereTheyAreStrict) {
    run({"thermal", "connect", "OV0001:0"});
    loseSessionsAt(board, "thrm_gettemperature");
    EXPECT_EQ(
        run({"thermal", "watch", "OV0001:0", "0", "--count", "2", "--interval", "10", "--strict"}).status, 1);
}

TEST_F(OrvaneServices, CaptureThroughABoardThatWasLostForAWhile) {
    loseSessionsAt(board, "adc_getdata");
    const Outcome outcome = run({"adc", "capture", "OV0001:0", "--samples", "4", "--strict"});
    EXPECT_EQ(outcome.status, 1) << outcome;
    EXPECT_THAT(outcome.output, StartsWith("channel 0, 4 samples\n"));
    EXPECT_THAT(outcome.output, ContainsRegex(std::string("\n") + kGap + ", before sample 0\n$"));
}

TEST_F(OrvaneServices, PlotATemperatureAgainstItsSetPointOnATerminal) {
    run({"thermal", "connect", "OV0001:0"});
    run({"thermal", "set", "OV0001:0", "0", "85", "1"});
    const Outcome outcome = orvaneOnTerminal(
        {"thermal", "watch", "OV0001:0", "0", "85", "--count", "2", "--interval", "0"}, environment());
    EXPECT_EQ(outcome.status, 0);
    EXPECT_THAT(outcome.output, HasSubstr("40.00, set point 85.00\r\n    90.0 |\r\n    85.5 |-\r\n"));
    EXPECT_THAT(outcome.output, HasSubstr("\033[13A\033[J51.25, set point 85.00\r\n"));
}

} // namespace
} // namespace OrvaneTest
