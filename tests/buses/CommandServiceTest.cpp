// Remote commands through the setup service's facade.
#include "ov_sys/Interface/buses/Setup.h"

#include "ov_sys/Interface/connection/BoardConnection.h"
#include "ov_sys/Interface/foundation/Exceptions.h"
#include "tests/support/CannedReplies.h"
#include "tests/support/HookedClient.h"
#include "tests/support/ServiceOperations.h"
#include "tests/support/SessionOnBoard.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace OrvaneTest {
namespace {

using Orvane::BoardConnection;
using Orvane::CommandResult;
using Orvane::Exceptions::Standard;
using OrvaneSim::Fault;
using testing::ElementsAre;

class CommandService : public testing::Test, protected SessionOnBoard {
protected:
    int run(const std::string& command, unsigned timeoutSeconds = 9) {
        return setup.runCommand(&session, command, timeoutSeconds, result);
    }
    Orvane::RPCClient& client() { return *session.connection->getClient(BoardConnection::SETUP); }
    WireCall commandCall(const std::string& text, unsigned seconds) {
        return {kSetupProgram, 6, {{"handle", identity()}, {"command", text}, {"seconds", seconds}}};
    }

    Orvane::Setup::Setup setup;
    CommandResult result{-7, "before", "before"};
};

TEST_F(CommandService, SendsAnEmptyTextAsItsNulAlone) {
    run("");
    EXPECT_THAT(wireCalls(board), ElementsAre(commandCall(std::string("\0", 1), 9)));
}

TEST_F(CommandService, SendsTheWholeTextWithANulInside) {
    run(std::string("a\0b", 3), 4000000000);
    EXPECT_THAT(wireCalls(board), ElementsAre(commandCall(std::string("a\0b\0", 4), 4000000000)));
}

TEST_F(CommandService, ReturnsOutputsByTheirCount) {
    board.setCommand("x", {-3, std::string("\0out\0", 5), std::string("e\0r", 3), 0});
    EXPECT_EQ(run("x"), 0);
    EXPECT_EQ(result.exitCode, -3);
    EXPECT_EQ(result.output, std::string("\0out\0", 5));
    EXPECT_EQ(result.errorOutput, std::string("e\0r", 3));
}

TEST_F(CommandService, ReturnsEmptyTextsForOutputsOfNoBytes) {
    run("true");
    EXPECT_EQ(result.exitCode, 0);
    EXPECT_EQ(result.output, "");
    EXPECT_EQ(result.errorOutput, "");
}

TEST_F(CommandService, ReturnsAnOutputBesideAnEmptyOne) {
    run("no-such-command");
    EXPECT_EQ(result.exitCode, 127);
    EXPECT_EQ(result.output, "");
    EXPECT_EQ(result.errorOutput, "no-such-command: command not found\n");
}

TEST_F(CommandService, HasItsOwnTimeoutDuringTheCallOnly) {
    long during = 0;
    auto& hooked = hookClient(*session.connection, BoardConnection::SETUP);
    hooked.onBusy = [&](bool) { during = hooked.timeout.tv_sec; };
    run("true", 9);
    EXPECT_EQ(during, 9);
    EXPECT_EQ(hooked.timeout.tv_sec, 2);
}

TEST_F(CommandService, LeavesTimeoutAndResultAloneAfterAnException) {
    board.inject({"setup", "", Fault::Kind::ResultCode, 1, -22});
    EXPECT_THROW(run("true", 9), Standard);
    EXPECT_EQ(client().timeout.tv_sec, 9);
    EXPECT_EQ(result.exitCode, -7);
    EXPECT_EQ(result.output, "before");
    EXPECT_EQ(result.errorOutput, "before");
}

TEST_F(CommandService, ResetsATimeoutThatAnExceptionLeft) {
    board.inject({"setup", "", Fault::Kind::ResultCode, 1, -22});
    EXPECT_THROW(run("true", 9), Standard);
    run("true", 5);
    EXPECT_EQ(client().timeout.tv_sec, 2);
}

TEST_F(CommandService, RunsACommandThatTimedOutOnTheBoardAgainUnchanged) {
    board.inject({"setup", "", Fault::Kind::ResultCode, 3, -110});
    EXPECT_EQ(run("echo done", 1), 0);
    EXPECT_EQ(result.output, "done\n");
    const WireCall call = commandCall(std::string("echo done\0", 10), 1);
    EXPECT_THAT(wireCalls(board), ElementsAre(call, call, call, call));
}

// The record of a command's result: code, exit status and the two outputs, here of one character each.
WireBytes commandReply(const std::string& code, const std::string& output, const std::string& errors) {
    return wire(code + "00000005" + output + errors);
}

TEST_F(CommandService, ReturnsNothingOfTheRunsBeforeTheLast) {
    const CannedReplies canned(client(), {commandReply("FFFFFF92", "00000001 00000061", "00000001 00000062"),
                                          commandReply("FFFFFFF0", "00000001 00000063", "00000001 00000064"),
                                          commandReply("00000000", "00000001 00000065", "00000000")});
    run("true");
    EXPECT_EQ(canned.calls, 3U);
    EXPECT_EQ(result.exitCode, 5);
    EXPECT_EQ(result.output, "e");
    EXPECT_EQ(result.errorOutput, "");
}

} // namespace
} // namespace OrvaneTest
