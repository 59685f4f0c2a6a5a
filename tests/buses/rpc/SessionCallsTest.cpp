// Opening, closing and pinging of sessions: what goes over the wire and what stays behind.
#include "ov_sys/Interface/buses/rpc/CallFrame.h"
#include "ov_sys/Interface/buses/rpc/RPCKeepAlive.h"
#include "ov_sys/Interface/buses/rpc/RPCSetup.h"
#include "tests/support/HookedClient.h"
#include "tests/support/SessionOnBoard.h"
#include "tests/support/WrittenText.h"

#include <gtest/gtest.h>
#include <memory>
#include <orvane/lab_json.h>

namespace Orvane {
namespace {

using namespace OrvaneTest;
using OrvaneSim::Fault;
using OrvaneSim::Request;
using Json = nlohmann::ordered_json;

// The one request that the board got.
Request onlyRequest(const OneBoard& lab) {
    const std::vector<Request> requests = lab.board.requests();
    EXPECT_EQ(requests.size(), 1U);
    return requests.empty() ? Request{} : requests.front();
}

Json openArguments(const OneBoard& lab) {
    const Request request = onlyRequest(lab);
    EXPECT_EQ(request.programNumber, 0x2FFFFFF0U);
    EXPECT_EQ(request.version, 1U);
    EXPECT_EQ(request.procedureNumber, 1U);
    EXPECT_EQ(request.procedure, "open_connection");
    EXPECT_EQ(request.transport, "tcp");
    return argumentsOf(request);
}

TEST(OpenConnection, SendsAnExclusiveModeWithItsKey) {
    ConnectedSession test(exclusiveMode(0xBEEF, 3));
    Setup::RPC::openConnection(test.session);
    EXPECT_EQ(openArguments(test), (Json{{"sessionId", 0xBEEF},
                                         {"exclusive", 1},
                                         {"simple", 0},
                                         {"notShared", 1},
                                         {"reserved", 0},
                                         {"deviceIndex", 1},
                                         {"phyAddress", 3}}));
}

TEST(OpenConnection, SendsAConcurrentMode) {
    ConnectedSession test(concurrentMode(7, 3));
    Setup::RPC::openConnection(test.session);
    EXPECT_EQ(openArguments(test), (Json{{"sessionId", 7},
                                         {"exclusive", 0},
                                         {"simple", 0},
                                         {"notShared", 0},
                                         {"reserved", 0},
                                         {"deviceIndex", 1},
                                         {"phyAddress", 3}}));
}

TEST(OpenConnection, SendsASimpleModeByItsOtherName) {
    ConnectedSession test(simpleMode(3));
    Setup::openConnection(test.session);
    EXPECT_EQ(openArguments(test), (Json{{"sessionId", 0},
                                         {"exclusive", 0},
                                         {"simple", 1},
                                         {"notShared", 0},
                                         {"reserved", 0},
                                         {"deviceIndex", 1},
                                         {"phyAddress", 3}}));
}

TEST(OpenConnection, SendsTheReservedByteAndANegativePhy) {
    ConnectedSession test({-2, 9, 0, 0, 1, 0, 5});
    Setup::RPC::openConnection(test.session);
    EXPECT_EQ(openArguments(test), (Json{{"sessionId", 0},
                                         {"exclusive", 0},
                                         {"simple", 0},
                                         {"notShared", 0},
                                         {"reserved", 5},
                                         {"deviceIndex", 9},
                                         {"phyAddress", -2}}));
}

TEST(OpenConnection, StoresIdSequenceAndKey) {
    ConnectedSession test(exclusiveMode());
    const unsigned key = Setup::RPC::openConnection(test.session);
    EXPECT_EQ(key, 0x5000U);
    EXPECT_EQ(test.session.mdio.key, 0x5000);
    EXPECT_EQ(test.session.sessionId, 1U);
    EXPECT_EQ(test.session.callSequence, 101);
    EXPECT_EQ(test.session.identityWord(), 0x6501U);
    EXPECT_EQ(test.board.sessionCount(), 1U);
}

TEST(OpenConnection, KeepsALongIdWhole) {
    ConnectedSession test;
    test.inject(Fault::Kind::OverrideWord, "setup", "open_connection", 1, 0x12345678);
    Setup::RPC::openConnection(test.session);
    EXPECT_EQ(test.session.sessionId, 0x12345678U);
    EXPECT_EQ(test.session.identityWord(), 0x12345678U | 0x6500U);
}

TEST(OpenConnection, TriesAgainAfterASecondUntilTheBoardAgrees) {
    ConnectedSession test;
    test.inject(Fault::Kind::ResultCode, "setup", "open_connection", 2, -16);
    const WrittenText written = textWritten([&] { Setup::RPC::openConnection(test.session); });
    EXPECT_EQ(written.error, "");
    EXPECT_EQ(test.count("open_connection"), 3U);
    EXPECT_EQ(test.session.sessionId, 1U);
}

class RefusedOpening : public testing::TestWithParam<int> {
protected:
    ConnectedSession test{exclusiveMode(5)};

