// Clients whose board is named and not numbered.
#include "ov_sys/Interface/connection/RPCClient.h"
#include "ov_sys/Interface/rpc_protocol/Programs.h"
#include "ov_sys/Interface/rpc_protocol/Stubs.h"
#include "tests/support/HostsFile.h"
#include "tests/support/OneBoard.h"
#include "tests/support/WrittenText.h"

#include <cerrno>
#include <gtest/gtest.h>

namespace Orvane {
namespace {

using namespace OrvaneTest;

constexpr const char* kName = "named-board";

class HostName : public testing::TestWithParam<const char*> {
protected:
    // Makes a client of the setup program for `host` and returns what that wrote.
    std::string connectTo(const std::string& host) {
        return textWritten([&] { client.update(host); }).error;
    }

    NormalRPCClient client{Programs::Setup, Programs::Version, GetParam(), "setup", ""};
};

TEST_P(HostName, OfABoardLeadsToItAsItsAddressDoes) {
    OneBoard lab;
    const HostsFile hosts(lab.board.address() + " " + kName + "\n");
    EXPECT_EQ(connectTo(kName), "");
    int answer = 0;
    EXPECT_EQ(ping_1(4711, &answer, client.client), RPC_SUCCESS);
    EXPECT_EQ(answer, 4711);
    EXPECT_EQ(lab.count("portmap_getport"), 1U);
}

TEST_P(HostName, OfAHostWhosePortMapperRefusesIsReportedAsItsAddressIs) {
    const HostsFile hosts(std::string(kRefusingAddress) + " " + kName + "\n");
    for (int round = 0; round < 3; ++round) {
        connectTo(kRefusingAddress);
        const clnt_stat status = rpc_createerr.cf_stat;
        EXPECT_EQ(connectTo(kName).substr(0, 7), ": RPC: ");
        EXPECT_EQ(rpc_createerr.cf_stat, status);
        EXPECT_EQ(rpc_createerr.cf_error.re_errno, ECONNREFUSED);
        EXPECT_EQ(client.client, nullptr);
    }
}

TEST_P(HostName, ThatIsNotKnownIsReportedAsUnknown) {
    const HostsFile hosts("127.0.0.1 localhost\n");
    EXPECT_EQ(connectTo("no-such-board.invalid"),
              ": RPC: Unknown host\n"
              "RPC: Unknown host\n"
              "Client setup create error: 13\n"
              "Error connecting to rpc program setup from: no-such-board.invalid\n"
              "  \n");
    EXPECT_EQ(rpc_createerr.cf_stat, RPC_UNKNOWNHOST);
    EXPECT_EQ(rpc_createerr.cf_error.re_errno, 0);
    EXPECT_EQ(client.client, nullptr);
}

INSTANTIATE_TEST_SUITE_P(Transports, HostName, testing::Values("udp", "tcp"));

} // namespace
} // namespace Orvane
