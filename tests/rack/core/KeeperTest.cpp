// The rack's own thread: its pings, and how soon it tells what happens.
#include "ov_sys/rack/core/Keeper.h"

#include "tests/support/rack/RackOnBoard.h"

#include <future>

namespace OrvaneTest {
namespace {

using namespace Orvane;

class RackKeeper : public testing::Test, protected RackOnBoard {
protected:
    // The first event of a kind.
    std::future<Event> next(Event::Kind kind) {
        const auto told = std::make_shared<std::promise<Event>>();
        rack.onEvent([kind, told, done = false](const Event& event) mutable {
            if (event.kind == kind && !std::exchange(done, true))
                told->set_value(event);
        });
        return told->get_future();
    }
};

TEST_F(RackKeeper, PingThatIsNotAnsweredIsTold) {
    phy.open();
    std::future<Event> lost = next(Event::Kind::PingLost);
    board.forgetRequests();
    inject(Fault::Kind::LoseRequest, "keepAlive", "pingkeepalive", -1);
    ASSERT_EQ(lost.wait_for(20s), std::future_status::ready);
    const Event event = lost.get();
    EXPECT_EQ(event.level, Event::Level::Warning);
    EXPECT_EQ(event.board, "BOARD7");
    EXPECT_EQ(event.port, 1);
    EXPECT_EQ(event.phy, 3);
    EXPECT_EQ(event.text, "timed out");
    EXPECT_GE(count("pingkeepalive"), 2U); // it was sent again
}

TEST_F(RackKeeper, PingKeepsNobodyWaitingAndIsNotLostByThat) {
    phy.open();
    board.forgetRequests(); // a ping has opened it
    std::future<Event> lost = next(Event::Kind::PingLost);
    inject(Fault::Kind::DelayReply, "keepAlive", "pingkeepalive", -1, 60000);
    board.waitFor([](const Request& one) { return one.procedure == "pingkeepalive"; });
    const auto begun = std::chrono::steady_clock::now();
    phy.read({1, 0});
    EXPECT_LT(std::chrono::steady_clock::now() - begun, 1s);
    EXPECT_NE(lost.wait_for(0s), std::future_status::ready);
}

TEST_F(RackKeeper, EventsAreToldAtOnceAndTheEndWaitsForNoPing) {
    std::optional<Rack> other(std::in_place);
    other->know(kBoardSerial, board.address());
    std::optional<Phy> brief(other->open("BOARD7:2").phy(4));
    std::promise<void> opened;
    std::promise<void> closed;
    other->onEvent([&](const Event& event) {
        if (event.kind == Event::Kind::Opened)
            opened.set_value();
        if (event.kind == Event::Kind::Closed)
            closed.set_value();
    });
    brief->open();
    opened.get_future().wait();
    const auto begun = std::chrono::steady_clock::now(); // the first ping is in two seconds
    brief->close();
    EXPECT_EQ(closed.get_future().wait_for(10s), std::future_status::ready);
    brief.reset();
    other.reset();
    EXPECT_LT(std::chrono::steady_clock::now() - begun, 1s);
}

} // namespace
} // namespace OrvaneTest
