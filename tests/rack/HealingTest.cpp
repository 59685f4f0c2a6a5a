// What a rack does about boards that restart, forget, move or fall silent.
#include "tests/support/rack/RackOnBoard.h"

#include <atomic>
#include <future>

namespace OrvaneTest {
namespace {

using namespace Orvane;

class RackHealing : public testing::Test, protected RackOnBoard {
protected:
    RackHealing() : RackOnBoard(Access::exclusive(0x4711)) {
        board.setRegister(Space::C45, 1, 3, 0x10002, 0x42);
        phy.read({1, 0});
    }
};

TEST_F(RackHealing, SessionThatTheBoardForgotIsOpenedAgainWithItsKey) {
    board.forgetSessions();
    EXPECT_EQ(phy.read({1, 2}), 0x42U);
    const std::vector<Request> opens = board.requestsOf("open_connection");
    ASSERT_EQ(opens.size(), 2U);
    EXPECT_EQ(opens[1].arguments(), opens[0].arguments());
    EXPECT_EQ(phy.key(), 0x4711U);
}

TEST_F(RackHealing, KeyThatTheBoardMadeUpIsBroughtAgain) {
    const Phy other = rack.open("BOARD7:2", Access::shared()).phy(4);
    other.open();
    const std::uint16_t key = other.key();
    board.forgetSessions();
    other.read({1, 0});
    EXPECT_NE(key, 0U);
    EXPECT_EQ(argumentsOf(board.requestsOf("open_connection").back()).front(), key);
}

TEST_F(RackHealing, BoardThatRestartsInPlaceIsReachedAgain) {
    board.restart(true);
    EXPECT_EQ(phy.read({1, 2}), 0x42U);
    EXPECT_TRUE(phy.isOpen());
}

TEST_F(RackHealing, BoardThatRestartsWithItsSessionsIsReachedWithoutOpening) {
    board.restart(false);
    EXPECT_EQ(phy.read({1, 2}), 0x42U);
    EXPECT_EQ(count("open_connection"), 1U);
}

TEST_F(RackHealing, BoardThatIsOffForAWhileIsReachedWhenItIsBack) {
    board.stop();
    lab.after(700ms, [this] {
        board.forgetSessions();
        board.start();
    });
    EXPECT_EQ(phy.read({1, 2}, within(20s)), 0x42U);
}

TEST_F(RackHealing, BoardThatIsOffIsUnreachableForNewCalls) {
    board.stop();
    failureOf([&] { phy.read({1, 2}, within(500ms)); });
    EXPECT_EQ(failureOf([&] { phy.read({1, 2}, within(500ms)); }).kind(), FailureKind::Unreachable);
}

TEST_F(RackHealing, WriteOfAForgottenSessionIsExecutedOnceEvenWithoutRepeats) {
    board.forgetSessions();
    phy.write({1, 5}, 9, Within{}.once());
    EXPECT_EQ(board.executions("mdio_write"), 1U);
    EXPECT_EQ(board.registerValue(Space::C45, 1, 3, 0x10005), 9U);
}

TEST_F(RackHealing, WithoutHealingALostSessionIsAClearFailure) {
    board.forgetSessions();
    for (int i = 0; i < 2; ++i) {
        const Failure failure = failureOf([&] { phy.read({1, 2}, Within{}.withoutHealing()); });
        EXPECT_EQ(failure.kind(), FailureKind::LostSession);
        EXPECT_EQ(failure.code(), -56);
    }
    Batch batch;
    batch.write({1, 2}, 3);
    EXPECT_EQ(phy.run(batch, Within{}.withoutHealing()).outcome(0).state, OperationOutcome::State::NotSent);
    EXPECT_EQ(count("open_connection"), 1U);
}

TEST_F(RackHealing, HookRestoresWhatTheBoardForgotBeforeTheCallGoesOn) {
    phy.onReopen([this] { phy.write({1, 7}, 0x77); });
    board.forgetSessions();
    board.forgetRequests();
    phy.read({1, 2});
    EXPECT_EQ(procedures(),
              (std::vector<std::string>{"mdio_read", "open_connection", "mdio_write", "mdio_read"}));
    EXPECT_EQ(board.registerValue(Space::C45, 1, 3, 0x10007), 0x77U);
}

TEST_F(RackHealing, HookIsGivenItsPhy) {
    phy.onReopen([](const Phy& reopened) { reopened.write({1, 7}, 0x70 + reopened.id()); });
    board.forgetSessions();
    phy.read({1, 2});
    EXPECT_EQ(board.registerValue(Space::C45, 1, 3, 0x10007), 0x73U);
}

TEST_F(RackHealing, BatchOfALostSessionThatMayNotHealWasNotSent) {
    Batch batch;
    batch.write({1, 2}, 3);
    board.forgetSessions();
    const BatchResult done = phy.run(batch, Within{}.withoutHealing());
    EXPECT_EQ(done.failure()->kind(), FailureKind::LostSession);
    EXPECT_EQ(done.outcome(0).state, OperationOutcome::State::NotSent);
}

TEST_F(RackHealing, RepeatsAreToldOnceForEachCall) {
    std::atomic<int> retried{0};
    std::promise<void> closed;
    rack.onEvent([&](const Event& event) {
        if (event.kind == Event::Kind::Retried && event.level == Event::Level::Debug && event.phy == 3)
            ++retried;
        if (event.kind == Event::Kind::Closed)
            closed.set_value();
    });
    inject(Fault::Kind::LoseReply, "mdio", "mdio_read", 2);
    phy.read({1, 2});
    phy.close();
    closed.get_future().wait();
    EXPECT_EQ(retried, 1);
    rack.onEvent({});
}

TEST_F(RackHealing, WhatTheHookThrowsLeavesTheCall) {
    phy.onReopen([] { throw std::runtime_error("no"); });
    board.forgetSessions();
    EXPECT_THROW(phy.read({1, 2}), std::runtime_error);
    phy.onReopen(nullptr);
    EXPECT_EQ(phy.read({1, 2}), 0x42U);
}

TEST_F(RackHealing, HookThatIsStillDueIsNotRunByTheEndOfItsSession) {
    int runs = 0;
    auto other = std::make_unique<Phy>(rack.open("BOARD7:0").phy(4));
    other->open();
    other->onReopen([&runs] {
        ++runs;
        throw std::runtime_error("no");
    });
    board.forgetSessions();
    EXPECT_THROW(other->read({1, 2}), std::runtime_error);
    other.reset(); // the hook may use it
    EXPECT_EQ(runs, 1);
    EXPECT_EQ(board.sessionCount(), 0U);
}

TEST_F(RackHealing, PortMapperThatIsGoneDoesNotDisturbAnOpenSession) {
    board.closePortMapper();
    inject(Fault::Kind::LoseReply, "mdio", "mdio_read");
    EXPECT_EQ(phy.read({1, 2}), 0x42U);
}

TEST_F(RackHealing, LostLookUpIsAskedForAgain) {
    inject(Fault::Kind::LoseReply, "portmap", "portmap_getport", 2);
    board.restart(true);
    EXPECT_EQ(phy.read({1, 2}), 0x42U);
}

TEST_F(RackHealing, PingNoticesALostSessionAndRunsItsHook) {
    Events events(rack);
    phy.onReopen([this] { phy.write({1, 7}, 0x78); });
    board.forgetSessions();
    board.waitFor([](const Request& one) { return one.procedure == "mdio_write"; });
    EXPECT_TRUE(events.waitFor(Event::Kind::Lost));
    EXPECT_TRUE(events.waitFor(Event::Kind::Reopened));
}

TEST_F(RackHealing, SessionsArePingedWhileNobodyUsesThem) {
    const Request ping = board.waitFor([](const Request& one) { return one.procedure == "pingkeepalive"; });
    EXPECT_EQ(ping.transport, "udp");
    EXPECT_EQ(argumentsOf(ping)["handle"], 1U); // ping 0 of session 1
}

TEST_F(RackHealing, LossOfOneInTwentyEachWayCostsNoValue) {
    for (const Fault::Kind kind : {Fault::Kind::LoseReply, Fault::Kind::LoseRequest}) {
        Fault loss{"mdio", "", kind, -1};
        loss.probability = 0.05;
        board.inject(loss);
    }
    for (std::uint32_t i = 0; i < 300; ++i) {
        phy.write({1, 2}, i);
        ASSERT_EQ(phy.read({1, 2}), i);
    }
    EXPECT_EQ(board.sessionCount(), 1U);
}

} // namespace
} // namespace OrvaneTest
