// Commands that run on the board.
#include "ov_sys/Interface/buses/rpc/CallFrame.h"
#include "ov_sys/Interface/buses/rpc/RPCSetup.h"
#include "tests/support/HookedClient.h"
#include "tests/support/RepeatedText.h"
#include "tests/support/SessionOnBoard.h"
#include "tests/support/WrittenText.h"

#include <gtest/gtest.h>
#include <memory>
#include <orvane/lab_json.h>

namespace Orvane {
namespace {

using namespace OrvaneTest;
using OrvaneSim::Fault;
using Json = nlohmann::ordered_json;

constexpr const char* kTimedOutCall = "setupRPC call error: 5. Session error handling started...\n";

class RemoteCommand : public testing::Test, public SessionOnBoard {
protected:
    RemoteCommand() {
        rpc_createerr.cf_stat = RPC_SUCCESS;
        board.setCommand("uname -a", {3, std::string("Li\0nux", 6), "warning\n", 0});
    }

    // Runs a command and returns what it wrote to the standard error stream; an exception's text is in
    // `thrown`.
    std::string run(unsigned timeoutSeconds = 1) {
        thrown.clear();
        return textWritten([&] {
                   try {
                       status = Setup::RPC::runCommand(session, "uname -a", timeoutSeconds, exitCode, output,
                                                       errorOutput);
                   } catch (const std::exception& problem) {
                       thrown = problem.what();
                   }
               })
            .error;
    }
    void failWith(int code, int times) {
        inject(Fault::Kind::ResultCode, "setup", "execute_command", times, code);
    }
    // The next command's reply is lost. The setup client goes over datagrams, since a stream loses nothing.
    void loseReply() {
        auto& setup = session.connection->clients[BoardConnection::SETUP];
        setup = std::make_unique<NormalRPCClient>(setup->program, setup->version, "udp", setup->name,
                                                  setup->host);
        inject(Fault::Kind::LoseReply, "setup", "execute_command");
    }

