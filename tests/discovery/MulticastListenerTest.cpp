// The multicast resolver's listener thread and its queue of replies.
#include "ov_sys/Interface/discovery/BoardFinder.h"
#include "ov_sys/Interface/discovery/MulticastBoardResolver.h"
#include "ov_sys/Interface/foundation/FileDescriptor.h"
#include "tests/support/discovery/FailingAllocation.h"
#include "tests/support/discovery/Group.h"
#include "tests/support/discovery/Limits.h"
#include "tests/support/NoMoreThreads.h"
#include "tests/support/NoStandardInput.h"
#include "tests/support/WrittenText.h"

#include <arpa/inet.h>
#include <chrono>
#include <csignal>
#include <gtest/gtest.h>
#include <pthread.h>
#include <sys/socket.h>
#include <system_error>
#include <unistd.h>
#include <utility>

namespace Orvane {
namespace {

using namespace std::chrono_literals;

using OrvaneTest::kGroup;
using OrvaneTest::kGroupPort;
using Records = std::vector<AddressResponse>;

// Sends one datagram from 127.0.0.`sender` to the port that the listener is bound to.
void sendReply(const std::string& text, int sender = 1) {
    const Orvane::FileDescriptor socket(::socket(AF_INET, SOCK_DGRAM, 0));
    sockaddr_in from{};
    from.sin_family = AF_INET;
    from.sin_addr.s_addr = htonl(0x7F000000U + static_cast<unsigned>(sender));
    ASSERT_EQ(bind(socket.get(), reinterpret_cast<const sockaddr*>(&from), sizeof from), 0);
    sockaddr_in to = from;
    to.sin_port = htons(kGroupPort);
    to.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    ASSERT_EQ(
        sendto(socket.get(), text.data(), text.size(), 0, reinterpret_cast<const sockaddr*>(&to), sizeof to),
        static_cast<ssize_t>(text.size()));
}

// Fetches replies until there are `count`, or for ten seconds.
Records awaitReplies(MulticastBoardResolver& resolver, std::size_t count) {
    Records replies;
    for (const auto end = std::chrono::steady_clock::now() + 10s;
         replies.size() < count && std::chrono::steady_clock::now() < end; std::this_thread::sleep_for(1ms))
        resolver.GetReplies(replies);
    return replies;
}

// A resolver whose listener runs for the length of the test.
class MulticastListener : public testing::Test {
protected:
    MulticastListener() : resolver(kGroup, kGroupPort) { resolver.startListener(); }
    ~MulticastListener() override {
        if (resolver.listener.joinable())
            resolver.stopListener();
    }

