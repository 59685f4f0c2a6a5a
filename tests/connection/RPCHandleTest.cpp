// What the handle of a client promises to those who call stubs with it.
#include "ov_sys/Interface/connection/RPCHandle.h"

#include "ov_sys/Interface/rpc_protocol/Codec.h"
#include "ov_sys/Interface/rpc_protocol/Programs.h"
#include "ov_sys/Interface/rpc_protocol/Stubs.h"
#include "tests/support/OneBoard.h"

#include <arpa/inet.h>
#include <cerrno>
#include <chrono>
#include <cstring>
#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/socket.h>
#include <thread>

namespace Orvane {
namespace {

using namespace OrvaneTest;
using OrvaneSim::Fault;

// An XDR routine of what has no form on the wire.
bool_t refuse(XDR*, ...) {
    return FALSE;
}

class RPCHandles : public testing::TestWithParam<const char*>, public OneBoard {
protected:
    template <class Value>
    bool control(u_int request, Value& value) {
        return clnt_control(handle->get(), request, reinterpret_cast<char*>(&value)) != FALSE;
    }
    template <class Value>
    Value got(u_int request) {
        Value value{};
        EXPECT_TRUE(control(request, value)) << request;
        return value;
    }
    clnt_stat ping(int value = 4711) { return ping_1(value, &answer, handle->get()); }
    bool isStream() const { return std::string(GetParam()) == "tcp"; }

