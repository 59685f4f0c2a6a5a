// What a flight's descriptor tells, and what becomes of operations that have not begun.
#include "ov_sys/rack/core/Fleet.h"

#include "ov_sys/rack/Flight.h"
#include "tests/support/rack/RackOnBoard.h"

#include <fcntl.h>
#include <future>
#include <poll.h>

namespace OrvaneTest {
namespace {

using namespace Orvane;

class RackFleet : public testing::Test, protected RackOnBoard {
protected:
    Flight flight;

    RackFleet() { phy.open(); }

    bool isReadable() const {
        pollfd entry{flight.descriptor(), POLLIN, 0};
        return poll(&entry, 1, 0) == 1;
    }
    void stepUntilQuiet() {
        do
            flight.step();
        while (isReadable());
    }
    // Holds the board's turn until it is told.
    std::thread holder(std::future<void> told) {
        std::promise<void> held;
        std::thread thread([this, &held, told = std::move(told)] {
            phy.together([&] {
                held.set_value();
                told.wait();
            });
        });
        held.get_future().wait();
        return thread;
    }
};

TEST_F(RackFleet, DescriptorTellsOfACancellationWhileItMayEndAnOperation) {
    for (const bool another : {false, true}) { // that it may end has ended by itself
        inject(Fault::Kind::DelayReply, "mdio", "mdio_read", 1, 60000);
        Cancellation cancellation;
        const Within within = Orvane::within(60s).once().cancelledBy(cancellation);
        if (another)
            flight.write(phy, {1, 1}, 1, within);
        const auto read = flight.read(phy, {1, 2}, within);
        while (flight.underWay() > 1)
            flight.waitSome();
        stepUntilQuiet();
        cancellation.cancel();
        EXPECT_TRUE(isReadable());
        flight.step();
        ASSERT_TRUE(read.failure());
        EXPECT_EQ(read.failure()->kind(), FailureKind::Cancelled);
        EXPECT_EQ(read.failure()->code(), 0);
        stepUntilQuiet();
        EXPECT_FALSE(isReadable()); // though it is still cancelled
    }
}

TEST_F(RackFleet, DescriptorIsQuietWhenNothingIsUnderWay) {
    flight.read(phy, {1, 1}).get();
    stepUntilQuiet();
    inject(Fault::Kind::DuplicateReply, "mdio", "mdio_read");
    phy.read({1, 1});
    pollfd entry{flight.descriptor(), POLLIN, 0};
    poll(&entry, 1, 100); // the second answer comes, which is nobody's, and perhaps an old alarm
    for (int i = 0; i < 3; ++i)
        flight.step();
    EXPECT_FALSE(isReadable());
}

TEST_F(RackFleet, WaitForNothingEndsAtOnce) {
    const auto begun = std::chrono::steady_clock::now();
    flight.waitSome();
    flight.wait();
    EXPECT_LT(std::chrono::steady_clock::now() - begun, 500ms);
}

TEST_F(RackFleet, OperationThatDoesNotGetItsTurnIsBusyOrCancelled) {
    std::promise<void> end;
    std::thread other = holder(end.get_future());
    Cancellation cancellation;
    cancellation.cancel();
    const auto late = flight.read(phy, {1, 1}, within(50ms));
    const auto ended = flight.read(phy, {1, 1}, within(50ms).cancelledBy(cancellation));
    flight.wait();
    end.set_value();
    other.join();
    EXPECT_EQ(late.failure()->kind(), FailureKind::Busy);
    EXPECT_EQ(ended.failure()->kind(), FailureKind::Cancelled);
    for (const auto& one : {late, ended}) {
        EXPECT_EQ(one.failure()->code(), 0);
        EXPECT_EQ(one.failure()->attempts(), 0U);
        EXPECT_EQ(one.failure()->location(), "1.0x0001");
    }
    EXPECT_EQ(count("mdio_read"), 0U);
}

TEST_F(RackFleet, WhatIsUnderWayIsNotGivenUpForAnotherThread) {
    inject(Fault::Kind::DelayReply, "mdio", "mdio_read", 1, 100);
    const auto first = flight.read(phy, {1, 1});
    flight.step();
    std::thread other([this] { phy.write({1, 5}, 7); });
    flight.wait();
    other.join();
    EXPECT_EQ(first.get(), 0U);
}

TEST_F(RackFleet, DescriptorsOfARackAreClosedInOtherPrograms) {
    const auto open = [] {
        std::vector<int> list;
        for (const auto& entry : std::filesystem::directory_iterator("/proc/self/fd"))
            list.push_back(std::stoi(entry.path().filename()));
        const auto closed = [](int one) { return fcntl(one, F_GETFD) < 0; }; // that of the folder itself
        list.erase(std::remove_if(list.begin(), list.end(), closed), list.end());
        return list;
    };
    const std::vector<int> before = open();
    Cancellation cancellation;
    Rack other;
    other.know(kBoardSerial, board.address());
    const Phy own = other.open("BOARD7:2").phy(4);
    own.adc().initialize();
    other.logTo("/dev/null");
    Flight more;
    more.read(own, {1, 2}).get();
    std::size_t seen = 0;
    for (const int one : open())
        if (const int flags = fcntl(one, F_GETFD);
            flags >= 0 && std::find(before.begin(), before.end(), one) == before.end()) {
            EXPECT_EQ(flags & FD_CLOEXEC, FD_CLOEXEC) << one;
            ++seen;
        }
    EXPECT_GE(seen, 8U);
}

} // namespace
} // namespace OrvaneTest
