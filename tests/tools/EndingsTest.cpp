// How the program ends when somebody else wants it to: signals and closed pipes; and what help says.
#include "tests/support/tools/Program.h"

#include <chrono>
#include <csignal>
#include <cstdio>
#include <filesystem>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <iterator>
#include <regex>
#include <set>
#include <sstream>
#include <sys/wait.h>

namespace OrvaneTest {
namespace {

using OrvaneSim::Fault;
using testing::HasSubstr;
using testing::StartsWith;

bool isClose(const OrvaneSim::Request& request) {
    return request.procedure == "close_connection";
}

// Output and exit status of a shell command.
std::pair<std::string, int> shell(const std::string& command) {
    FILE* pipe = ::popen(command.c_str(), "r");
    std::string output;
    for (int each = std::fgetc(pipe); each != EOF; each = std::fgetc(pipe))
        output += static_cast<char>(each);
    const int status = ::pclose(pipe);
    return {output, WIFEXITED(status) ? WEXITSTATUS(status) : -1};
}

struct OrvaneEnding : testing::Test, OneBoardLab {};

TEST_F(OrvaneEnding, AfterCtrlCInAPauseHasItsSummaryAndClosesTheSession) {
    Program program({"ping", "OV0001:0", "-c", "2", "-i", "600000"}, environment());
    program.waitForOutput("seq=1 time=");
    program.signal(SIGINT);
    board.waitFor(isClose);
    const Outcome outcome = program.finish();
    EXPECT_EQ(outcome.status, 0);
    EXPECT_THAT(outcome.output, HasSubstr("\n1 sent, 1 received, 0.0 % lost\n"));
}

TEST_F(OrvaneEnding, InsideACallThatDoesNotReturnClosesTheSessionFromOutside) {
    board.inject({"mdio", "", Fault::Kind::LoseRequest, -1, 0});
    Program program({"read", "OV0001:0", "3", "1.2"}, environment());
    board.waitFor([](const OrvaneSim::Request& request) { return request.program == "mdio"; });
    program.signal(SIGINT);
    board.waitFor(isClose);
    EXPECT_EQ(program.finish(), fails(130, ""));
    EXPECT_EQ(board.sessionCount(), 0U);
}

// Sixteen one after the other would take 4.8 seconds.
TEST_F(OrvaneEnding, OfFourAtATimeComesWithoutWaitingForTheOthers) {
    board.inject({"mdio", "", Fault::Kind::DelayReply, -1, 300});
    const auto begun = std::chrono::steady_clock::now();
    EXPECT_EQ(
        shell("seq 16 | xargs -P4 -I{} " ORVANE_TOOL " read OV0001:0 {} 1.2 --address 10.83.0.1 | uniq -c")
            .first,
        "     16 0x0A5C\n");
    EXPECT_LT(std::chrono::steady_clock::now() - begun, std::chrono::milliseconds(3500));
}

TEST_F(OrvaneEnding, ByTerminationIsStatus143) {
    board.inject({"mdio", "", Fault::Kind::LoseRequest, -1, 0});
    Program program({"read", "OV0001:0", "3", "1.2"}, environment());
    board.waitFor([](const OrvaneSim::Request& request) { return request.program == "mdio"; });
    program.signal(SIGTERM);
    EXPECT_EQ(program.finish().status, 143);
}

TEST_F(OrvaneEnding, WhenTheReaderLeavesIsQuietAndClosesTheSession) {
    const auto [output, status] =
        shell("bash -c 'ORVANE_ADDRESS=10.83.0.1 " ORVANE_TOOL
              " watch OV0001:0 3 1.2+500 --interval 0 --count 100 2>&1 | head -n 1; echo ${PIPESTATUS[0]}'");
    EXPECT_EQ(output, "1 1.0x0002 0x0A5C\n0\n");
    EXPECT_EQ(status, 0);
    board.waitFor(isClose);
}

TEST_F(OrvaneEnding, OnAFullDiskIsAFailure) {
    const auto [output, status] =
        shell("ORVANE_ADDRESS=10.83.0.1 " ORVANE_TOOL " read OV0001:0 3 1.2 2>&1 >/dev/full");
    EXPECT_EQ(output, "orvane: cannot write the output: No space left on device\n");
    EXPECT_EQ(status, 1);
}

TEST(OrvaneHelp, NamesEveryVerbAndTheExitStatuses) {
    const Outcome outcome = orvane({"--help"});
    EXPECT_EQ(outcome.status, 0);
    EXPECT_EQ(outcome.error, "");
    for (const char* verb : {"list", "info", "ping", "read", "write", "modify", "dump", "diff", "watch"})
        EXPECT_THAT(outcome.output, HasSubstr(std::string("\n  ") + verb + " "));
    EXPECT_THAT(outcome.output, HasSubstr("Exit status: 0 success, 1 the board or an access failed"));
    EXPECT_EQ(outcome.output.find("generate"), std::string::npos);
}

TEST(OrvaneHelp, OfAVerbHasExamples) {
    const Outcome outcome = orvane({"read", "--help"});
    EXPECT_EQ(outcome.status, 0);
    EXPECT_THAT(outcome.output, HasSubstr("Usage: orvane read [OPTIONS] DEVICE PHY ADDRESS..."));
    EXPECT_THAT(outcome.output, HasSubstr("Examples:\n  orvane read OV0001:0 3 1.0x0002"));
}

TEST(OrvaneHelp, IsThatOfTheVerb_ForEachOfThem) {
    const std::string script = orvane({"generate", "bash"}).output;
    const std::regex line("\n    'orvane ([^']*)'\\) words=");
    std::size_t verbs = 0;
    for (std::sregex_iterator each(script.begin(), script.end(), line), end; each != end; ++each, ++verbs) {
        std::istringstream path((*each)[1]);
        Arguments words{std::istream_iterator<std::string>(path), {}};
        if (words.front() == "run" || words.front() == "serve" || words.front() == "metrics")
            continue; // the Python package's
        words.emplace_back("--help");
        const Outcome outcome = orvane(words);
        EXPECT_EQ(outcome.status, 0) << outcome;
        EXPECT_THAT(outcome.output, HasSubstr("Usage: orvane " + (*each)[1].str())) << outcome;
    }
    EXPECT_GT(verbs, 60U);
}

TEST(OrvaneHelp, FitsTheTerminalAndBreaksNoWord) {
    const std::vector<Arguments> commands{
        {"--help"}, {"i2c", "--help"}, {"thermal", "set", "--help"}, {"log", "--help"}, {"config", "--help"}};
    for (const Arguments& words : commands) {
        std::istringstream wide(orvane(words).output);
        const std::set<std::string> known{std::istream_iterator<std::string>(wide), {}};
        std::istringstream lines(Program(words, {}, Program::Streams::Narrow).finish().output);
        for (std::string line; std::getline(lines, line);) {
            EXPECT_LE(line.find_last_not_of('\r') + 1, 60U) << line;
            std::istringstream parts(line);
            for (std::string word; parts >> word;)
                EXPECT_TRUE(word == "\\" || known.count(word) > 0) << word << " in " << line;
        }
    }
}

// Words, and what is wrong with them.
struct Misspelling {
    Arguments words;
    std::string complaint;
};

TEST(OrvaneMisspelt, SaysWhatMayHaveBeenMeantAndWhatIsPossible) {
    const Misspelling cases[] = {
        {{"rad", "OV0001:0", "3", "1.2"}, "no verb rad; did you mean read?\nTry 'orvane --help'."},
        {{"thermal", "conect", "OV0001:0"},
         "no verb conect; did you mean connect?\nTry 'orvane thermal --help'."},
        {{"xyzzy"}, "no verb xyzzy\nTry 'orvane --help'."},
        {{"log", "x", "--chnged"}, "no option --chnged; did you mean --changed?\nTry 'orvane log --help'."},
        {{"decode", "1.2", "3", "--step", "0"}, "--step must be positive\nTry 'orvane decode --help'."},
        {{"gpio", "get", "OV0001:0", "0", "--phy", "200"},
         "--phy must be 0 to 127\nTry 'orvane gpio get --help'."},
        {{"replay", "x", "--phy", "200"}, "--phy must be 0 to 127\nTry 'orvane replay --help'."},
        {{"log", "x", "--adapter", "-3"}, "--adapter must be 0 to 1000000\nTry 'orvane log --help'."},
        {{"thermal", "watch", "OV0001:0", "0", "--interval", "soon"},
         "--interval must be a number from 0 on, not 'soon'\nTry 'orvane thermal watch --help'."},
    };
    for (const Misspelling& each : cases)
        EXPECT_EQ(orvane(each.words), fails(2, "orvane: " + each.complaint + "\n"));
}

TEST(OrvaneVersion, IsThatOfTheProject) {
    EXPECT_THAT(orvane({"--version"}).output, StartsWith("orvane 0."));
}

TEST(OrvaneManual, HasEveryVerbWithItsOptions) {
    const Outcome outcome = orvane({"generate", "man"});
    EXPECT_EQ(outcome.status, 0);
    EXPECT_THAT(outcome.output, StartsWith(".TH ORVANE 1 "));
    EXPECT_THAT(outcome.output, HasSubstr("\n.SS read\nRead registers.\n"));
    EXPECT_THAT(outcome.output, HasSubstr("\\fB\\-\\-routed\\fR\n"));
    EXPECT_EQ(outcome.output.find(".SS generate"), std::string::npos);
}

// What bash would offer behind these words.
std::string completions(const std::string& words, int index) {
    Folder folder;
    const std::string script = folder.write("orvane", orvane({"generate", "bash"}).output);
    return shell("bash -c 'source " + script + "; COMP_WORDS=(" + words +
                 "); COMP_CWORD=" + std::to_string(index) + "; _orvane; echo \"${COMPREPLY[@]}\"'")
        .first;
}

TEST(OrvaneCompletion, OffersVerbsAndThenTheirOptions) {
    EXPECT_EQ(completions("orvane re", 1), "read restore replay\n");
    EXPECT_EQ(completions("orvane read OV0001:0 --r", 3), "--routed\n");
    EXPECT_EQ(completions("orvane watch --i", 2), "--interval\n");
}

TEST(OrvaneCompletion, OffersTheDevicesThatWereFoundLatelyAndAliases) {
    const OneBoardLab lab;
    const Folder folder;
    Environment environment = lab.environment();
    environment["XDG_CACHE_HOME"] = folder.path("cache");
    orvane({"list"}, environment);
    EXPECT_EQ(folder.content("cache/orvane/devices"), "OV0001:0\nOV0001:1\nOV0001:10\n");
    lab.board.forgetRequests();
    std::filesystem::create_directories(folder.path("orvane"));
    folder.write("orvane/config.toml", "[aliases]\nleft = \"OV0001:0\"\n");
    environment["XDG_CONFIG_HOME"] = folder.path("");
    EXPECT_EQ(orvane({"complete", "devices"}, environment), prints("left\nOV0001:0\nOV0001:1\nOV0001:10\n"));
    EXPECT_TRUE(lab.board.requests().empty());
    EXPECT_EQ(lab.board.probeRequests().size(), 1U); // that of the list
}

TEST(OrvaneCompletion, OffersDevicesBehindTheColonAtWhichBashBreaksWords) {
    const Folder folder;
    const std::string script = folder.write("completion", orvane({"generate", "bash"}).output);
    const std::string tool =
        folder.write("orvane", "#!/bin/sh\nprintf 'OV0001:0\\nOV0001:1\\nOV0002:0\\n'\n");
    EXPECT_EQ(shell("chmod +x " + tool + "; PATH=" + folder.path("") + ":$PATH bash -c 'source " + script +
                    "; COMP_LINE=\"orvane read OV0001:\"; COMP_POINT=19; COMP_WORDS=(orvane read OV0001 :); "
                    "COMP_CWORD=3; "
                    "_orvane; echo \"${COMPREPLY[@]}\"'")
                  .first,
              "0 1\n");
}

} // namespace
} // namespace OrvaneTest
