// The way back to a board that was lost or has moved.
#include "ov_sys/Interface/connection/BoardConnection.h"
#include "ov_sys/Interface/foundation/Exceptions.h"
#include "ov_sys/Interface/rpc_protocol/Programs.h"
#include "tests/support/HookedClient.h"
#include "tests/support/HostsFile.h"
#include "tests/support/OneBoard.h"
#include "tests/support/WrittenText.h"

#include <algorithm>
#include <chrono>
#include <gtest/gtest.h>
#include <map>
#include <memory>
#include <string>
#include <thread>
#include <utility>

namespace Orvane {
namespace {

using namespace OrvaneTest;
using OrvaneSim::Fault;

constexpr const char* kRetrieving = "Retrieve connection to RPC server\n";
constexpr const char* kPinging = "Sending ping to RPC\n";

class BoardRecovery : public testing::Test {
protected:
    using Handles = std::map<int, CLIENT*>;

    Handles handles() {
        Handles all;
        for (const auto& [id, client] : connection.clients)
            all[id] = client->client;
        return all;
    }

    // The board is not found, neither by multicast nor by probe.
    void hideBoard() {
        lab.inject(Fault::Kind::LoseReply, "discovery", "", -1);
        lab.inject(Fault::Kind::CloseConnection, "probe", "", -1);
    }

    void losePings() { lab.inject(Fault::Kind::LoseReply, "setup", "ping", -1); }

    // The first ping fails before it is sent.
    void failFirstPing() {
        hookClient(connection, BoardConnection::SETUP).onBusy = [first = true](bool busy) mutable {
            if (busy && std::exchange(first, false))
                throw Exceptions::DeviceConnection();
        };
    }

    // The connection goes to `address` from now on.
    void pointTo(const std::string& address) {
        connection.host = address;
        connection.updateClients();
    }

