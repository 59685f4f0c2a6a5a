// Calls on a stream against a peer that the test plays itself.
#include "ov_sys/Interface/connection/StreamTransport.h"
#include "tests/support/allocations/AllocationFailure.h"
#include "tests/support/connection/TransportPeer.h"
#include "tests/support/SleepingThread.h"

#include <atomic>
#include <cerrno>
#include <thread>

namespace Orvane {
namespace {

using namespace OrvaneTest;
using namespace std::chrono_literals;

// One fragment, the last of its record unless said otherwise.
WireBytes fragment(const WireBytes& bytes, bool last = true) {
    WireBytes marked;
    appendWord(marked, (last ? 0x80000000U : 0U) | static_cast<unsigned>(bytes.size()));
    append(marked, bytes);
    return marked;
}

WireBytes part(const WireBytes& bytes, std::size_t from, std::size_t to) {
    return {bytes.begin() + static_cast<std::ptrdiff_t>(from),
            bytes.begin() + static_cast<std::ptrdiff_t>(to)};
}

class StreamCalls : public testing::Test {
protected:
    // A stream keeps what comes early, so that the peer may answer before it is asked.
    clnt_stat call(IntegerCall& one, Deadline::Clock::duration wait = 60s) {
        return transport.call(one.message, Deadline::after(wait), error);
    }

