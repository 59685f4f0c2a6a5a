// Opening and closing of sessions.
#include "tests/support/rack/RackOnBoard.h"

namespace OrvaneTest {
namespace {

using namespace Orvane;
using Json = nlohmann::ordered_json;

class RackSession : public testing::Test, protected RackOnBoard {
protected:
    // Flags that an opening with that access carries: exclusive, simple, not shared, reserved.
    Json flagsOf(Access access) {
        rack.open("BOARD7:2", access).phy(5).open();
        const Json arguments = argumentsOf(board.requestsOf("open_connection").back());
        Json flags = Json::array();
        for (const auto& member : arguments)
            flags.push_back(member);
        return flags;
    }
};

TEST_F(RackSession, ExclusiveAccessCarriesItsKeyAndFlags) {
    EXPECT_EQ(flagsOf(Access::exclusive(0x4711)), (Json{0x4711, 1, 0, 1, 0, 2, 5}));
}

TEST_F(RackSession, SharedAccessCarriesItsKeyAndFlags) {
    EXPECT_EQ(flagsOf(Access::shared(7)), (Json{7, 0, 0, 0, 0, 2, 5}));
}

TEST_F(RackSession, SimpleAccessCarriesItsKeyAndFlags) {
    EXPECT_EQ(flagsOf(Access::simple(9)), (Json{9, 0, 1, 0, 0, 2, 5}));
}

TEST_F(RackSession, OpensOverTcp) {
    phy.open();
    EXPECT_EQ(board.requestsOf("open_connection").at(0).transport, "tcp");
}

TEST_F(RackSession, RefusalSaysThatAnotherHoldsThePhy) {
    phy.open();
    const Failure failure = failureOf([&] { rack.open("BOARD7:1", Access::exclusive(1)).phy(3).open(); });
    EXPECT_EQ(failure.kind(), FailureKind::Refused);
    EXPECT_EQ(failure.code(), -13);
    EXPECT_EQ(failure.advice(),
              "Another session holds the PHY exclusively, or this one wants what others share: "
              "use the holder's key or wait for its end.");
}

TEST_F(RackSession, QueueingAccessWaitsForTheHolder) {
    phy.open();
    std::thread waiter(
        [this] { rack.open("BOARD7:1", Access::exclusive(1).queueing()).phy(3).open(within(20s)); });
    board.waitFor([](const Request& one) {
        return one.procedure == "open_connection" && argumentsOf(one).front() == 1;
    });
    phy.close();
    waiter.join();
    EXPECT_GE(count("open_connection"), 3U);
}

TEST_F(RackSession, QueueingAccessEndsAtItsDeadlineAsRefused) {
    phy.open();
    const Port queue = rack.open("BOARD7:1", Access::exclusive(1).queueing());
    EXPECT_EQ(failureOf([&] { queue.phy(3).open(within(300ms)); }).kind(), FailureKind::Refused);
}

TEST_F(RackSession, LastHandleClosesTheSession) {
    {
        const Port port = rack.open("BOARD7:2", Access::exclusive(5));
        const Phy one = port.phy(1);
        one.open();
        const Phy copy = port.phy(1); // the same session
        copy.read({1, 0});
        EXPECT_EQ(board.sessionCount(), 1U);
    }
    EXPECT_EQ(board.sessionCount(), 0U);
    EXPECT_EQ(count("open_connection"), 1U);
}

TEST_F(RackSession, EndOfASessionThatTheBoardForgotOpensNone) {
    {
        const Phy brief = rack.open("BOARD7:2").phy(1);
        brief.open();
        board.forgetSessions();
    }
    EXPECT_EQ(count("open_connection"), 1U);
    EXPECT_EQ(count("close_connection"), 1U);
}

TEST_F(RackSession, ClosingWhoseConnectionEndsIsRepeated) {
    {
        const Phy brief = rack.open("BOARD7:2").phy(1);
        brief.open();
        inject(Fault::Kind::CloseConnection, "setup", "close_connection");
    }
    EXPECT_EQ(board.sessionCount(), 0U);
}

TEST_F(RackSession, ClosedSessionIsOpenedByItsNextUse) {
    phy.open();
    phy.close();
    EXPECT_EQ(board.sessionCount(), 0U);
    EXPECT_FALSE(phy.isOpen());
    EXPECT_EQ(phy.key(), 0U);
    phy.read({1, 0});
    EXPECT_EQ(board.sessionCount(), 1U);
    EXPECT_EQ(rack.counters().at("BOARD7").opens, 2U);
    EXPECT_EQ(rack.counters().at("BOARD7").reopens, 0U);
}

TEST_F(RackSession, BoardThatIsBusyIsAskedForASessionAgain) {
    inject(Fault::Kind::ResultCode, "setup", "open_connection", 1, -16);
    phy.open();
    EXPECT_EQ(count("open_connection"), 2U);
    phy.close();
    inject(Fault::Kind::ResultCode, "setup", "open_connection", -1, -16);
    const Failure failure = failureOf([&] { phy.open(within(300ms)); });
    EXPECT_EQ(failure.kind(), FailureKind::Busy);
    EXPECT_EQ(failure.code(), -16);
    EXPECT_EQ(count("get_error_msg"), 0U);
}

TEST_F(RackSession, PortThatIsNoneIsABadReply) {
    inject(Fault::Kind::OverrideWord, "portmap", "portmap_getport", 1, 65536);
    EXPECT_EQ(failureOf([&] { phy.open(); }).kind(), FailureKind::BadReply);
}

TEST_F(RackSession, MoreThanAHundredSessionsOfABoardAreToldApart) {
    std::vector<Phy> phys;
    for (unsigned port = 0; port < 5; ++port)
        for (unsigned id = 0; id < 30; ++id)
            phys.push_back(rack.open("BOARD7:" + std::to_string(port)).phy(id));
    for (const Phy& one : phys)
        one.open();
    for (const Phy& one : phys)
        one.write({1, 7}, one.id());
    EXPECT_EQ(board.sessionCount(), phys.size());
    EXPECT_EQ(rack.counters().at("BOARD7").reopens, 0U);
}

TEST_F(RackSession, ClosingMayTakeItsTime) {
    phy.open();
    inject(Fault::Kind::DelayReply, "setup", "close_connection", 1, 1200);
    phy.close();
    EXPECT_EQ(count("close_connection"), 1U);
    EXPECT_EQ(board.sessionCount(), 0U);
}

TEST_F(RackSession, ServiceThatIsStillStartingIsLookedUpAgain) {
    inject(Fault::Kind::OverrideWord, "portmap", "portmap_getport", 1, 0);
    phy.open();
    inject(Fault::Kind::OverrideWord, "portmap", "portmap_getport", -1, 0);
    const Failure failure = failureOf([&] { phy.gpio().reset(within(300ms)); });
    EXPECT_EQ(failure.kind(), FailureKind::Unreachable);
    EXPECT_EQ(failure.code(), 0);
}

TEST_F(RackSession, LostAnswerOfAnOpeningIsAskedForAgain) {
    inject(Fault::Kind::LoseReply, "setup", "open_connection");
    phy.open();
    EXPECT_TRUE(phy.isOpen());
}

TEST_F(RackSession, ConnectionThatEndsDuringAnOpeningIsMadeAgain) {
    inject(Fault::Kind::CloseConnection, "setup", "open_connection");
    phy.open();
    EXPECT_TRUE(phy.isOpen());
}

TEST_F(RackSession, HandlesMayOutliveTheirRack) {
    std::optional<Phy> left;
    {
        Rack other;
        other.know(kBoardSerial, board.address());
        left = other.open("BOARD7:0").phy(1);
        left->open();
    }
    left->read({1, 0});
    left.reset();
    EXPECT_EQ(board.sessionCount(), 0U);
}

TEST_F(RackSession, TwoDescriptorsServeAnOpenSession) {
    const auto descriptors = [] {
        std::size_t count = 0;
        for ([[maybe_unused]] const auto& entry : std::filesystem::directory_iterator("/proc/self/fd"))
            ++count;
        return count;
    };
    Rack other;
    other.know(kBoardSerial, board.address());
    other.open("BOARD7:0").phy(1).open(); // the thread of the rack is there from now on
    const Port port = other.open("BOARD7:0");
    const std::size_t before = descriptors();
    const Phy open = port.phy(2);
    open.read({1, 0});
    EXPECT_LE(descriptors(), before + 2); // of the lab's end of the connection, and at most one here
}

TEST_F(RackSession, EventsTellOfOpening) {
    Events events(rack);
    phy.open();
    EXPECT_TRUE(events.waitFor(Event::Kind::Opened));
}

TEST_F(RackSession, NamesThatAreNoneAreRefused) {
    for (const char* const name :
         {"", "BOARD7", ":1", "BOARD7:", "BOARD7:x", "BOARD7:20", "BOARD7:-1", "BOARD7:1:2"})
        EXPECT_EQ(failureOf([&] { rack.open(name); }).kind(), FailureKind::InvalidArgument) << name;
    EXPECT_EQ(failureOf([&] { rack.open("BOARD7:1").phy(32); }).kind(), FailureKind::InvalidArgument);
    EXPECT_EQ(failureOf([&] { rack.know("x", "10.83.0"); }).kind(), FailureKind::InvalidArgument);
}

} // namespace
} // namespace OrvaneTest
