// Calls by datagram against a peer that the test plays itself.
#include "ov_sys/Interface/connection/DatagramTransport.h"
#include "tests/support/connection/TransportPeer.h"
#include "tests/support/NamedParam.h"
#include "tests/support/SleepingThread.h"

#include <array>
#include <cerrno>
#include <chrono>
#include <cstdarg>
#include <functional>
#include <sys/socket.h>
#include <thread>

namespace Orvane {
namespace {

using namespace OrvaneTest;
using namespace std::chrono_literals;

class DatagramCalls : public testing::Test {
protected:
    DatagramCalls() {
        const timeval patience{60, 0};
        setsockopt(sockets.peer(), SOL_SOCKET, SO_RCVTIMEO, &patience, sizeof patience);
    }

    // Makes IntegerCall(7) while the peer does `answer` after it has the request.
    clnt_stat callSeven(const std::function<void()>& answer, Deadline deadline = Deadline::after(60s)) {
        std::thread peer([&] {
            request = sockets.receiveAtPeer();
            answer();
        });
        const clnt_stat status = transport.call(seven.message, deadline, error);
        peer.join();
        return status;
    }

    SocketPair sockets{SOCK_DGRAM};
    DatagramTransport transport{sockets.own()};
    IntegerCall seven{7};
    WireBytes request;
    rpc_err error{};
};

TEST_F(DatagramCalls, SendTheCallAndDecodeItsReply) {
    EXPECT_EQ(callSeven([&] { sockets.sendFromPeer(replyTo(7, 42)); }), RPC_SUCCESS);
    EXPECT_EQ(request, requestOfCallSeven());
    EXPECT_EQ(seven.result, 42);
    EXPECT_EQ(error.re_status, RPC_SUCCESS);
}

TEST_F(DatagramCalls, ThatCannotBeSentSaySoAtOnce) {
    shutdown(sockets.own(), SHUT_WR);
    const auto start = Deadline::Clock::now();
    EXPECT_EQ(transport.call(seven.message, Deadline::after(std::chrono::minutes(1)), error), RPC_CANTSEND);
    EXPECT_EQ(error.re_errno, EPIPE);
    EXPECT_LT(Deadline::Clock::now() - start, std::chrono::seconds(30));
}

TEST_F(DatagramCalls, PassOverEveryDatagramThatIsNotTheirOwn) {
    EXPECT_EQ(callSeven([&] {
                  for (const WireBytes& stray :
                       {WireBytes{}, wire("00"), wire("0000"), wire("000000"), replyTo(6, 1), replyTo(8, 1),
                        wire("07000000 00000001"), WireBytes(8800, 0xEE)})
                      sockets.sendFromPeer(stray);
                  sockets.sendFromPeer(replyTo(7, 42));
              }),
              RPC_SUCCESS);
    EXPECT_EQ(seven.result, 42);
}

TEST_F(DatagramCalls, ThrowAwayWhatCameBeforeTheirRequest) {
    errno = EAGAIN; // as a call before may leave it
    sockets.sendFromPeer({});
    sockets.sendFromPeer(replyTo(7, 13)); // as of an earlier round of the ids
    EXPECT_EQ(callSeven([&] { sockets.sendFromPeer(replyTo(7, 42)); }), RPC_SUCCESS);
    EXPECT_EQ(seven.result, 42);
}

TEST_F(DatagramCalls, WaitForRoomToSend) {
    while (send(sockets.own(), "", 1, MSG_DONTWAIT) > 0)
        continue;
    const SleepingThread calling;
    std::thread peer([&] {
        calling.awaitPolling();
        do
            request = sockets.receiveAtPeer();
        while (request.size() == 1);
        sockets.sendFromPeer(replyTo(7, 42));
    });
    EXPECT_EQ(transport.call(seven.message, Deadline::after(20s), error), RPC_SUCCESS);
    peer.join();
    EXPECT_EQ(request, requestOfCallSeven());
}

TEST_F(DatagramCalls, WithoutRoomToSendEndAtTheDeadline) {
    while (send(sockets.own(), "", 1, MSG_DONTWAIT) > 0)
        continue;
    EXPECT_EQ(transport.call(seven.message, Deadline::after(10ms), error), RPC_CANTSEND);
}

// Of a reply that fills a datagram: what stands behind the header.
using WholeResult = std::array<unsigned char, DatagramTransport::kLargest - 24>;

bool_t decodeWhole(XDR* stream, ...) {
    va_list arguments;
    va_start(arguments, stream);
    auto* const result = va_arg(arguments, WholeResult*);
    va_end(arguments);
    return xdr_opaque(stream, reinterpret_cast<char*>(result->data()), sizeof *result);
}

TEST_F(DatagramCalls, TakeAReplyAsLargeAsTheirBufferToItsLastByte) {
    WholeResult result{};
    const CallMessage message(7, {1, 2, 3}, xdrNothing, nullptr, decodeWhole, &result);
    std::thread peer([&] {
        sockets.receiveAtPeer();
        WireBytes reply = replyTo(7, 0);
        reply.resize(DatagramTransport::kLargest, 0xEE);
        reply.back() = 0x55;
        sockets.sendFromPeer(reply);
    });
    EXPECT_EQ(transport.call(message, Deadline::after(60s), error), RPC_SUCCESS);
    peer.join();
    EXPECT_EQ(result.back(), 0x55);
}

// An argument of no bytes; while it is encoded, a foreign datagram arrives.
bool_t arriveBeside(XDR* stream, ...) {
    va_list arguments;
    va_start(arguments, stream);
    va_arg(arguments, const SocketPair*)->sendFromPeer(replyTo(6, 1));
    va_end(arguments);
    return TRUE;
}

TEST_F(DatagramCalls, WithoutTimeLeftDoNotWaitBehindAForeignDatagram) {
    const CallMessage message(7, {1, 2, 3}, arriveBeside, &sockets, xdrNothing, nullptr);
    EXPECT_EQ(transport.call(message, Deadline::after(0ms), error), RPC_TIMEDOUT);
    EXPECT_EQ(error.re_status, RPC_TIMEDOUT);
    EXPECT_EQ(error.re_errno, ETIMEDOUT);
}

TEST_F(DatagramCalls, AreSentAgainAfterFifteenSeconds) {
    const auto answerTheSecond = [&] {
        request = sockets.receiveAtPeer();
        sockets.sendFromPeer(replyTo(7, 42));
    };
    EXPECT_EQ(callSeven(answerTheSecond), RPC_SUCCESS);
    EXPECT_EQ(request, requestOfCallSeven());
    EXPECT_EQ(seven.result, 42);
}

TEST_F(DatagramCalls, AreAlwaysOfUse) {
    EXPECT_TRUE(transport.isUsable());
}

TEST_F(DatagramCalls, ThatAreAnsweredWithTheirIdAloneCannotBeDecoded) {
    EXPECT_EQ(callSeven([&] { sockets.sendFromPeer(wire("00000007")); }), RPC_CANTDECODERES);
}

TEST_F(DatagramCalls, EndAtTheDeadlineThoughForeignDatagramsKeepComing) {
    const std::function<void()> flood = [&] {
        for (int i = 0; i < 20000; ++i) {
            const WireBytes stray = replyTo(6, 1);
            if (send(sockets.peer(), stray.data(), stray.size(), MSG_NOSIGNAL | MSG_DONTWAIT) < 0 &&
                errno != EAGAIN)
                return;
        }
    };
    EXPECT_EQ(callSeven(flood, Deadline::after(20ms)), RPC_TIMEDOUT);
    EXPECT_EQ(error.re_errno, ETIMEDOUT);
    EXPECT_EQ(seven.result, -1);
}

TEST_F(DatagramCalls, WhoseReplyIsLongerThanABufferCannotBeDecodedWhenTheCutHitsTheResult) {
    WireBytes cut = replyTo(7, 42);
    cut.resize(cut.size() - 1);
    EXPECT_EQ(callSeven([&] { sockets.sendFromPeer(cut); }), RPC_CANTDECODERES);
}

TEST_F(DatagramCalls, TakeAReplyWithTrailingBytes) {
    WireBytes longer = replyTo(7, 42);
    longer.resize(9000, 0xEE);
    EXPECT_EQ(callSeven([&] { sockets.sendFromPeer(longer); }), RPC_SUCCESS);
    EXPECT_EQ(seven.result, 42);
}

TEST_F(DatagramCalls, WithAnArgumentBeyondADatagramAreNotSent) {
    OpaqueCall large(DatagramTransport::kLargest);
    EXPECT_EQ(transport.call(large.message, Deadline::after(60s), error), RPC_CANTENCODEARGS);
    EXPECT_EQ(error.re_status, RPC_CANTENCODEARGS);
    char waste = 0;
    EXPECT_EQ(recv(sockets.peer(), &waste, 1, MSG_DONTWAIT), -1);
}

struct RefusedReply {
    const char* name;
    const char* reply; // after the id and REPLY
    clnt_stat status;
};

class RefusedCall : public DatagramCalls, public testing::WithParamInterface<RefusedReply> {};

TEST_P(RefusedCall, SaysHow) {
    WireBytes reply = wire("00000007 00000001");
    append(reply, wire(GetParam().reply));
    EXPECT_EQ(callSeven([&] { sockets.sendFromPeer(reply); }), GetParam().status);
    EXPECT_EQ(error.re_status, GetParam().status);
    EXPECT_EQ(seven.result, -1);
}

INSTANTIATE_TEST_SUITE_P(
    Replies, RefusedCall,
    testing::Values(RefusedReply{"UnknownProgram", "00000000 00000000 00000000 00000001", RPC_PROGUNAVAIL},
                    RefusedReply{"OtherVersion", "00000000 00000000 00000000 00000002 00000003 00000004",
                                 RPC_PROGVERSMISMATCH},
                    RefusedReply{"UnknownProcedure", "00000000 00000000 00000000 00000003", RPC_PROCUNAVAIL},
                    RefusedReply{"UndecodableArgument", "00000000 00000000 00000000 00000004",
                                 RPC_CANTDECODEARGS},
                    RefusedReply{"SystemError", "00000000 00000000 00000000 00000005", RPC_SYSTEMERROR},
                    RefusedReply{"VerifierWithoutResult", "00000000 00000001 00000004 01020304 00000005",
                                 RPC_SYSTEMERROR},
                    RefusedReply{"OtherRpcVersion", "00000001 00000000 00000007 ffffffff", RPC_VERSMISMATCH},
                    RefusedReply{"BadCredentials", "00000001 00000001 00000001", RPC_AUTHERROR},
                    RefusedReply{"HugeVerifier", "00000000 00000000 7fffffff 00000000", RPC_CANTDECODERES},
                    RefusedReply{"VerifierCutOff", "00000000 00000001 00000190 01020304", RPC_CANTDECODERES},
                    RefusedReply{"NothingMore", "", RPC_CANTDECODERES}),
    NamedParam());

} // namespace
} // namespace Orvane
