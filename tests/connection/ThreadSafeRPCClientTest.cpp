// The busy flag of the keep-alive client and the patience of its reset.
#include "ov_sys/Interface/connection/RPCClient.h"
#include "ov_sys/Interface/rpc_protocol/Programs.h"
#include "tests/support/OneBoard.h"
#include "tests/support/SleepingThread.h"
#include "tests/support/WrittenText.h"

#include <chrono>
#include <functional>
#include <gtest/gtest.h>
#include <memory>
#include <thread>

namespace Orvane {
namespace {

using namespace OrvaneTest;
using std::chrono::milliseconds;

constexpr const char* kBusyMessage = "Error!!! KeepAlive thread is busy. Reseting anyway...\n";

class BusyClient : public testing::Test {
protected:
    static milliseconds timeOf(const std::function<void()>& work) {
        const auto start = std::chrono::steady_clock::now();
        work();
        return std::chrono::duration_cast<milliseconds>(std::chrono::steady_clock::now() - start);
    }

    OneBoard lab;
    ThreadSafeRPCClient client{Programs::KeepAlive, Programs::Version, "udp", "keepAlive",
                               lab.board.address()};
};

TEST_F(BusyClient, IsNotBusyAtFirst) {
    EXPECT_FALSE(client.isBusy());
    EXPECT_FALSE(client.busy);
}

TEST_F(BusyClient, IsBusyUntilItIsFreed) {
    client.setBusy(true);
    EXPECT_TRUE(client.isBusy());
    client.setBusy(false);
    EXPECT_FALSE(client.isBusy());
}

TEST_F(BusyClient, ResetPrintsTheBusyMessageAfterItsPauseAndResetsAnyway) {
    client.setBusy(true);
    WrittenText written;
    const milliseconds time = timeOf([&] { written = textWritten([&] { client.reset(); }); });
    EXPECT_EQ(written.error, kBusyMessage);
    EXPECT_EQ(client.client, nullptr);
    EXPECT_GE(time, milliseconds(200));
    EXPECT_TRUE(client.isBusy());
}

TEST_F(BusyClient, ResetSaysNothingWhenFree) {
    const WrittenText written = textWritten([&] { client.reset(); });
    EXPECT_EQ(written.error, "");
    EXPECT_EQ(client.client, nullptr);
}

TEST_F(BusyClient, ResetSaysNothingWhenItIsFreedDuringThePause) {
    client.setBusy(true);
    const SleepingThread resetting;
    std::thread other([&] {
        resetting.await();
        client.setBusy(false);
    });
    const WrittenText written = textWritten([&] { client.reset(); });
    other.join();
    EXPECT_EQ(written.error, "");
    EXPECT_EQ(client.client, nullptr);
}

TEST_F(BusyClient, UpdateWaitsPrintsAndConnectsAgain) {
    client.setBusy(true);
    const WrittenText written = textWritten([&] { client.update(); });
    EXPECT_EQ(written.error, kBusyMessage);
    EXPECT_NE(client.client, nullptr);
}

TEST_F(BusyClient, IsDestroyedWithoutWaitingForIt) {
    auto other = std::make_unique<ThreadSafeRPCClient>(Programs::KeepAlive, Programs::Version, "udp",
                                                       "keepAlive", lab.board.address());
    other->setBusy(true);
    const WrittenText written = textWritten([&] { other.reset(); });
    EXPECT_EQ(written.error, "");
}

TEST_F(BusyClient, WaitOfZeroTellsAtOnceWhetherItIsFree) {
    EXPECT_TRUE(client.waitClientBusy(0));
    client.setBusy(true);
    EXPECT_FALSE(client.waitClientBusy(0));
}

TEST_F(BusyClient, WaitOfZeroDoesNotPause) {
    client.setBusy(true);
    const SleepingThread waiting;
    std::thread other([&] {
        waiting.await();
        client.setBusy(false);
    });
    const bool freed = client.waitClientBusy(0);
    std::this_thread::sleep_for(milliseconds(100)); // the pause for which the other thread waits
    other.join();
    EXPECT_FALSE(freed);
}

TEST_F(BusyClient, WaitBelowTwentyMillionEndsAfterOnePause) {
    client.setBusy(true);
    bool freed = true;
    const milliseconds time = timeOf([&] { freed = client.waitClientBusy(19999999); });
    EXPECT_FALSE(freed);
    EXPECT_GE(time, milliseconds(200));
    EXPECT_LT(time, milliseconds(10000));
}

TEST_F(BusyClient, WaitOfAFreeClientReturnsTrue) {
    EXPECT_TRUE(client.waitClientBusy(5000));
}

TEST_F(BusyClient, LongWaitEndsWhenTheClientIsFreed) {
    constexpr unsigned kFortySeconds = 4000000000U; // in hundred-thousandths of a millisecond
    client.setBusy(true);
    const SleepingThread waiting;
    std::thread other([&] {
        waiting.await();
        client.setBusy(false);
    });
    EXPECT_TRUE(client.waitClientBusy(kFortySeconds));
    other.join();
}

} // namespace
} // namespace Orvane
