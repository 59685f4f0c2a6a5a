// The set of clients that reach one board.
#include "ov_sys/Interface/connection/BoardConnection.h"

#include "ov_sys/Interface/foundation/Exceptions.h"
#include "ov_sys/Interface/rpc_protocol/Programs.h"
#include "tests/support/OneBoard.h"
#include "tests/support/WrittenText.h"

#include <algorithm>
#include <gtest/gtest.h>
#include <orvane/lab_json.h>
#include <stdexcept>

namespace Orvane {
namespace {

using namespace OrvaneTest;
using OrvaneSim::Fault;
using Ids = std::vector<BoardConnection::clientId>;

struct Slot {
    int id;
    const char* name;
    unsigned long program;
    const char* protocol;
};

constexpr Slot kSlots[] = {
    {0, "setup", 0x2FFFFFF0, "tcp"}, {1, "mdio", 0x2FFFFFF2, "udp"},      {2, "i2c", 0x2FFFFFF1, "udp"},
    {3, "gpio", 0x2FFFFFF4, "udp"},  {4, "keepAlive", 0x2FFFFFF5, "udp"}, {5, "jtag", 0x2FFFFFF3, "udp"},
    {6, "adc", 0x2FFFFFF6, "tcp"},   {7, "thermal", 0x2FFFFFF7, "udp"},
};

class ClientSlot : public testing::TestWithParam<Slot> {};

TEST_P(ClientSlot, HoldsTheClientOfItsService) {
    const Slot& slot = GetParam();
    BoardConnection connection("board7");
    const RPCClient& client = *connection.getClient(static_cast<BoardConnection::clientId>(slot.id));
    EXPECT_EQ(client.name, slot.name);
    EXPECT_EQ(client.program, slot.program);
    EXPECT_EQ(client.protocol, slot.protocol);
    EXPECT_EQ(client.version, 1U);
    EXPECT_EQ(client.host, "");
    EXPECT_EQ(client.client, nullptr);
}

INSTANTIATE_TEST_SUITE_P(All, ClientSlot, testing::ValuesIn(kSlots),
                         [](const auto& slot) { return slot.param.name; });

template <class Kind>
bool isOfKind(BoardConnection& connection, BoardConnection::clientId id) {
    return dynamic_cast<Kind*>(connection.getClient(id)) != nullptr;
}

Ids connectedClients(BoardConnection& connection) {
    Ids ids;
    for (const auto& [id, client] : connection.clients)
        if (client->client != nullptr)
            ids.push_back(id);
    return ids;
}

TEST(BoardConnection, FromANameHasEightUnconnectedClientsAndASelectedInterface) {
    WrittenText written = textWritten([] {
        BoardConnection connection("board7");
        EXPECT_EQ(connection.clients.size(), 8U);
        EXPECT_TRUE(connectedClients(connection).empty());
        EXPECT_TRUE(connection.interfaceSelected);
        EXPECT_EQ(connection.name, "BOARD7");
        EXPECT_EQ(connection.host, "");
    });
    EXPECT_EQ(written.error, "");
    EXPECT_EQ(written.output, "");
}

TEST(BoardConnection, MakesEachClientOfItsKind) {
    BoardConnection connection("board7");
    for (const auto id : {BoardConnection::SETUP, BoardConnection::MDIO, BoardConnection::I2C,
                          BoardConnection::GPIO, BoardConnection::JTAG}) {
        EXPECT_TRUE(isOfKind<NormalRPCClient>(connection, id)) << id;
        EXPECT_FALSE(isOfKind<ThreadSafeRPCClient>(connection, id)) << id;
    }
    EXPECT_TRUE(isOfKind<ThreadSafeRPCClient>(connection, BoardConnection::KEEPALIVE));
    EXPECT_TRUE(isOfKind<ExtendedRPCClient>(connection, BoardConnection::ADC));
    EXPECT_TRUE(isOfKind<ExtendedRPCClient>(connection, BoardConnection::THERMAL));
}

TEST(BoardConnection, KeepsSevenHandlesOfMinusOneThatNothingChanges) {
    BoardConnection connection("board7");
    connection.setupHandles();
    connection.resetHandles();
    EXPECT_TRUE(std::all_of(std::begin(connection.handles), std::end(connection.handles),
                            [](int handle) { return handle == -1; }));
    EXPECT_EQ(std::size(connection.handles), 7U);
}

TEST(BoardConnection, FromARecordLooksProgramsUpInTheOrderOfMaking) {
    OneBoard lab;
    BoardConnection connection(lab.record());
    EXPECT_EQ(connection.name, "BOARD7");
    EXPECT_EQ(connection.host, lab.board.address());
    EXPECT_EQ(lab.programsLookedUp(),
              (std::vector<unsigned long>{Programs::Setup, Programs::MDIO, Programs::I2C, Programs::GPIO,
                                          Programs::JTAG, Programs::KeepAlive}));
}

TEST(BoardConnection, FromARecordConnectsNeitherAdcNorThermal) {
    OneBoard lab;
    BoardConnection connection(lab.record());
    EXPECT_NE(connection.getClient(BoardConnection::SETUP)->client, nullptr);
    EXPECT_NE(connection.getClient(BoardConnection::MDIO)->client, nullptr);
    EXPECT_NE(connection.getClient(BoardConnection::KEEPALIVE)->client, nullptr);
    EXPECT_EQ(connection.getClient(BoardConnection::ADC)->client, nullptr);
    EXPECT_EQ(connection.getClient(BoardConnection::THERMAL)->client, nullptr);
}

TEST(BoardConnection, UpdatesAllEightClientsInTheOrderOfTheirIds) {
    OneBoard lab;
    BoardConnection connection("board7");
    connection.host = lab.board.address();
    connection.updateClients();
    EXPECT_EQ(
        lab.programsLookedUp(),
        (std::vector<unsigned long>{Programs::Setup, Programs::MDIO, Programs::I2C, Programs::GPIO,
                                    Programs::KeepAlive, Programs::JTAG, Programs::ADC, Programs::Thermal}));
    for (const auto& [id, client] : connection.clients)
        EXPECT_EQ(client->host, lab.board.address()) << id;
}

TEST(BoardConnection, ResetsAllClientsByTheirVirtualReset) {
    OneBoard lab;
    BoardConnection connection(lab.record());
    connection.getClient(BoardConnection::KEEPALIVE)->setBusy(true);
    const WrittenText written = textWritten([&] { connection.resetClients(); });
    EXPECT_TRUE(connectedClients(connection).empty());
    EXPECT_EQ(written.error, "Error!!! KeepAlive thread is busy. Reseting anyway...\n");
}

class UnknownClient : public testing::TestWithParam<int> {};

TEST_P(UnknownClient, IsOutOfRange) {
    BoardConnection connection("board7");
    EXPECT_EQ(thrownText<std::out_of_range>(
                  [&] { connection.getClient(static_cast<BoardConnection::clientId>(GetParam())); }),
              "map::at");
}

INSTANTIATE_TEST_SUITE_P(Ids, UnknownClient, testing::Values(-1, 8, 1000));

class ServerTest : public testing::TestWithParam<int (BoardConnection::*)()> {};

TEST_P(ServerTest, PingsTheBoardWith123AndReturnsTheMilliseconds) {
    OneBoard lab;
    BoardConnection connection(lab.record());
    const int elapsed = (connection.*GetParam())();
    EXPECT_GE(elapsed, 0);
    EXPECT_LT(elapsed, 2000);
    const auto requests = lab.board.requests();
    ASSERT_EQ(requests.size(), 1U);
    EXPECT_EQ(requests[0].procedure, "ping");
    EXPECT_EQ(argumentsOf(requests[0]), (nlohmann::ordered_json{{"value", 123}}));
}

TEST_P(ServerTest, ThrowsForABoardThatDoesNotAnswer) {
    OneBoard lab;
    BoardConnection connection(lab.record());
    lab.inject(Fault::Kind::LoseReply, "setup", "ping");
    EXPECT_EQ(thrownText<Exceptions::DeviceConnection>([&] { (connection.*GetParam())(); }),
              "Problem with connection to rpc server on device.");
}

TEST_P(ServerTest, ThrowsForAnUnconnectedSetupClient) {
    BoardConnection connection("board7");
    EXPECT_EQ(thrownText<Exceptions::InvalidRPCClient>([&] { (connection.*GetParam())(); }),
              "Invalid RPC client: setup");
}

INSTANTIATE_TEST_SUITE_P(Both, ServerTest,
                         testing::Values(&BoardConnection::testServer, &BoardConnection::pingServer));

TEST(BoardConnectionFatalError, ReportsTheStatusAndTheLastCreationErrorThenThrows) {
    BoardConnection connection("board7");
    rpc_createerr.cf_stat = RPC_UNKNOWNHOST;
    std::string thrown;
    const WrittenText written = textWritten([&] {
        thrown = thrownText<Exceptions::Standard>([&] { connection.onRPCCallFatalError(RPC_TIMEDOUT); });
    });
    EXPECT_EQ(thrown, "Remote error.");
    EXPECT_EQ(written.error, "Remote Error:5\n  \"RPC: Unknown host\n\"\n");
}

} // namespace
} // namespace Orvane
