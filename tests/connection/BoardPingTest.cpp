// The ping of a board without a session.
#include "ov_sys/Interface/connection/BoardPing.h"

#include "ov_sys/Interface/connection/HandleTurn.h"
#include "ov_sys/Interface/foundation/Exceptions.h"
#include "ov_sys/Interface/rpc_protocol/Programs.h"
#include "tests/support/HookedClient.h"
#include "tests/support/OneBoard.h"
#include "tests/support/WrittenText.h"

#include <gtest/gtest.h>
#include <orvane/lab_json.h>
#include <thread>
#include <vector>

namespace Orvane {
namespace {

using namespace OrvaneTest;
using OrvaneSim::Fault;
using OrvaneSim::Request;
using Json = nlohmann::ordered_json;

class BoardPing : public testing::Test {
protected:
    OneBoard lab;
    HookedClient<NormalRPCClient> client{Programs::Setup, Programs::Version, "tcp", "setup",
                                         lab.board.address()};
};

TEST_F(BoardPing, SendsItsValueAndStoresTheAnswer) {
    int answer = 0;
    DO_RPC_BOARD_PING(-77, &answer, &client);
    EXPECT_EQ(answer, -77);
    const std::vector<Request> requests = lab.board.requests();
    ASSERT_EQ(requests.size(), 1U);
    EXPECT_EQ(requests[0].program, "setup");
    EXPECT_EQ(requests[0].programNumber, 0x2FFFFFF0U);
    EXPECT_EQ(requests[0].version, 1U);
    EXPECT_EQ(requests[0].procedureNumber, 4U);
    EXPECT_EQ(requests[0].procedure, "ping");
    EXPECT_EQ(requests[0].transport, "tcp");
    EXPECT_EQ(argumentsOf(requests[0]), (Json{{"value", -77}}));
}

TEST_F(BoardPing, MarksTheClientBusyForTheCall) {
    std::vector<std::pair<bool, std::size_t>> marks;
    client.onBusy = [&](bool busy) { marks.emplace_back(busy, lab.count("ping")); };
    int answer = 0;
    DO_RPC_BOARD_PING(123, &answer, &client);
    EXPECT_EQ(marks, (std::vector<std::pair<bool, std::size_t>>{{true, 0}, {false, 1}}));
}

TEST_F(BoardPing, IsAnsweredWhileAnotherThreadsCallIsUnderWay) {
    const HandleTurn call(client);
    int answer = 0;
    std::thread other([&] { DO_RPC_BOARD_PING(77, &answer, &client); });
    other.join();
    EXPECT_EQ(answer, 77);
    EXPECT_EQ(lab.count("ping"), 1U);
}

TEST_F(BoardPing, WithoutHandleSaysSoAndThrows) {
    client.reset();
    std::string thrown;
    int answer = 5;
    const WrittenText written = textWritten([&] {
        thrown = thrownText<Exceptions::InvalidRPCClient>([&] { DO_RPC_BOARD_PING(123, &answer, &client); });
    });
    EXPECT_EQ(thrown, "Invalid RPC client: setup");
    EXPECT_EQ(written.error, "Pinging board terminated. Invalid Setup RPC client\n");
    EXPECT_EQ(answer, 5);
    EXPECT_EQ(lab.count("ping"), 0U);
}

TEST_F(BoardPing, WithoutAnswerReportsTheStatusAndThrows) {
    lab.inject(Fault::Kind::LoseReply, "setup", "ping");
    std::string thrown;
    int answer = 0;
    const WrittenText written = textWritten([&] {
        thrown = thrownText<Exceptions::DeviceConnection>([&] { DO_RPC_BOARD_PING(123, &answer, &client); });
    });
    EXPECT_EQ(thrown, "Problem with connection to rpc server on device.");
    EXPECT_EQ(written.error, "Ping returned: 5\n");
    EXPECT_EQ(lab.count("ping"), 1U);
}

} // namespace
} // namespace Orvane
