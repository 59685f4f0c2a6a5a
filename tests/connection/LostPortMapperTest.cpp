// Clients whose board's port mapper refuses, keeps silent or does not know the program.
#include "ov_sys/Interface/connection/DatagramTransport.h"
#include "ov_sys/Interface/connection/RPCClient.h"
#include "ov_sys/Interface/connection/RPCHandle.h"
#include "ov_sys/Interface/foundation/FileDescriptor.h"
#include "ov_sys/Interface/rpc_protocol/Codec.h"
#include "ov_sys/Interface/rpc_protocol/Programs.h"
#include "ov_sys/Interface/rpc_protocol/Stubs.h"
#include "tests/support/OneBoard.h"
#include "tests/support/WrittenText.h"

#include <arpa/inet.h>
#include <cerrno>
#include <chrono>
#include <gtest/gtest.h>
#include <ostream>
#include <sys/socket.h>

#include <rpc/pmap_prot.h> // needs rpc.h before it

namespace Orvane {
namespace {

using namespace OrvaneTest;

struct Failure {
    CLIENT* handle;
    std::string error;
    clnt_stat status;
    int number;          // the errno behind it
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
    failure.number = rpc_createerr.cf_error.re_errno;
    failure.library = libraryReport();
    return failure;
}

TEST(RPCClientConnect, ToARefusingHostOverUdpSaysThatNothingCanBeReceived) {
    const Failure failure = failToConnect<NormalRPCClient>("udp", kRefusingAddress);
    EXPECT_EQ(failure.handle, nullptr);
    EXPECT_EQ(failure.status, RPC_CANTRECV);
    EXPECT_EQ(failure.number, ECONNREFUSED);
    EXPECT_EQ(failure.error, failure.library + "Client mdio create error: 4\n"
                                               "Error connecting to rpc program mdio from: 10.83.100.1\n"
                                               "  \n");
}

TEST(RPCClientConnect, ToARefusingHostOverTcpSaysThatTheConnectionIsRefused) {
    const Failure failure = failToConnect<NormalRPCClient>("tcp", kRefusingAddress);
    EXPECT_EQ(failure.handle, nullptr);
    EXPECT_EQ(failure.status, RPC_SYSTEMERROR);
    EXPECT_EQ(failure.error, ": RPC: Remote system error - Connection refused\n"
                             "RPC: Remote system error\n"
                             "Client mdio create error: 12\n"
                             "Error connecting to rpc program mdio from: 10.83.100.1\n"
                             "  \n");
    EXPECT_EQ(failure.error.find(failure.library), 0U);
}

TEST(RPCClientConnect, OfAnExtendedClientThatFailsKeepsTheConnectionErrorToItself) {
    const Failure failure = failToConnect<ExtendedRPCClient>("tcp", kRefusingAddress);
    EXPECT_EQ(failure.handle, nullptr);
    EXPECT_EQ(failure.error, failure.library + "Client mdio create error: 12\n");
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

struct Transport {
    const char* name;
    clnt_stat silent; // what a host that does not answer at all comes to
};

void PrintTo(const Transport& transport, std::ostream* stream) {
    *stream << transport.name;
}

class SilentHost : public testing::TestWithParam<Transport> {};

TEST_P(SilentHost, IsGivenUpLongBeforeTheLibrarysOwnMinute) {
    const auto start = std::chrono::steady_clock::now();
    const Failure failure = failToConnect<ExtendedRPCClient>(GetParam().name, kSilentAddress);
    EXPECT_EQ(failure.handle, nullptr);
    EXPECT_EQ(failure.status, GetParam().silent);
    EXPECT_EQ(failure.error, failure.library + "Client mdio create error: " +
                                 std::to_string(static_cast<int>(GetParam().silent)) + "\n");
    EXPECT_LT(std::chrono::steady_clock::now() - start, std::chrono::seconds(14));
}

INSTANTIATE_TEST_SUITE_P(Transports, SilentHost,
                         testing::Values(Transport{"udp", RPC_TIMEDOUT}, Transport{"tcp", RPC_SYSTEMERROR}));

class LostLookUp : public testing::TestWithParam<const char*>, public OneBoard {};

TEST_P(LostLookUp, OfEveryKindEndsTheConnectingLongBeforeTheLibrarysOwnMinute) {
    inject(OrvaneSim::Fault::Kind::Silent, "portmap", "", -1);
    const auto start = std::chrono::steady_clock::now();
    const Failure failure = failToConnect<ExtendedRPCClient>(GetParam(), board.address());
    EXPECT_EQ(failure.handle, nullptr);
    EXPECT_EQ(failure.status, RPC_TIMEDOUT);
    EXPECT_LT(std::chrono::steady_clock::now() - start, std::chrono::seconds(14));
}

INSTANTIATE_TEST_SUITE_P(Transports, LostLookUp, testing::Values("udp", "tcp"));

TEST(RPCClientConnect, AsksAgainWithoutALongPauseForAPortWhoseDatagramWasLost) {
    OneBoard lab;
    lab.inject(OrvaneSim::Fault::Kind::LoseReply, "portmap", "portmap_getport");
    const auto start = std::chrono::steady_clock::now();
    NormalRPCClient client(Programs::MDIO, Programs::Version, "udp", "mdio", lab.board.address());
    EXPECT_NE(client.client, nullptr);
    EXPECT_LT(std::chrono::steady_clock::now() - start, std::chrono::seconds(14)); // the library's own pause
    EXPECT_EQ(lab.count("portmap_getport"), 2U);
}

// Tells the board's port mapper that the setup program is at another port.
void moveSetupProgram(const OneBoard& lab, int protocol, u_int port) {
    const FileDescriptor socket(::socket(AF_INET, SOCK_DGRAM | SOCK_CLOEXEC, 0));
    sockaddr_in mapper{};
    mapper.sin_family = AF_INET;
    mapper.sin_port = htons(PMAPPORT);
    inet_aton(lab.board.address().c_str(), &mapper.sin_addr);
    ASSERT_EQ(connect(socket.get(), reinterpret_cast<const sockaddr*>(&mapper), sizeof mapper), 0);
    DatagramTransport transport(socket.get());
    pmap mapping{Programs::Setup, Programs::Version, static_cast<u_long>(protocol), port};
    for (const rpcproc_t procedure : {rpcproc_t{PMAPPROC_UNSET}, rpcproc_t{PMAPPROC_SET}}) {
        int done = 0;
        rpc_err error{};
        const CallMessage message(procedure, {PMAPPROG, PMAPVERS, procedure},
                                  reinterpret_cast<xdrproc_t>(xdr_pmap), &mapping, xdrProcedure<int>, &done);
        EXPECT_EQ(transport.call(message, Deadline::after(std::chrono::seconds(10)), error), RPC_SUCCESS);
        EXPECT_EQ(done, 1) << procedure;
    }
}

constexpr u_int kDeafPort = 9;

TEST(RPCClientConnect, ToAProgramWhosePortRefusesSaysSo) {
    OneBoard lab;
    for (const u_int port : {kDeafPort, 65535U}) {
        moveSetupProgram(lab, IPPROTO_TCP, port);
        const Failure failure = failToConnect<ExtendedRPCClient>("tcp", lab.board.address(), Programs::Setup);
        EXPECT_EQ(failure.handle, nullptr);
        EXPECT_EQ(failure.status, RPC_SYSTEMERROR);
        EXPECT_EQ(failure.error, ": RPC: Remote system error - Connection refused\n"
                                 "RPC: Remote system error\n"
                                 "Client mdio create error: 12\n");
    }
}

TEST(RPCClientConnect, ToAProgramAtWhatIsNoPortSaysThatItIsNotRegistered) {
    OneBoard lab;
    for (const u_int port : {65536U, 65536 + kDeafPort}) {
        moveSetupProgram(lab, IPPROTO_TCP, port);
        const Failure failure = failToConnect<ExtendedRPCClient>("tcp", lab.board.address(), Programs::Setup);
        EXPECT_EQ(failure.handle, nullptr);
        EXPECT_EQ(failure.status, RPC_PROGNOTREGISTERED);
        EXPECT_EQ(failure.number, 0);
        EXPECT_EQ(failure.error, failure.library + "Client mdio create error: 15\n");
    }
}

TEST(RPCClientConnect, ThatFailsLeavesAConnectedClientUnconnected) {
    OneBoard lab;
    NormalRPCClient client(Programs::Setup, Programs::Version, "tcp", "setup", lab.board.address());
    ASSERT_NE(client.client, nullptr);
    lab.board.stop();
    client.connect();
    EXPECT_EQ(client.client, nullptr);
    EXPECT_EQ(client.pin(), nullptr);
}

class UnknownProtocol : public testing::TestWithParam<const char*>, public OneBoard {};

TEST_P(UnknownProtocol, IsRefusedWithoutAskingTheBoard) {
    const Failure failure = failToConnect<NormalRPCClient>(GetParam(), board.address());
    EXPECT_EQ(failure.handle, nullptr);
    EXPECT_EQ(failure.status, RPC_UNKNOWNPROTO);
    EXPECT_EQ(failure.number, 0);
    EXPECT_EQ(failure.error, ": RPC: Unknown protocol\n"
                             "RPC: Unknown protocol\n"
                             "Client mdio create error: 17\n"
                             "Error connecting to rpc program mdio from: " +
                                 board.address() + "\n  \n");
    EXPECT_EQ(failure.error.find(failure.library), 0U);
    EXPECT_TRUE(board.requests("portmap").empty());
}

INSTANTIATE_TEST_SUITE_P(Names, UnknownProtocol, testing::Values("bogus", "UDP", "Tcp", "tcp6", ""));

TEST(RPCClientConnect, ToAProgramWhoseDatagramPortRefusesSucceedsAndItsCallFails) {
    OneBoard lab;
    moveSetupProgram(lab, IPPROTO_UDP, kDeafPort);
    NormalRPCClient client(Programs::Setup, Programs::Version, "udp", "setup", lab.board.address());
    ASSERT_NE(client.client, nullptr);
    int result = 0;
    EXPECT_EQ(ping_1(1, &result, client.client), RPC_CANTRECV);
}

struct RefusedLookUp {
    const char* transport;
    const char* report;
};

void PrintTo(const RefusedLookUp& refusal, std::ostream* stream) {
    *stream << refusal.transport;
}

class StoppedBoard : public testing::TestWithParam<RefusedLookUp> {};

TEST_P(StoppedBoard, IsReportedAtEveryUpdateAndReachedAgainAfterItsStart) {
    OneBoard lab;
    NormalRPCClient client(Programs::Setup, Programs::Version, GetParam().transport, "setup",
                           lab.board.address());
    ASSERT_NE(client.client, nullptr);
    lab.board.stop();
    for (int i = 0; i < 3; ++i) {
        const WrittenText written = textWritten([&] { client.update(); });
        EXPECT_NE(written.error.find(GetParam().report), std::string::npos) << written.error;
        EXPECT_EQ(client.client, nullptr);
    }
    lab.board.start();
    client.update();
    EXPECT_NE(client.client, nullptr);
}

INSTANTIATE_TEST_SUITE_P(Transports, StoppedBoard,
                         testing::Values(RefusedLookUp{"udp", "Client setup create error: 4\n"},
                                         RefusedLookUp{"tcp", "Client setup create error: 12\n"}));

TEST(RefusedCreation, OfAStreamToAKnownHostReturnsEveryTime) {
    OneBoard lab;
    const auto create = [&] {
        return RPCHandle::create(lab.board.address(), Programs::Setup, Programs::Version, "tcp");
    };
    for (int round = 0; round < 20; ++round) {
        ASSERT_NE(create(), nullptr);
        lab.board.stop();
        EXPECT_EQ(create(), nullptr);
        EXPECT_EQ(rpc_createerr.cf_stat, RPC_SYSTEMERROR);
        EXPECT_EQ(rpc_createerr.cf_error.re_errno, ECONNREFUSED);
        lab.board.start();
    }
}

} // namespace
} // namespace Orvane