    std::string error;
    template <class Expected>
    std::string refuse() {
        test.inject(Fault::Kind::ResultCode, "setup", "open_connection", -1, GetParam());
        std::string thrown;
        const auto start = std::chrono::steady_clock::now();
        error = textWritten([&] {
                    thrown = thrownText<Expected>([&] { Setup::RPC::openConnection(test.session); });
                }).error;
        EXPECT_GE(std::chrono::steady_clock::now() - start, std::chrono::seconds(5));
        EXPECT_EQ(test.count("open_connection"), 6U);
        EXPECT_EQ(test.session.sessionId, 0xFFFFFFFFU);
        EXPECT_EQ(test.session.callSequence, 0xFFFF);
        EXPECT_EQ(test.session.mdio.key, 5);
        return thrown;
    }
};

class DeniedOpening : public RefusedOpening {};

TEST_P(DeniedOpening, IsAccessDeniedAfterSixTries) {
    EXPECT_EQ(refuse<Exceptions::AccessDenied>(), "Device is in use or access denied.");
    EXPECT_EQ(error, "");
}

INSTANTIATE_TEST_SUITE_P(Codes, DeniedOpening, testing::Values(-13, -28, -1));

class FailedOpening : public RefusedOpening {};

TEST_P(FailedOpening, IsReportedAfterSixTries) {
    EXPECT_EQ(refuse<Exceptions::Standard>(), "Error opening connection");
    EXPECT_EQ(error, "Error opening connection: -110\n");
}

INSTANTIATE_TEST_SUITE_P(Codes, FailedOpening, testing::Values(-110));

TEST(OpenConnection, GivesUpAtTheFirstTransportError) {
    ConnectedSession test;
    test.inject(Fault::Kind::LoseReply, "setup", "open_connection");
    std::string thrown;
    const WrittenText written = textWritten([&] {
        thrown = thrownText<Exceptions::DeviceConnection>([&] { Setup::RPC::openConnection(test.session); });
    });
    EXPECT_EQ(thrown, "Problem with connection to rpc server on device.");
    EXPECT_EQ(written.error, "Open session RPC failed with error: 5\n");
    EXPECT_EQ(test.count("open_connection"), 1U);
    EXPECT_EQ(test.count("ping"), 0U);
    EXPECT_TRUE(test.session.isValid());
}

TEST(OpenConnection, UpdatesAClientWithoutHandle) {
    ConnectedSession test;
    test.client(BoardConnection::SETUP).reset();
    const WrittenText written = textWritten([&] { Setup::RPC::openConnection(test.session); });
    EXPECT_EQ(written.error, "Opening session error. Updating client: setup\n");
    EXPECT_EQ(test.session.sessionId, 1U);
}

TEST(OpenConnection, ThrowsWhenTheClientCannotBeUpdated) {
    PhySession session("board7", simpleMode());
    std::string thrown;
    const WrittenText written = textWritten([&] {
        session.connection->getClient(BoardConnection::SETUP)->host = kRefusingAddress;
        thrown = thrownText<Exceptions::InvalidRPCClient>([&] { Setup::RPC::openConnection(session); });
    });
    EXPECT_EQ(thrown, "Invalid RPC client: setup");
    EXPECT_EQ(written.error.find("Opening session error. Updating client: setup\n: RPC: "), 0U)
        << written.error;
    EXPECT_NE(written.error.find("\nClient setup create error: 12\n"
                                 "Error connecting to rpc program setup from: 10.83.100.1\n"
                                 "  \n"
                                 "Opening session terminated. Invalid Setup RPC client\n"),
              std::string::npos)
        << written.error;
}

TEST(OpenConnection, MarksTheClientBusyForEachTry) {
    ConnectedSession test;
    std::vector<bool> marks;
    hookClient(*test.session.connection, BoardConnection::SETUP).onBusy = [&](bool busy) {
        marks.push_back(busy);
    };
    test.inject(Fault::Kind::ResultCode, "setup", "open_connection", 1, -16);
    Setup::RPC::openConnection(test.session);
    EXPECT_EQ(marks, (std::vector<bool>{true, false, true, false}));
}

class CloseConnection : public testing::Test, public SessionOnBoard {
protected:
    CloseConnection() : SessionOnBoard(exclusiveMode()) {}
    WrittenText close() {
        return textWritten([&] { Setup::RPC::closeConnection(session); });
    }
};

TEST_F(CloseConnection, SendsIdentityAndKeyAndForgetsTheId) {
    EXPECT_EQ(close().error, "");
    const Request request = onlyRequest(*this);
    EXPECT_EQ(request.programNumber, 0x2FFFFFF0U);
    EXPECT_EQ(request.procedureNumber, 2U);
    EXPECT_EQ(request.procedure, "close_connection");
    EXPECT_EQ(argumentsOf(request), (Json{{"handle", 0x6501}, {"key", 0x5000}}));
    EXPECT_EQ(session.sessionId, 0U);
    EXPECT_EQ(session.callSequence, 0);
    EXPECT_EQ(session.mdio.key, 0x5000);
    EXPECT_EQ(board.sessionCount(), 0U);
}

TEST_F(CloseConnection, ByItsOtherNameDoesTheSame) {
    Setup::closeConnection(session);
    EXPECT_EQ(argumentsOf(onlyRequest(*this)), (Json{{"handle", 0x6501}, {"key", 0x5000}}));
}

TEST_F(CloseConnection, ResetsTheTimeout) {
    client(BoardConnection::SETUP).setTimeout(30, 0);
    close();
    EXPECT_EQ(client(BoardConnection::SETUP).timeout.tv_sec, 2);
}

TEST_F(CloseConnection, DoesNotMarkTheClientBusy) {
    bool marked = false;
    hookClient(*session.connection, BoardConnection::SETUP).onBusy = [&](bool) { marked = true; };
    close();
    EXPECT_FALSE(marked);
    EXPECT_EQ(count("close_connection"), 1U);
}

TEST_F(CloseConnection, WithoutHandleSaysSoAndForgetsTheIdAllTheSame) {
    client(BoardConnection::SETUP).reset();
    EXPECT_EQ(close().error, "Closing connection terminated. Invalid Setup RPC client\n");
    EXPECT_EQ(session.sessionId, 0U);
    EXPECT_EQ(session.callSequence, 0);
    EXPECT_EQ(count("close_connection"), 0U);
}

TEST_F(CloseConnection, WithoutAnswerReportsTheStatusOnce) {
    inject(Fault::Kind::LoseReply, "setup", "close_connection");
    EXPECT_EQ(close().error, "Close connection returned: 5\n");
    EXPECT_EQ(count("close_connection"), 1U);
    EXPECT_TRUE(session.isValid());
}

TEST_F(CloseConnection, DoesNotLookAtTheBoardsCode) {
    inject(Fault::Kind::ResultCode, "setup", "close_connection", 1, -56);
    EXPECT_EQ(close().error, "");
    EXPECT_TRUE(session.isValid());
    EXPECT_EQ(count("close_connection"), 1U);
}

TEST(PhySessionClose, SendsTheRequestWhenTheSessionIsDestroyed) {
    OneBoard lab;
    {
        PhySession session(lab.record(), simpleMode());
        Setup::openConnection(session);
        EXPECT_EQ(lab.board.sessionCount(), 1U);
    }
    EXPECT_EQ(lab.board.sessionCount(), 0U);
    EXPECT_EQ(lab.count("close_connection"), 1U);
}

TEST(PhySessionClose, OfAnAbandonedSessionSendsNothing) {
    OneBoard lab;
    {
        PhySession session(lab.record(), simpleMode());
        session.abandon();
    }
    EXPECT_EQ(lab.count("close_connection"), 0U);
}

TEST(PhySessionClose, OfAnUnconnectedSessionIsReportedAtItsDestruction) {
    auto session = std::make_unique<PhySession>("board7", simpleMode());
    const WrittenText written = textWritten([&] { session.reset(); });
    EXPECT_EQ(written.error, "Closing connection terminated. Invalid Setup RPC client\n");
}

TEST(PhySessionClose, DiscardsWhateverTheCloseCallThrows) {
    SessionOnBoard test;
    test.session.connection->clients.clear();
    test.session.close();
    EXPECT_EQ(test.count("close_connection"), 0U);
}

struct Ping {
    int (*ping)(PhySession&);
    const char* procedure;
    unsigned program;
    unsigned procedureNumber;
    const char* transport;
    const char* client;
};

class SessionPing : public testing::TestWithParam<Ping>, public SessionOnBoard {};

TEST_P(SessionPing, CarriesThePingSequenceAndTheSessionId) {
    session.pingSequence = 0x0203;
    const int elapsed = GetParam().ping(session);
    EXPECT_GE(elapsed, 0);
    const Request request = onlyRequest(*this);
    EXPECT_EQ(request.programNumber, GetParam().program);
    EXPECT_EQ(request.procedureNumber, GetParam().procedureNumber);
    EXPECT_EQ(request.procedure, GetParam().procedure);
    EXPECT_EQ(request.transport, GetParam().transport);
    EXPECT_EQ(argumentsOf(request), (Json{{"handle", 0x00020301}}));
    EXPECT_EQ(session.pingSequence, 0x0204);
    EXPECT_EQ(session.callSequence, 101);
}

TEST_P(SessionPing, OfASessionThatTheBoardForgotMakesItInvalid) {
    board.forgetSessions();
    std::string thrown;
    const WrittenText written = textWritten(
        [&] { thrown = thrownText<Exceptions::InvalidSession>([&] { GetParam().ping(session); }); });
    EXPECT_EQ(thrown, "The board session is no longer valid.");
    EXPECT_EQ(written.error, std::string(GetParam().client) + " EBADRQC result error\n");
    EXPECT_EQ(session.getSessionState(), PhySession::SESSION_INVALID);
    EXPECT_EQ(session.pingSequence, 0);
}

INSTANTIATE_TEST_SUITE_P(
    Both, SessionPing,
    testing::Values(Ping{KeepAlive::RPC::ping, "pingkeepalive", 0x2FFFFFF5, 1, "udp", "keepAlive"},
                    Ping{Setup::RPC::ping, "pingclient", 0x2FFFFFF0, 5, "tcp", "setup"}));

TEST(BoardPingOfAConnection, NeedsNoSession) {
    ConnectedSession test;
    EXPECT_GE(Setup::RPC::ping(*test.session.connection), 0);
    EXPECT_EQ(argumentsOf(onlyRequest(test)), (Json{{"value", 123}}));
}

} // namespace
} // namespace Orvane