    MulticastBoardResolver resolver;
};

TEST_F(MulticastListener, QueuesTextAndSenderInTheOrderOfArrival) {
    sendReply("|Board-7", 5);
    sendReply("evb|Board-8", 6);
    EXPECT_EQ(awaitReplies(resolver, 2), (Records{{"|Board-7", "127.0.0.5"}, {"evb|Board-8", "127.0.0.6"}}));
}

TEST_F(MulticastListener, QueuesTheSameReplyAsOftenAsItCame) {
    sendReply("|b", 5);
    sendReply("|b", 5);
    EXPECT_EQ(awaitReplies(resolver, 2), (Records{{"|b", "127.0.0.5"}, {"|b", "127.0.0.5"}}));
}

TEST_F(MulticastListener, DropsAndCountsWhatComesWhile4096RepliesWait) {
    const std::uint64_t before = BoardFinder::dropped().excess;
    for (int i = 0; i < 4095; ++i)
        resolver.PushReply("|b", "10.83.0.1");
    sendReply("|last");
    sendReply("|late");
    for (const auto end = std::chrono::steady_clock::now() + 10s;
         BoardFinder::dropped().excess == before && std::chrono::steady_clock::now() < end;)
        std::this_thread::sleep_for(1ms);
    EXPECT_EQ(BoardFinder::dropped().excess, before + 1);
    Records replies;
    resolver.GetReplies(replies);
    EXPECT_EQ(replies.size(), 4096U);
    EXPECT_EQ(replies.back().name, "|last");
}

TEST_F(MulticastListener, KeepsThe255FirstBytesOfALongerDatagram) {
    sendReply(std::string(255, 'a') + std::string(45, 'b'));
    sendReply("next");
    EXPECT_EQ(awaitReplies(resolver, 2),
              (Records{{std::string(255, 'a'), "127.0.0.1"}, {"next", "127.0.0.1"}}));
}

TEST_F(MulticastListener, EndsTheTextAtANul) {
    sendReply(std::string("ab\0cd", 5));
    EXPECT_EQ(awaitReplies(resolver, 1), (Records{{"ab", "127.0.0.1"}}));
}

TEST_F(MulticastListener, QueuesAnEmptyDatagramAsEmptyText) {
    sendReply("", 9);
    EXPECT_EQ(awaitReplies(resolver, 1), (Records{{"", "127.0.0.9"}}));
}

TEST_F(MulticastListener, KeepsTheLatestSenderInTheLocalAddress) {
    sendReply("a", 5);
    awaitReplies(resolver, 1);
    resolver.stopListener();
    EXPECT_EQ(resolver.localAddress.sin_addr.s_addr, inet_addr("127.0.0.5"));
}

TEST_F(MulticastListener, DoesNotHearTheHostsOwnRequests) {
    ASSERT_EQ(resolver.send("ZRDISCOVER?"), 0);
    sendReply("a reply");
    EXPECT_EQ(awaitReplies(resolver, 1), (Records{{"a reply", "127.0.0.1"}}));
}

TEST_F(MulticastListener, IsNotStartedASecondTime) {
    const std::thread::id running = resolver.listener.get_id();
    const std::string lines = OrvaneTest::textWritten([this] { resolver.startListener(); }).error;
    EXPECT_EQ(lines, "MulticastBoardResolver: Listen thread is active\n");
    EXPECT_EQ(resolver.listener.get_id(), running);
}

TEST_F(MulticastListener, ThrowsTheJoinErrorAtASecondStop) {
    resolver.stopListener();
    std::error_code thrown;
    try {
        resolver.stopListener();
    } catch (const std::system_error& problem) {
        thrown = problem.code();
    }
    EXPECT_EQ(thrown, std::make_error_code(std::errc::invalid_argument));
}

TEST_F(MulticastListener, HearsAgainAfterAStopAndASecondStart) {
    resolver.stopListener();
    EXPECT_FALSE(resolver.listening);
    resolver.startListener();
    EXPECT_TRUE(resolver.listening);
    sendReply("again");
    EXPECT_EQ(awaitReplies(resolver, 1), (Records{{"again", "127.0.0.1"}}));
}

TEST_F(MulticastListener, GoesOnAfterASignal) {
    struct sigaction before {};
    struct sigaction handle {};
    handle.sa_handler = [](int) {};
    sigaction(SIGUSR1, &handle, &before);
    testing::internal::CaptureStderr();
    for (int i = 0; i < 200; ++i) {
        pthread_kill(resolver.listener.native_handle(), SIGUSR1);
        std::this_thread::sleep_for(100us);
    }
    sendReply("heard");
    EXPECT_EQ(awaitReplies(resolver, 1), (Records{{"heard", "127.0.0.1"}}));
    EXPECT_EQ(testing::internal::GetCapturedStderr(), "");
    sigaction(SIGUSR1, &before, nullptr);
}

TEST_F(MulticastListener, CanBeStartedOnceThereAreThreadsAgain) {
    resolver.stopListener();
    {
        const OrvaneTest::NoMoreThreads full;
        EXPECT_THROW(resolver.startListener(), std::system_error);
    }
    EXPECT_FALSE(resolver.listening);
    resolver.startListener();
    sendReply("heard");
    EXPECT_EQ(awaitReplies(resolver, 1), (Records{{"heard", "127.0.0.1"}}));
}

// What the listener thread writes before it ends by itself, given this socket.
std::string linesOfAListenerOn(MulticastBoardResolver& resolver, int socket) {
    FileDescriptor(std::exchange(resolver.listenSocket, socket)).reset();
    return OrvaneTest::textWritten([&] {
               resolver.startListener();
               resolver.listener.join();
           })
        .error;
}

TEST(MulticastListenerFailure, EndsTheThreadButNotTheFlagWhenThereIsNoSocket) {
    MulticastBoardResolver resolver(kGroup, kGroupPort);
    EXPECT_EQ(linesOfAListenerOn(resolver, -1), "MulticastBoardResolver: thread listening returned error\n");
    EXPECT_TRUE(resolver.listening);
}

TEST(MulticastListenerFailure, EndsTheThreadWhenTheSocketIsClosed) {
    constexpr int notOpen = 900;
    MulticastBoardResolver resolver(kGroup, kGroupPort);
    EXPECT_EQ(linesOfAListenerOn(resolver, notOpen),
              "MulticastBoardResolver: thread listening returned error\n");
}

TEST(MulticastListenerFailure, EndsTheThreadWhenTheReceiveFails) {
    MulticastBoardResolver resolver(kGroup, kGroupPort);
    int ends[2] = {-1, -1};
    ASSERT_EQ(pipe(ends), 0); // readable, but no socket
    ASSERT_EQ(write(ends[1], "x", 1), 1);
    const FileDescriptor farEnd(ends[1]);
    EXPECT_EQ(linesOfAListenerOn(resolver, ends[0]), "MulticastBoardResolver: recvfrom error\n");
}

TEST(MulticastListenerFailure, IsStoppedNormallyAfterTheThreadEndedByItself) {
    MulticastBoardResolver resolver(kGroup, kGroupPort);
    FileDescriptor(std::exchange(resolver.listenSocket, -1)).reset();
    OrvaneTest::textWritten([&] {
        resolver.startListener();
        EXPECT_NO_THROW(resolver.stopListener());
    });
    EXPECT_FALSE(resolver.listening);
    EXPECT_FALSE(resolver.listener.joinable());
}

TEST(MulticastListenerSocket, MayBe1024OrMore) {
    const OrvaneTest::LargeDescriptors large;
    MulticastBoardResolver resolver(kGroup, kGroupPort);
    ASSERT_GE(resolver.listenSocket, 1024);
    resolver.startListener();
    sendReply("heard");
    EXPECT_EQ(awaitReplies(resolver, 1), (Records{{"heard", "127.0.0.1"}}));
    resolver.stopListener();
}

TEST(MulticastListenerSocket, MayBe0) {
    const OrvaneTest::NoStandardInput closed;
    MulticastBoardResolver resolver(kGroup, kGroupPort);
    ASSERT_EQ(resolver.listenSocket, 0);
    resolver.startListener();
    sendReply("heard");
    EXPECT_EQ(awaitReplies(resolver, 1), (Records{{"heard", "127.0.0.1"}}));
    resolver.stopListener();
}

TEST(Listen, ReturnsAtOnceWhenItsFlagIsFalse) {
    MulticastBoardResolver resolver(kGroup, kGroupPort);
    sendReply("not read");
    resolver.listen(std::atomic<bool>(false));
    EXPECT_EQ(resolver.replies, Records{});
}

TEST(Listen, DropsAndCountsAReplyWithoutMemoryForItAndGoesOn) {
    MulticastBoardResolver resolver(kGroup, kGroupPort);
    const auto excess = BoardFinder::dropped().excess;
    std::atomic<bool> flag{true};
    sendReply("dropped");
    sendReply("heard");
    std::thread listener([&] {
        OrvaneTest::failNextAllocationOf(sizeof(AddressResponse)); // the queue's first
        resolver.listen(flag);
    });
    EXPECT_EQ(awaitReplies(resolver, 1), (Records{{"heard", "127.0.0.1"}}));
    flag = false;
    listener.join();
    EXPECT_EQ(BoardFinder::dropped().excess - excess, 1U);
}

TEST(GetReplies, AppendsInOrderAndEmptiesTheQueue) {
    MulticastBoardResolver resolver(kGroup, kGroupPort);
    resolver.PushReply("first", "10.0.0.1");
    resolver.PushReply("first", "10.0.0.1");
    resolver.PushReply("second", "10.0.0.2");
    Records out = {{"earlier", ""}};
    resolver.GetReplies(out);
    EXPECT_EQ(
        out,
        (Records{{"earlier", ""}, {"first", "10.0.0.1"}, {"first", "10.0.0.1"}, {"second", "10.0.0.2"}}));
    EXPECT_EQ(resolver.replies, Records{});
}

TEST(GetReplies, LosesNothingThatAnotherThreadPushes) {
    constexpr std::size_t count = 2000;
    MulticastBoardResolver resolver(kGroup, kGroupPort);
    std::thread pusher([&resolver] {
        for (std::size_t i = 0; i < count; ++i)
            resolver.PushReply(std::to_string(i), "10.0.0.1");
    });
    Records out;
    while (out.size() < count)
        resolver.GetReplies(out);
    pusher.join();
    ASSERT_EQ(out.size(), count);
    for (std::size_t i = 0; i < count; ++i)
        EXPECT_EQ(out[i].name, std::to_string(i));
}

} // namespace
} // namespace Orvane
