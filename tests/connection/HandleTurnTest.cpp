// Turns of several threads on the handle of one client.
#include "ov_sys/Interface/connection/HandleTurn.h"

#include "ov_sys/Interface/connection/RPCClient.h"
#include "ov_sys/Interface/connection/StubCall.h"
#include "ov_sys/Interface/rpc_protocol/Programs.h"
#include "ov_sys/Interface/rpc_protocol/Stubs.h"
#include "tests/support/OneBoard.h"
#include "tests/support/SleepingThread.h"

#include <functional>
#include <future>
#include <gtest/gtest.h>
#include <optional>
#include <thread>

namespace Orvane {
namespace {

using namespace OrvaneTest;

class Turns : public testing::Test, public OneBoard {
protected:
    // Runs `work` in a thread of its own and returns when that waits for a lock, or has ended.
    std::thread started(std::function<void()> work) {
        std::promise<SleepingThread> names;
        auto named = names.get_future();
        std::thread thread([&names, work = std::move(work)] {
            names.set_value(SleepingThread());
            work();
        });
        named.get().awaitLocked();
        return thread;
    }

    NormalRPCClient client{Programs::Setup, Programs::Version, "udp", "setup", board.address()};
};

TEST_F(Turns, OnAFreeHandleComeAtOnce) {
    const HandleTurn turn(client);
    EXPECT_TRUE(turn.held());
    EXPECT_FALSE(turn.waited());
    EXPECT_EQ(turn.handle(), client.pin().get());
}

TEST_F(Turns, OfAnUnconnectedClientAreOnNoHandle) {
    client.reset();
    const HandleTurn turn(client);
    EXPECT_EQ(turn.handle(), nullptr);
    EXPECT_FALSE(turn.waited());
}

TEST_F(Turns, LetTheirThreadCall) {
    const HandleTurn turn(client);
    int answer = 0;
    EXPECT_EQ(ping_1(4711, &answer, turn.handle()->get()), RPC_SUCCESS);
    EXPECT_EQ(answer, 4711);
}

TEST_F(Turns, AreWaitedForWhileAnotherThreadHasIts) {
    auto first = std::make_optional<HandleTurn>(client);
    bool waited = false;
    std::thread second = started([&] { waited = HandleTurn(client).waited(); });
    first.reset();
    second.join();
    EXPECT_TRUE(waited);
}

TEST_F(Turns, ThatWereWaitedForAreUsedByTheCall) {
    auto first = std::make_optional<HandleTurn>(client);
    clnt_stat status = RPC_FAILED;
    int answer = 0;
    std::thread second = started([&] { status = callStub(ping_1, 4711, &answer, client); });
    first.reset();
    second.join();
    EXPECT_EQ(status, RPC_SUCCESS);
    EXPECT_EQ(answer, 4711);
}

TEST_F(Turns, ThatNeedNotBeWaitedForAreTakenLaterIfAtAll) {
    auto first = std::make_optional<HandleTurn>(client);
    bool heldAtOnce = true;
    bool heldLater = false;
    std::thread second = started([&] {
        HandleTurn turn(client.pin(), std::try_to_lock);
        heldAtOnce = turn.held();
        turn.wait();
        heldLater = turn.held();
    });
    first.reset();
    second.join();
    EXPECT_FALSE(heldAtOnce);
    EXPECT_TRUE(heldLater);
}

TEST_F(Turns, ThatWereWaitedForAreOnTheHandleThatReplacedTheFirst) {
    auto first = std::make_optional<HandleTurn>(client);
    const RPCHandle* old = first->handle();
    const RPCHandle* got = nullptr;
    std::thread second = started([&] { got = HandleTurn(client).handle(); });
    client.update();
    const RPCHandle* const live = client.pin().get();
    first.reset();
    second.join();
    EXPECT_EQ(got, live);
    EXPECT_NE(got, old);
}

TEST_F(Turns, ThatWereWaitedForStayOnAHandleThatNothingReplaced) {
    auto first = std::make_optional<HandleTurn>(client);
    const RPCHandle* const old = first->handle();
    const RPCHandle* got = nullptr;
    std::thread second = started([&] { got = HandleTurn(client).handle(); });
    client.reset();
    first.reset();
    second.join();
    EXPECT_EQ(got, old);
}

} // namespace
} // namespace Orvane