    std::shared_ptr<RPCHandle> handle =
        RPCHandle::create(board.address(), Programs::Setup, Programs::Version, GetParam());
    int answer = 0;
};

TEST_P(RPCHandles, AreCompleteClients) {
    const CLIENT& client = *handle->get();
    ASSERT_NE(client.cl_auth, nullptr);
    EXPECT_EQ(client.cl_auth->ah_cred.oa_flavor, AUTH_NONE);
    EXPECT_STREQ(client.cl_netid, GetParam());
    EXPECT_STREQ(client.cl_tp, "-");
    EXPECT_EQ(ping(), RPC_SUCCESS);
    EXPECT_EQ(answer, 4711);
}

TEST_P(RPCHandles, OutliveADestructionByTheirUser) {
    clnt_abort(handle->get());
    auth_destroy(handle->get()->cl_auth);
    clnt_destroy(handle->get());
    EXPECT_EQ(ping(), RPC_SUCCESS);
}

TEST_P(RPCHandles, TellWhereTheBoardIs) {
    const auto address = got<sockaddr_in>(CLGET_SERVER_ADDR);
    EXPECT_EQ(inet_ntoa(address.sin_addr), board.address());
    EXPECT_NE(address.sin_port, 0);
    const auto buffer = got<netbuf>(CLGET_SVC_ADDR);
    ASSERT_EQ(buffer.len, sizeof address);
    EXPECT_EQ(std::memcmp(buffer.buf, &address, sizeof address), 0);
}

TEST_P(RPCHandles, HaveASocketOfTheirOwnThatExecutedProgramsDoNotGet) {
    const int socket = got<int>(CLGET_FD);
    EXPECT_EQ(fcntl(socket, F_GETFD), FD_CLOEXEC);
    EXPECT_NE(fcntl(socket, F_GETFL) & O_NONBLOCK, 0);
    int type = 0;
    socklen_t length = sizeof type;
    ASSERT_EQ(getsockopt(socket, SOL_SOCKET, SO_TYPE, &type, &length), 0);
    EXPECT_EQ(type, isStream() ? SOCK_STREAM : SOCK_DGRAM);
    handle.reset();
    EXPECT_EQ(fcntl(socket, F_GETFD), -1);
}

TEST_P(RPCHandles, HaveNoTimeoutUntilOneIsSetWhichMustBeATime) {
    timeval time{};
    EXPECT_FALSE(control(CLGET_TIMEOUT, time));
    EXPECT_FALSE(handle->setTimeout({-1, 0}));
    EXPECT_FALSE(handle->setTimeout({0, -1}));
    EXPECT_FALSE(handle->setTimeout({0, 1'000'001}));
    time = {100'000'001, 0};
    EXPECT_FALSE(control(CLSET_TIMEOUT, time));
    EXPECT_FALSE(control(CLGET_TIMEOUT, time));
    EXPECT_EQ(time.tv_sec, 100'000'001);
    time = {7, 5};
    EXPECT_TRUE(control(CLSET_TIMEOUT, time));
    time = got<timeval>(CLGET_TIMEOUT);
    EXPECT_EQ(time.tv_sec, 7);
    EXPECT_EQ(time.tv_usec, 5);
}

TEST_P(RPCHandles, TakeTheShortestAndTheLongestTimeout) {
    for (const timeval time : {timeval{0, 0}, timeval{1, 999'999}, timeval{100'000'000, 0}}) {
        EXPECT_TRUE(handle->setTimeout(time));
        const auto set = got<timeval>(CLGET_TIMEOUT);
        EXPECT_EQ(set.tv_sec, time.tv_sec);
        EXPECT_EQ(set.tv_usec, time.tv_usec);
    }
    EXPECT_TRUE(handle->setTimeout({0, 1'000'000}));
    EXPECT_EQ(got<timeval>(CLGET_TIMEOUT).tv_sec, 1);
}

TEST_P(RPCHandles, HaveNoErrorBeforeTheFirstCall) {
    rpc_err error{};
    error.re_status = RPC_FAILED;
    error.re_errno = EIO;
    clnt_geterr(handle->get(), &error);
    EXPECT_EQ(error.re_status, RPC_SUCCESS);
    EXPECT_EQ(error.re_errno, 0);
}

TEST_P(RPCHandles, FreeWhatADecodeAllocated) {
    StringArrayEntry entry{strdup("decoded"), 7};
    EXPECT_EQ(clnt_freeres(handle->get(), xdrProcedure<StringArrayEntry>, &entry), TRUE);
    EXPECT_EQ(entry.text, nullptr);
}

TEST_P(RPCHandles, DoNotSendWhatCannotBeEncoded) {
    const auto status = clnt_call(handle->get(), 1, refuse, nullptr, refuse, nullptr, (timeval{2, 0}));
    EXPECT_EQ(status, RPC_CANTENCODEARGS);
    EXPECT_EQ(ping(), RPC_SUCCESS);
}

TEST_P(RPCHandles, WaitNoLongerThanTheirTimeout) {
    inject(Fault::Kind::Silent, "setup", "ping");
    ASSERT_TRUE(handle->setTimeout({0, 50'000}));
    const auto start = std::chrono::steady_clock::now();
    EXPECT_EQ(ping(), RPC_TIMEDOUT);
    EXPECT_LT(std::chrono::steady_clock::now() - start, std::chrono::milliseconds(1500));
    rpc_err error{};
    clnt_geterr(handle->get(), &error);
    EXPECT_EQ(error.re_status, RPC_TIMEDOUT);
    EXPECT_EQ(error.re_errno, ETIMEDOUT);
}

TEST_P(RPCHandles, CallUnderTheTransactionIdThatIsSet) {
    std::uint32_t id = 0xFFFFFFFF;
    EXPECT_TRUE(control(CLSET_XID, id));
    EXPECT_EQ(ping(), RPC_SUCCESS);
    EXPECT_EQ(got<std::uint32_t>(CLGET_XID), 0xFFFFFFFFU);
    EXPECT_EQ(ping(), RPC_SUCCESS);
    EXPECT_EQ(got<std::uint32_t>(CLGET_XID), 0U);
}

TEST_P(RPCHandles, CallTheVersionThatIsSet) {
    EXPECT_EQ(got<rpcvers_t>(CLGET_VERS), Programs::Version);
    rpcvers_t version = 9;
    EXPECT_TRUE(control(CLSET_VERS, version));
    EXPECT_EQ(ping(), RPC_PROGVERSMISMATCH);
    rpc_err error{};
    clnt_geterr(handle->get(), &error);
    EXPECT_EQ(error.re_status, RPC_PROGVERSMISMATCH);
    EXPECT_EQ(error.re_vers.high, Programs::Version);
    EXPECT_EQ(got<rpcvers_t>(CLGET_VERS), 9U);
}

TEST_P(RPCHandles, CallTheProgramThatIsSet) {
    EXPECT_EQ(got<rpcprog_t>(CLGET_PROG), Programs::Setup);
    auto program = static_cast<rpcprog_t>(Programs::Thermal + 1);
    EXPECT_TRUE(control(CLSET_PROG, program));
    EXPECT_EQ(ping(), RPC_PROGUNAVAIL);
}

TEST_P(RPCHandles, RefuseWhatTheyDoNotDo) {
    EXPECT_TRUE(clnt_control(handle->get(), CLSET_FD_CLOSE, nullptr));
    alignas(8) char value[128] = {1};
    for (const int request : {CLSET_FD_NCLOSE, CLSET_RETRY_TIMEOUT, CLGET_RETRY_TIMEOUT, CLSET_SVC_ADDR,
                              CLSET_PUSH_TIMOD, CLSET_POP_TIMOD, CLSET_ASYNC, CLSET_CONNECT, 0, 4711})
        EXPECT_FALSE(clnt_control(handle->get(), static_cast<u_int>(request), value)) << request;
    for (const int request : {CLSET_TIMEOUT, CLGET_TIMEOUT, CLGET_FD, CLGET_XID, CLSET_VERS})
        EXPECT_FALSE(clnt_control(handle->get(), static_cast<u_int>(request), nullptr)) << request;
}

TEST_P(RPCHandles, TakeANewTimeoutAndTellTheirOldDuringACall) {
    ASSERT_TRUE(handle->setTimeout({20, 0}));
    inject(Fault::Kind::DelayReply, "setup", "ping", 1, 1500);
    clnt_stat status = RPC_FAILED;
    std::thread other([&] { status = ping(); });
    board.waitFor([](const OrvaneSim::Request& request) { return request.procedure == "ping"; });
    const auto start = std::chrono::steady_clock::now();
    EXPECT_EQ(got<timeval>(CLGET_TIMEOUT).tv_sec, 20);
    EXPECT_TRUE(handle->setTimeout({0, 1}));
    EXPECT_LT(std::chrono::steady_clock::now() - start, std::chrono::seconds(1));
    other.join();
    EXPECT_EQ(status, RPC_SUCCESS); // it kept its own
    inject(Fault::Kind::Silent, "setup", "ping");
    EXPECT_EQ(ping(), RPC_TIMEDOUT);
}

TEST_P(RPCHandles, LeadToAnotherOfTheSamePortAndTimeout) {
    handle->setTimeout({7, 5});
    const std::size_t lookedUp = count("portmap_getport");
    const auto second = handle->another();
    ASSERT_NE(second, nullptr);
    EXPECT_NE(second->get(), handle->get());
    EXPECT_EQ(ping_1(12, &answer, second->get()), RPC_SUCCESS);
    EXPECT_EQ(answer, 12);
    handle = second;
    EXPECT_EQ(got<timeval>(CLGET_TIMEOUT).tv_sec, 7);
    EXPECT_EQ(count("portmap_getport"), lookedUp);
}

INSTANTIATE_TEST_SUITE_P(Transports, RPCHandles, testing::Values("udp", "tcp"));

} // namespace
} // namespace Orvane