    int status = -1;
    int exitCode = -1;
    std::string output = "before";
    std::string errorOutput = "before";
    std::string thrown;
};

TEST_F(RemoteCommand, SendsTheTextWithItsNulAndTheTimeout) {
    EXPECT_EQ(run(9), "");
    const auto requests = board.requests();
    ASSERT_EQ(requests.size(), 1U);
    EXPECT_EQ(requests[0].programNumber, 0x2FFFFFF0U);
    EXPECT_EQ(requests[0].procedureNumber, 6U);
    EXPECT_EQ(requests[0].procedure, "execute_command");
    EXPECT_EQ(argumentsOf(requests[0]),
              (Json{{"handle", 0x6501}, {"command", std::string("uname -a\0", 9)}, {"seconds", 9}}));
}

TEST_F(RemoteCommand, ReturnsTheBoardsStatusAndOutputs) {
    run();
    EXPECT_EQ(thrown, "");
    EXPECT_EQ(status, 0);
    EXPECT_EQ(exitCode, 3);
    EXPECT_EQ(output, std::string("Li\0nux", 6));
    EXPECT_EQ(errorOutput, "warning\n");
    EXPECT_EQ(session.callSequence, 102);
}

TEST_F(RemoteCommand, WithoutOutputsReturnsEmptyTexts) {
    board.setCommand("uname -a", {-1, "", "", 0});
    run();
    EXPECT_EQ(exitCode, -1);
    EXPECT_EQ(output, "");
    EXPECT_EQ(errorOutput, "");
}

TEST_F(RemoteCommand, ReturnsLongOutputsWhole) {
    inject(Fault::Kind::ReplyCount, "setup", "execute_command", 1, 20000);
    run();
    EXPECT_EQ(output, std::string("Li\0nux", 6) + std::string(19994, '\xEE'));
    EXPECT_EQ(errorOutput, "warning\n" + std::string(19992, '\xEE'));
}

TEST_F(RemoteCommand, HasItsOwnTimeoutForTheCallOnly) {
    long during = 0;
    auto& setup = hookClient(*session.connection, BoardConnection::SETUP);
    setup.onBusy = [&](bool) { during = setup.timeout.tv_sec; };
    run(9);
    EXPECT_EQ(during, 9);
    EXPECT_EQ(setup.timeout.tv_sec, 2);
    EXPECT_EQ(setup.timeout.tv_usec, 0);
}

TEST_F(RemoteCommand, MakesTheSessionBusyForTheCallOnly) {
    std::vector<std::pair<int, int>> during;
    hookClient(*session.connection, BoardConnection::SETUP).onBusy = [&](bool) {
        during.emplace_back(session.getSessionState(), session.busyTimeoutMs);
    };
    run(9);
    EXPECT_EQ(during, (std::vector<std::pair<int, int>>{{4, 9000}, {4, 9000}}));
    EXPECT_EQ(session.getSessionState(), PhySession::SESSION_VALID);
    EXPECT_EQ(session.busyTimeoutMs, 0);
}

TEST_F(RemoteCommand, EndsEveryOtherStateThatItMet) {
    for (const int state : {1, 2}) {
        session.setSessionState(static_cast<PhySession::SessionState_t>(state));
        run();
        EXPECT_EQ(thrown, "");
        EXPECT_EQ(session.getSessionState(), PhySession::SESSION_VALID);
    }
}

TEST_F(RemoteCommand, RevivesASessionThatDiedMeanwhile) {
    hookClient(*session.connection, BoardConnection::SETUP).onBusy = [&](bool) {
        session.setSessionState(PhySession::SESSION_INVALID);
    };
    run();
    EXPECT_EQ(thrown, "");
    EXPECT_EQ(session.getSessionState(), PhySession::SESSION_VALID);
}

TEST_F(RemoteCommand, IsRefusedOnAnInvalidSession) {
    session.setSessionState(PhySession::SESSION_INVALID);
    EXPECT_EQ(run(), "");
    EXPECT_EQ(thrown, "The board session is no longer valid.");
    EXPECT_EQ(count("execute_command"), 0U);
    EXPECT_EQ(session.getSessionState(), PhySession::SESSION_INVALID);
    EXPECT_EQ(output, "before");
}

TEST_F(RemoteCommand, IsRefusedWithoutAHandleAndDoesNotUpdateTheClient) {
    client(BoardConnection::SETUP).reset();
    EXPECT_EQ(run(), "");
    EXPECT_EQ(thrown, "Invalid RPC client: setup");
    EXPECT_TRUE(board.requests("portmap").empty());
}

TEST_F(RemoteCommand, ThatTimedOutOnTheBoardIsRunAgainWithoutLimitOrReport) {
    failWith(-110, 30);
    EXPECT_EQ(run(), "");
    EXPECT_EQ(thrown, "");
    EXPECT_EQ(count("execute_command"), 31U);
    EXPECT_EQ(session.callSequence, 102);
    EXPECT_EQ(errorOutput, "warning\n");
}

TEST_F(RemoteCommand, IsRepeatedWhileTheBoardIsBusy) {
    failWith(-16, 10);
    EXPECT_EQ(run(), times(10, "setup Board in busy. Retrying...-16\n"));
    EXPECT_EQ(thrown, "");
    EXPECT_EQ(count("execute_command"), 11U);
    EXPECT_EQ(session.callSequence, 102);
}

TEST_F(RemoteCommand, ThrowsForOtherCodesAndLeavesItsTimeout) {
    failWith(-22, 1);
    EXPECT_EQ(run(9), "setup Result Error: -22\n");
    EXPECT_EQ(thrown, "raiseRemoteError: Error");
    EXPECT_EQ(output, "before");
    EXPECT_EQ(exitCode, -1);
    EXPECT_EQ(session.callSequence, 101);
    EXPECT_EQ(client(BoardConnection::SETUP).timeout.tv_sec, 9);
}

TEST_F(RemoteCommand, IsRepeatedAfterALostReply) {
    loseReply();
    EXPECT_EQ(run(), kTimedOutCall);
    EXPECT_EQ(thrown, "");
    EXPECT_EQ(count("execute_command"), 2U);
    EXPECT_EQ(errorOutput, "warning\n");
}

TEST_F(RemoteCommand, DoesNotCountTimedOutRunsTowardsTheWarning) {
    failWith(-16, 4);
    failWith(-110, 3);
    failWith(-16, 1);
    loseReply();
    EXPECT_EQ(run(), times(5, "setup Board in busy. Retrying...-16\n") +
                         "Warning level of attempts for RPC call was achieved. Resetting connection...\n"
                         "Retrieve connection to RPC server\n");
    EXPECT_EQ(thrown, "");
    EXPECT_EQ(count("execute_command"), 10U);
}

TEST_F(RemoteCommand, IsFatalAtItsEighthAttempt) {
    failWith(-16, 7);
    loseReply();
    EXPECT_EQ(run(), times(7, "setup Board in busy. Retrying...-16\n") +
                         "Error level of attempts for RPC call was achieved.\n"
                         "Remote Error:5\n  \"RPC: Success\n\"\n");
    EXPECT_EQ(thrown, "Remote error.");
    EXPECT_EQ(count("execute_command"), 8U);
}

TEST_F(RemoteCommand, CountsALostReplyTowardsTheEnd) {
    loseReply();
    failWith(-16, 6);
    inject(Fault::Kind::LoseReply, "setup", "execute_command");
    EXPECT_EQ(run(), kTimedOutCall + times(6, "setup Board in busy. Retrying...-16\n") +
                         "Error level of attempts for RPC call was achieved.\n"
                         "Remote Error:5\n  \"RPC: Success\n\"\n");
    EXPECT_EQ(thrown, "Remote error.");
    EXPECT_EQ(count("execute_command"), 8U);
}

TEST_F(RemoteCommand, MeetsNoThresholdAfterEightBusyResults) {
    failWith(-16, 8);
    loseReply();
    EXPECT_EQ(run(), times(8, "setup Board in busy. Retrying...-16\n") + kTimedOutCall);
    EXPECT_EQ(thrown, "");
    EXPECT_EQ(count("execute_command"), 10U);
}

} // namespace
} // namespace Orvane