    OneBoard lab;
    BoardConnection connection{lab.record()};
};

TEST_F(BoardRecovery, UpdateAddressLeavesTheClientsAloneWhenTheAddressIsTheSame) {
    const Handles before = handles();
    lab.board.forgetRequests();
    connection.updateAddress();
    EXPECT_EQ(handles(), before);
    EXPECT_EQ(connection.host, lab.board.address());
    EXPECT_TRUE(lab.board.requests("portmap").empty());
}

TEST_F(BoardRecovery, UpdateAddressSearchesWithTheUpperCaseName) {
    connection.updateAddress();
    const std::vector<std::string> words = lab.board.discoveryRequests();
    ASSERT_FALSE(words.empty());
    EXPECT_EQ(words.front(), "BOARD7");
    EXPECT_TRUE(lab.board.probeRequests().empty());
}

TEST_F(BoardRecovery, UpdateAddressEndsItsSearchWithTheFirstAnswer) {
    connection.updateAddress();
    EXPECT_LT(lab.board.discoveryCount(), 15U); // 18 in all of its 4 s
}

TEST_F(BoardRecovery, UpdateAddressFindsABoardThatAnswersItsThirdRequestOnly) {
    lab.inject(Fault::Kind::LoseReply, "discovery", "", 2);
    connection.updateAddress();
    EXPECT_EQ(connection.host, lab.board.address());
    EXPECT_GE(lab.board.discoveryCount(), 3U);
}

TEST_F(BoardRecovery, UpdateAddressPointsEveryClientAtANewAddress) {
    pointTo(kRefusingAddress);
    ASSERT_EQ(connection.getClient(BoardConnection::SETUP)->client, nullptr);
    lab.board.forgetRequests();
    connection.updateAddress();
    EXPECT_EQ(connection.host, lab.board.address());
    EXPECT_EQ(lab.programsLookedUp().size(), 8U);
    for (const auto& [id, client] : connection.clients)
        EXPECT_EQ(client->host, lab.board.address()) << id;
    EXPECT_NE(connection.getClient(BoardConnection::SETUP)->client, nullptr);
}

TEST_F(BoardRecovery, UpdateAddressOfAnUnknownBoardThrowsNoDevice) {
    hideBoard();
    EXPECT_EQ(thrownText<Exceptions::NoDevice>([&] { connection.updateAddress(); }), "Device not found.");
    EXPECT_EQ(connection.host, lab.board.address());
}

TEST_F(BoardRecovery, UpdateAddressTakesAResolvedNameAfterAProbe) {
    const HostsFile hosts(lab.board.address() + " board7\n");
    pointTo(kRefusingAddress);
    connection.updateAddress();
    EXPECT_EQ(connection.host, lab.board.address());
    EXPECT_EQ(lab.board.probeRequests(), std::vector<std::string>{"BOARD7"});
    EXPECT_EQ(lab.board.discoveryCount(), 0U);
}

TEST_F(BoardRecovery, UpdateAddressSearchesWhenTheResolvedAddressDoesNotAnswerTheProbe) {
    const HostsFile hosts(std::string(kRefusingAddress) + " board7\n");
    pointTo(kRefusingAddress);
    connection.updateAddress();
    EXPECT_EQ(connection.host, lab.board.address());
    EXPECT_TRUE(lab.board.probeRequests().empty());
    EXPECT_GE(lab.board.discoveryCount(), 1U);
}

TEST_F(BoardRecovery, UpdateAddressTakesTheLastOfSeveralAddressesWithoutASearch) {
    const HostsFile hosts(lab.board.address() + " board7\n" + kRefusingAddress + " board7\n");
    connection.updateAddress();
    EXPECT_EQ(connection.host, kRefusingAddress);
    EXPECT_EQ(lab.board.discoveryCount(), 0U);
    EXPECT_TRUE(lab.board.probeRequests().empty());
}

TEST_F(BoardRecovery, RetrieveConnectionToABoardThatAnswersPingsItOnce) {
    int elapsed = -1;
    const WrittenText written = textWritten([&] { elapsed = connection.retrieveConnection(); });
    EXPECT_GE(elapsed, 0);
    EXPECT_EQ(written.error, kRetrieving);
    EXPECT_EQ(written.output, kPinging);
    EXPECT_EQ(lab.count("ping"), 1U);
}

TEST_F(BoardRecovery, RetrieveConnectionGivesAMovedBoardAQuarterOfASecondBeforeThePing) {
    using Clock = std::chrono::steady_clock;
    const HostsFile hosts(lab.board.address() + " board7\n");
    pointTo(kRefusingAddress);
    const auto times = std::make_shared<std::map<std::string, Clock::time_point>>(); // newest of each kind
    lab.board.onRequest(
        [times](const OrvaneSim::Request& request) { (*times)[request.procedure] = Clock::now(); });
    textWritten([&] { connection.retrieveConnection(); });
    ASSERT_EQ(lab.count("ping"), 1U); // and the lab's thread is done with the times
    EXPECT_GE(times->at("ping") - times->at("portmap_getport"), std::chrono::milliseconds(250));
}

TEST_F(BoardRecovery, RetrieveConnectionThrowsNoDeviceAfterOneFailedPing) {
    losePings();
    std::string thrown;
    const WrittenText written = textWritten(
        [&] { thrown = thrownText<Exceptions::NoDevice>([&] { connection.retrieveConnection(); }); });
    EXPECT_EQ(thrown, "Device not found.");
    EXPECT_EQ(written.error, std::string(kRetrieving) + "Ping returned: 5\n");
    EXPECT_EQ(written.output, kPinging);
    EXPECT_EQ(lab.count("ping"), 1U);
}

TEST_F(BoardRecovery, RetrieveConnectionPingsEvenABoardThatIsNotFound) {
    hideBoard();
    EXPECT_GE(connection.retrieveConnection(), 0);
    EXPECT_EQ(lab.count("ping"), 1U);
}

TEST_F(BoardRecovery, RetrieveConnectionFindsTheBoardOfAConnectionWithoutAddress) {
    BoardConnection fromName("board7");
    EXPECT_GE(fromName.retrieveConnection(), 0);
    EXPECT_EQ(fromName.host, lab.board.address());
    EXPECT_NE(fromName.getClient(BoardConnection::MDIO)->client, nullptr);
}

TEST_F(BoardRecovery, RetrieveConnectionLetsOtherExceptionsOfThePingPass) {
    connection.getClient(BoardConnection::SETUP)->reset();
    EXPECT_EQ(thrownText<Exceptions::InvalidRPCClient>([&] { connection.retrieveConnection(); }),
              "Invalid RPC client: setup");
}

TEST_F(BoardRecovery, ProblemOfABoardThatAnswersIsOnePing) {
    int elapsed = -1;
    const WrittenText written = textWritten([&] { elapsed = connection.problem(); });
    EXPECT_GE(elapsed, 0);
    EXPECT_EQ(written.error, "");
    EXPECT_EQ(written.output, "");
    EXPECT_EQ(lab.count("ping"), 1U);
    EXPECT_EQ(lab.board.discoveryCount(), 0U);
}

TEST_F(BoardRecovery, ProblemRetrievesTheConnectionAfterAFailedPing) {
    failFirstPing();
    int elapsed = -1;
    const WrittenText written = textWritten([&] { elapsed = connection.problem(); });
    EXPECT_GE(elapsed, 0);
    EXPECT_EQ(written.error, kRetrieving);
    EXPECT_EQ(written.output, kPinging);
    EXPECT_EQ(lab.count("ping"), 1U);
}

TEST_F(BoardRecovery, ProblemOfAnUnconnectedSetupClientThrowsAndFreesTheMutex) {
    connection.getClient(BoardConnection::SETUP)->reset();
    EXPECT_EQ(thrownText<Exceptions::InvalidRPCClient>([&] { connection.problem(); }),
              "Invalid RPC client: setup");
    EXPECT_TRUE(connection.problemMutex.try_lock());
    connection.problemMutex.unlock();
}

TEST_F(BoardRecovery, AStoppedBoardIsNoDeviceAndReachableAgainOnceItsClientsAreUpdated) {
    lab.board.stop();
    EXPECT_EQ(thrownText<Exceptions::NoDevice>([&] { connection.problem(); }), "Device not found.");
    lab.board.start();
    connection.updateClients();
    EXPECT_GE(connection.problem(), 0);
}

TEST_F(BoardRecovery, TwoProblemsAtOnceTestTheServerOneAfterTheOther) {
    int inside = 0;
    int most = 0;
    hookClient(connection, BoardConnection::SETUP).onBusy = [&](bool busy) {
        inside += busy ? 1 : -1; // under problemMutex; a data race otherwise
        most = std::max(most, inside);
    };
    std::thread other([&] { connection.problem(); });
    connection.problem();
    other.join();
    EXPECT_EQ(most, 1);
    EXPECT_EQ(lab.count("ping"), 2U);
}

class TransportStatus : public BoardRecovery, public testing::WithParamInterface<clnt_stat> {
protected:
    bool handle() { return connection.onRPCCallError(GetParam(), "mdio"); }
    long timeout(BoardConnection::clientId id) { return connection.getClient(id)->timeout.tv_sec; }
};

class HandledStatus : public TransportStatus {};

TEST_P(HandledStatus, PingsTheBoardAndReturnsTrue) {
    EXPECT_TRUE(handle());
    EXPECT_EQ(lab.count("ping"), 1U);
}

TEST_P(HandledStatus, LetsTheProblemsExceptionPass) {
    connection.getClient(BoardConnection::SETUP)->reset();
    EXPECT_EQ(thrownText<Exceptions::InvalidRPCClient>([&] { handle(); }), "Invalid RPC client: setup");
}

INSTANTIATE_TEST_SUITE_P(Statuses, HandledStatus,
                         testing::Values(RPC_CANTDECODERES, RPC_CANTSEND, RPC_CANTRECV, RPC_TIMEDOUT));

class OtherStatus : public TransportStatus {};

TEST_P(OtherStatus, ReturnsFalseWithoutAPingButWithTimeoutsReset) {
    connection.getClient(BoardConnection::SETUP)->setTimeout(7, 0);
    connection.getClient(BoardConnection::MDIO)->setTimeout(8, 0);
    EXPECT_FALSE(handle());
    EXPECT_EQ(lab.count("ping"), 0U);
    EXPECT_EQ(timeout(BoardConnection::SETUP), 2);
    EXPECT_EQ(timeout(BoardConnection::MDIO), 2);
}

INSTANTIATE_TEST_SUITE_P(Statuses, OtherStatus,
                         testing::Values(RPC_SUCCESS, RPC_CANTENCODEARGS, RPC_VERSMISMATCH, RPC_AUTHERROR,
                                         RPC_PROGUNAVAIL, RPC_PROCUNAVAIL, RPC_SYSTEMERROR, RPC_FAILED));

TEST_F(BoardRecovery, ThatWasGivenUpEndsBeforeItsSearch) {
    losePings();
    connection.giveUp(true);
    textWritten([&] { EXPECT_THROW(connection.problem(), Exceptions::NoDevice); });
    EXPECT_EQ(lab.board.discoveryCount(), 0U);
    EXPECT_EQ(lab.count("ping"), 1U);
}

TEST_F(BoardRecovery, ThatIsGivenUpDuringItsSearchSendsNoPing) {
    hideBoard();
    std::thread closing([&] {
        while (lab.board.discoveryCount() == 0)
            std::this_thread::yield();
        connection.giveUp(true);
    });
    textWritten([&] { EXPECT_THROW(connection.retrieveConnection(), Exceptions::NoDevice); });
    closing.join();
    EXPECT_EQ(lab.count("ping"), 0U);
}

} // namespace
} // namespace Orvane