    SocketPair sockets{SOCK_STREAM};
    StreamTransport transport{sockets.own()};
    IntegerCall seven{7};
    IntegerCall eight{8};
    rpc_err error{};
};

TEST_F(StreamCalls, SendTheCallAsOneFragmentAndDecodeItsReply) {
    sockets.sendFromPeer(fragment(replyTo(7, 42)));
    EXPECT_EQ(call(seven), RPC_SUCCESS);
    EXPECT_EQ(seven.result, 42);
    EXPECT_EQ(sockets.receiveAtPeer(), fragment(requestOfCallSeven()));
}

TEST_F(StreamCalls, NeedNoArgument) {
    sockets.sendFromPeer(fragment(replyTo(7, 42)));
    int result = 0;
    const CallMessage message(7, {1, 2, 3}, xdrNothing, nullptr, xdrProcedure<int>, &result);
    EXPECT_EQ(transport.call(message, Deadline::after(60s), error), RPC_SUCCESS);
    EXPECT_EQ(result, 42);
    EXPECT_EQ(sockets.receiveAtPeer(), fragment(part(requestOfCallSeven(), 0, 40)));
}

TEST_F(StreamCalls, TakeAReplyInFragmentsAnEmptyLastOneIncluded) {
    const WireBytes reply = replyTo(7, 42);
    sockets.sendFromPeer(fragment(part(reply, 0, 3), false));
    sockets.sendFromPeer(fragment(part(reply, 3, reply.size()), false));
    sockets.sendFromPeer(fragment({}));
    EXPECT_EQ(call(seven), RPC_SUCCESS);
    EXPECT_EQ(seven.result, 42);
}

TEST_F(StreamCalls, PassOverRecordsThatAreNotTheirOwn) {
    for (const WireBytes& stray : {replyTo(6, 1), WireBytes{}, wire("000000"), replyTo(9, 1)})
        sockets.sendFromPeer(fragment(stray));
    sockets.sendFromPeer(fragment(replyTo(7, 42)));
    EXPECT_EQ(call(seven), RPC_SUCCESS);
    EXPECT_EQ(seven.result, 42);
}

TEST_F(StreamCalls, GoOnAfterAReplyThatCameTooLate) {
    EXPECT_EQ(call(seven, 1ms), RPC_TIMEDOUT);
    sockets.sendFromPeer(fragment(replyTo(7, 42)));
    sockets.sendFromPeer(fragment(replyTo(8, 43)));
    EXPECT_EQ(call(eight), RPC_SUCCESS);
    EXPECT_EQ(eight.result, 43);
}

// Wherever the late reply was interrupted.
TEST_F(StreamCalls, GoOnInTheMiddleOfARecordThatWasGivenUp) {
    const WireBytes late = fragment(replyTo(7, 42));
    for (std::size_t cut = 1; cut < late.size(); ++cut) {
        sockets.sendFromPeer(part(late, 0, cut));
        EXPECT_EQ(call(seven, 1ms), RPC_TIMEDOUT) << cut;
        sockets.sendFromPeer(part(late, cut, late.size()));
        sockets.sendFromPeer(fragment(replyTo(8, static_cast<unsigned>(cut))));
        EXPECT_EQ(call(eight), RPC_SUCCESS) << cut;
        EXPECT_EQ(eight.result, static_cast<int>(cut));
    }
}

// The length of a fragment has 31 bits.
TEST_F(StreamCalls, WaitForTheAnnouncedEndOfAFragmentBeyondAGigabyte) {
    WireBytes reply = fragment(replyTo(7, 42));
    reply[0] = 0xC0;
    sockets.sendFromPeer(reply);
    EXPECT_EQ(call(seven, 50ms), RPC_TIMEDOUT);
}

TEST_F(StreamCalls, EndAtTheDeadlineThoughTheReplyTricklesIn) {
    std::atomic<bool> done{false};
    std::thread peer([&] {
        const WireBytes endless = fragment(WireBytes(1U << 20U, 1));
        for (std::size_t i = 0; i < endless.size() && !done; ++i) {
            send(sockets.peer(), &endless[i], 1, MSG_NOSIGNAL);
            std::this_thread::sleep_for(1ms);
        }
    });
    EXPECT_EQ(call(seven, 50ms), RPC_TIMEDOUT);
    done = true;
    peer.join();
}

TEST_F(StreamCalls, EndAtTheDeadlineWhenThePeerDoesNotReadAndTheStreamIsOfNoMoreUse) {
    OpaqueCall large(16U << 20U);
    EXPECT_EQ(transport.call(large.message, Deadline::after(10ms), error), RPC_CANTSEND);
    EXPECT_EQ(error.re_errno, ETIMEDOUT);
    EXPECT_EQ(call(seven), RPC_CANTSEND);
    EXPECT_EQ(error.re_errno, EPIPE);
}

TEST_F(StreamCalls, WaitForRoomToSend) {
    OpaqueCall large(1U << 20U);
    const SleepingThread calling;
    std::thread peer([&] {
        calling.awaitPolling();
        for (std::size_t left = sizeof(std::uint32_t) + large.message.size(); left > 0 && !HasFailure();)
            left -= sockets.receiveAtPeer().size();
        sockets.sendFromPeer(fragment(replyTo(1, 0)));
    });
    EXPECT_EQ(transport.call(large.message, Deadline::after(20s), error), RPC_SUCCESS);
    shutdown(sockets.own(), SHUT_RDWR); // frees the peer
    peer.join();
}

TEST_F(StreamCalls, OfWhichNothingWasSentByTheDeadlineLeaveTheStreamOfUse) {
    const WireBytes earlier(65536, 1);
    while (send(sockets.own(), earlier.data(), earlier.size(), MSG_DONTWAIT) > 0)
        continue;
    EXPECT_EQ(call(seven, 10ms), RPC_CANTSEND);
    EXPECT_EQ(error.re_errno, ETIMEDOUT);
    EXPECT_TRUE(transport.isUsable());
}

TEST_F(StreamCalls, OnAStreamThatThePeerClosedCannotReceiveAndThenCannotSend) {
    std::thread peer([&] {
        sockets.receiveAtPeer();
        sockets.closePeer();
    });
    EXPECT_EQ(call(seven), RPC_CANTRECV);
    EXPECT_EQ(error.re_errno, ECONNRESET);
    peer.join();
    EXPECT_EQ(call(eight), RPC_CANTSEND);
}

TEST_F(StreamCalls, OnAStreamThatThePeerResetCannotReceive) {
    std::thread peer([&] {
        char first = 0;
        recv(sockets.peer(), &first, 1, MSG_PEEK);
        sockets.closePeer(); // with what it has not read
    });
    EXPECT_EQ(call(seven), RPC_CANTRECV);
    EXPECT_EQ(error.re_errno, ECONNRESET);
    peer.join();
    EXPECT_FALSE(transport.isUsable());
}

TEST_F(StreamCalls, OnAClosedStreamRaiseNoSignal) {
    sockets.closePeer();
    EXPECT_EQ(call(seven), RPC_CANTSEND); // a signal would have ended the process
    EXPECT_EQ(error.re_errno, EPIPE);
}

TEST_F(StreamCalls, TakeEmptyFragmentsAnywhereInARecord) {
    const WireBytes reply = replyTo(7, 42);
    sockets.sendFromPeer(fragment({}, false));
    sockets.sendFromPeer(fragment(part(reply, 0, 8), false));
    sockets.sendFromPeer(fragment({}, false));
    sockets.sendFromPeer(fragment({}, false));
    sockets.sendFromPeer(fragment(part(reply, 8, reply.size())));
    EXPECT_EQ(call(seven), RPC_SUCCESS);
    EXPECT_EQ(seven.result, 42);
}

TEST_F(StreamCalls, EndAtTheDeadlineInAFloodOfEmptyFragmentsAndLeaveTheResultAlone) {
    std::atomic<bool> done{false};
    std::thread peer([&] {
        const WireBytes zeros(65536, 0);
        while (!done && send(sockets.peer(), zeros.data(), zeros.size(), MSG_NOSIGNAL) > 0)
            continue;
    });
    EXPECT_EQ(call(seven, 50ms), RPC_TIMEDOUT);
    EXPECT_EQ(seven.result, -1);
    done = true;
    shutdown(sockets.own(), SHUT_RDWR); // frees the peer
    peer.join();
}

TEST_F(StreamCalls, AreOfUseUntilThePeerClosesThoughMoreIsThereToBeRead) {
    EXPECT_TRUE(transport.isUsable());
    sockets.sendFromPeer(fragment(replyTo(6, 1)));
    EXPECT_TRUE(transport.isUsable());
    sockets.closePeer();
    EXPECT_FALSE(transport.isUsable());
}

TEST_F(StreamCalls, AreOfNoMoreUseAfterARequestThatWasSentInPart) {
    OpaqueCall large(16U << 20U);
    transport.call(large.message, Deadline::after(10ms), error);
    EXPECT_FALSE(transport.isUsable());
}

TEST_F(StreamCalls, WithAShortReplyCannotDecodeAndGoOn) {
    WireBytes shorter = replyTo(7, 42);
    shorter.pop_back();
    sockets.sendFromPeer(fragment(shorter));
    sockets.sendFromPeer(fragment(replyTo(8, 43)));
    EXPECT_EQ(call(seven), RPC_CANTDECODERES);
    EXPECT_EQ(call(eight), RPC_SUCCESS);
    EXPECT_EQ(eight.result, 43);
}

TEST_F(StreamCalls, TakeARecordOf64MiBAndNoByteMore) {
    std::thread peer([&] {
        for (const WireBytes& record : {WireBytes(StreamTransport::kLargest, 1), replyTo(7, 42),
                                        WireBytes(StreamTransport::kLargest + 1, 1)}) {
            const WireBytes marked = fragment(record);
            for (std::size_t done = 0; done < marked.size();) {
                const ssize_t part =
                    send(sockets.peer(), marked.data() + done, marked.size() - done, MSG_NOSIGNAL);
                if (part <= 0)
                    return;
                done += static_cast<std::size_t>(part);
            }
        }
    });
    EXPECT_EQ(call(seven), RPC_SUCCESS);
    EXPECT_EQ(seven.result, 42);
    EXPECT_EQ(call(eight), RPC_CANTDECODERES);
    EXPECT_EQ(error.re_errno, EMSGSIZE);
    shutdown(sockets.own(), SHUT_RDWR); // frees the peer
    peer.join();
}

TEST_F(StreamCalls, WithoutMemoryForTheRequestSendNothing) {
    if (!AllocationFailure::reachesMalloc())
        GTEST_SKIP() << "a sanitizer's allocator does not fail";
    clnt_stat status = RPC_SUCCESS;
    {
        const AllocationFailure request(0);
        status = call(seven);
        EXPECT_TRUE(request.happened());
    }
    EXPECT_EQ(status, RPC_CANTENCODEARGS);
    EXPECT_EQ(error.re_status, RPC_CANTENCODEARGS);
    EXPECT_EQ(error.re_errno, ENOMEM);
    sockets.sendFromPeer(fragment(replyTo(7, 42)));
    EXPECT_EQ(call(seven), RPC_SUCCESS);
    EXPECT_EQ(sockets.receiveAtPeer(), fragment(requestOfCallSeven()));
}

TEST_F(StreamCalls, WithoutMemoryForTheReplyCannotDecodeAndGoOn) {
    if (!AllocationFailure::reachesMalloc())
        GTEST_SKIP() << "a sanitizer's allocator does not fail";
    sockets.sendFromPeer(fragment(replyTo(7, 42)));
    clnt_stat status = RPC_SUCCESS;
    {
        const AllocationFailure reply(1);
        status = call(seven);
        EXPECT_TRUE(reply.happened());
    }
    EXPECT_EQ(status, RPC_CANTDECODERES);
    EXPECT_EQ(error.re_errno, ENOMEM);
    sockets.sendFromPeer(fragment(replyTo(8, 43)));
    EXPECT_EQ(call(eight), RPC_SUCCESS);
    EXPECT_EQ(eight.result, 43);
}

TEST_F(StreamCalls, RefuseARecordWithoutEnd) {
    std::thread peer([&] {
        const WireBytes large = fragment(WireBytes(1U << 20U, 1), false);
        for (std::size_t sent = 0; sent <= StreamTransport::kLargest; sent += 1U << 20U)
            if (send(sockets.peer(), large.data(), large.size(), MSG_NOSIGNAL) < 0)
                return;
    });
    EXPECT_EQ(call(seven), RPC_CANTDECODERES);
    EXPECT_EQ(error.re_errno, EMSGSIZE);
    shutdown(sockets.own(), SHUT_RDWR); // frees the peer
    peer.join();
}

} // namespace
} // namespace Orvane
