// Clients whose board's port mapper refuses, keeps silent or does not know the program.
#include "ov_sys/Interface/connection/RPCClient.h"
#include "ov_sys/Interface/rpc_protocol/Programs.h"
#include "tests/support/OneBoard.h"
#include "tests/support/WrittenText.h"

#include <chrono>
#include <gtest/gtest.h>

namespace Orvane {
namespace {

using namespace OrvaneTest;

struct Failure {
    CLIENT* handle;
    std::string error;
    clnt_stat status;
    clnt_stat detail;    // of the port mapper
    std::string library; // what the RPC library itself says of it
};

// What the RPC library says about this thread's last failed creation.
std::string libraryReport() {
    return textWritten([] {
               clnt_pcreateerror("");
               clnt_perrno(rpc_createerr.cf_stat);
           })
        .error;
}

template <class Client>
Failure failToConnect(const char* protocol, const std::string& host, unsigned long program = Programs::MDIO) {
    Client client(program, Programs::Version, protocol, "mdio", "");
    Failure failure{};
    failure.error = textWritten([&] { client.update(host); }).error;
    failure.handle = client.client;
    failure.status = rpc_createerr.cf_stat;
    failure.detail = rpc_createerr.cf_error.re_status;
    failure.library = libraryReport();
    return failure;
}

TEST(RPCClientConnect, ToARefusingHostOverUdpReportsThePortMapper) {
    const Failure failure = failToConnect<NormalRPCClient>("udp", kRefusingAddress);
    EXPECT_EQ(failure.handle, nullptr);
    EXPECT_EQ(failure.status, RPC_PMAPFAILURE);
    EXPECT_EQ(failure.detail, RPC_CANTRECV);
    EXPECT_EQ(failure.error,
              ": RPC: Port mapper failure - Unable to receive: errno 111 (Connection refused)\n"
              "RPC: Port mapper failure\n"
              "Client mdio create error: 14\n"
              "Error connecting to rpc program mdio from: 10.83.100.1\n"
              "  \n");
}

TEST(RPCClientConnect, ToARefusingHostOverTcpReportsThePortMapper) {
    const Failure failure = failToConnect<NormalRPCClient>("tcp", kRefusingAddress);
    EXPECT_EQ(failure.handle, nullptr);
    EXPECT_EQ(failure.status, RPC_PMAPFAILURE);
    EXPECT_EQ(failure.detail, RPC_CANTSEND);
    EXPECT_EQ(failure.error, failure.library + "Client mdio create error: 14\n"
                                               "Error connecting to rpc program mdio from: 10.83.100.1\n"
                                               "  \n");
}

TEST(RPCClientConnect, OfAnExtendedClientThatFailsKeepsTheConnectionErrorToItself) {
    const Failure failure = failToConnect<ExtendedRPCClient>("tcp", kRefusingAddress);
    EXPECT_EQ(failure.handle, nullptr);
    EXPECT_EQ(failure.error, failure.library + "Client mdio create error: 14\n");
}

TEST(RPCClientConnect, ToAProgramThatTheBoardDoesNotServeSaysSo) {
    OneBoard lab;
    const Failure failure = failToConnect<NormalRPCClient>("udp", lab.board.address(), 0x2FFFFFFF);
    EXPECT_EQ(failure.handle, nullptr);
    EXPECT_EQ(failure.error, ": RPC: Program not registered\n"
                             "RPC: Program not registered\n"
                             "Client mdio create error: 15\n"
                             "Error connecting to rpc program mdio from: " +
                                 lab.board.address() + "\n  \n");
}

class SilentHost : public testing::TestWithParam<const char*> {};

TEST_P(SilentHost, IsGivenUpLongBeforeTheLibrarysOwnMinute) {
    const auto start = std::chrono::steady_clock::now();
    const Failure failure = failToConnect<ExtendedRPCClient>(GetParam(), kSilentAddress);
    EXPECT_EQ(failure.handle, nullptr);
    EXPECT_EQ(failure.status, RPC_PMAPFAILURE);
    EXPECT_EQ(failure.error, failure.library + "Client mdio create error: 14\n");
    EXPECT_LT(std::chrono::steady_clock::now() - start, std::chrono::seconds(30));
}

INSTANTIATE_TEST_SUITE_P(Transports, SilentHost, testing::Values("udp", "tcp"));

class StoppedBoard : public testing::TestWithParam<const char*> {};

TEST_P(StoppedBoard, IsReportedAtEveryUpdateAndReachedAgainAfterItsStart) {
    OneBoard lab;
    NormalRPCClient client(Programs::Setup, Programs::Version, GetParam(), "setup", lab.board.address());
    ASSERT_NE(client.client, nullptr);
    lab.board.stop();
    for (int i = 0; i < 3; ++i) {
        const WrittenText written = textWritten([&] { client.update(); });
        EXPECT_NE(written.error.find("Client setup create error: 14\n"), std::string::npos) << written.error;
        EXPECT_EQ(client.client, nullptr);
    }
    lab.board.start();
    client.update();
    EXPECT_NE(client.client, nullptr);
}

INSTANTIATE_TEST_SUITE_P(Transports, StoppedBoard, testing::Values("udp", "tcp"));

} // namespace
} // namespace Orvane
