// That no board answers for another, and that no session is left on one.
#include "tests/support/rack/RackOnBoard.h"

#include <future>

namespace OrvaneTest {
namespace {

using namespace Orvane;
using Json = nlohmann::ordered_json;

constexpr const char* kElsewhere = "10.83.9.9";

class TwoBoards : public testing::Test {
protected:
    OrvaneSim::Lab lab;
    OrvaneSim::Board& one = add("one", 0x1111);
    OrvaneSim::Board& two = add("two", 0x2222);
    Rack rack;
    Phy first = open(one);
    Phy second = open(two);

    OrvaneSim::Board& add(const std::string& serial, std::uint32_t value) {
        OrvaneSim::BoardOptions options;
        options.serial = serial;
        OrvaneSim::Board& board = lab.add(options);
        board.setRegister(Space::C45, 0, 1, 0x10002, value);
        return board;
    }
    // The first session of its board, so that both have one number.
    Phy open(OrvaneSim::Board& board) {
        rack.know(board.serial(), board.address());
        const Phy phy = rack.open(board.serial() + ":0", Access::exclusive(7)).phy(1);
        phy.open();
        return phy;
    }
    void swap() {
        const std::string here = one.address();
        const std::string there = two.address();
        one.moveTo(kElsewhere);
        two.moveTo(here);
        one.moveTo(there);
    }
};

TEST_F(TwoBoards, ThatSwapTheirAddressesAnswerForThemselves) {
    for (int times = 0; times < 3; ++times) {
        swap();
        ASSERT_EQ(first.read({1, 2}, within(20s)), 0x1111U);
        ASSERT_EQ(second.read({1, 2}, within(20s)), 0x2222U);
    }
}

TEST_F(TwoBoards, ThatSwapTheirAddressesAndForgetTheirSessionsAnswerForThemselves) {
    swap();
    one.forgetSessions();
    two.forgetSessions();
    EXPECT_EQ(second.read({1, 2}, within(20s)), 0x2222U);
    EXPECT_EQ(first.read({1, 2}, within(20s)), 0x1111U);
}

TEST_F(TwoBoards, BoardAtTheAddressOfOneThatIsOffIsAskedForNothing) {
    const std::string here = one.address();
    one.moveTo(kElsewhere);
    one.stop();
    two.moveTo(here);
    two.forgetRequests();
    Events events(rack);
    const Failure failure = RackOnBoard::failureOf([&] { first.read({1, 2}, within(1s)); });
    EXPECT_EQ(failure.board(), "ONE");
    EXPECT_TRUE(two.requests().empty());
    EXPECT_TRUE(events.waitFor(Event::Kind::Lost));
}

class RackIdentity : public testing::Test, protected RackOnBoard {};

TEST_F(RackIdentity, BoardThatForgotItsSessionsSaysItsNameBeforeTheyAreOpenedAgain) {
    phy.open();
    board.forgetSessions();
    phy.read({1, 2});
    EXPECT_EQ(board.probeRequests().size(), 1U);
}

TEST_F(RackIdentity, BoardThatSaysNothingOverTcpIsKnownByItsAnswerToASearch) {
    phy.open();
    board.inject({"probe", "", Fault::Kind::Silent, -1});
    board.forgetSessions();
    phy.read({1, 2}, within(20s));
    EXPECT_EQ(board.sessionCount(), 1U);
}

TEST_F(RackIdentity, BoardWithoutANameIsGivenNoSession) {
    phy.open();
    board.setDiscoveryReplies(std::vector<std::string>{"|host OTHER:0"});
    board.forgetSessions();
    const Failure failure = failureOf([&] { phy.read({1, 2}, within(700ms)); });
    EXPECT_EQ(failure.kind(), FailureKind::Unreachable);
    EXPECT_EQ(failure.code(), 0);
    EXPECT_EQ(count("open_connection"), 1U);
}

TEST_F(RackIdentity, ConnectionThatTheBoardEndedWhileNobodyAskedCostsNoValue) {
    phy.open();
    board.setRegister(Space::C45, 1, 3, 0x10002, 0x42);
    inject(Fault::Kind::CloseConnection, "setup", "execute_command");
    failureOf([&] { phy.shell().run("x", 1s); });
    EXPECT_EQ(phy.read({1, 2}, Within{}.once()), 0x42U);
}

TEST_F(RackIdentity, LateAnswerOfAnOpeningLeavesOneSession) {
    inject(Fault::Kind::DelayReply, "setup", "open_connection", 1, 1300);
    phy.open();
    board.waitFor([this](const Request&) {
        phy.read({1, 2});
        return count("close_connection") == 1;
    });
    EXPECT_EQ(board.sessionCount(), 1U);
    EXPECT_EQ(count("open_connection"), 2U);
}

TEST_F(RackIdentity, SessionWhoseOpeningNobodyWaitedForIsClosed) {
    inject(Fault::Kind::DelayReply, "setup", "open_connection", 1, 300);
    {
        const Phy brief = rack.open("BOARD7:2", Access::exclusive(5)).phy(1);
        failureOf([&] { brief.open(within(50ms)); });
    }
    EXPECT_EQ(count("close_connection"), 1U);
    EXPECT_EQ(board.sessionCount(), 0U);
}

TEST_F(RackIdentity, OpeningWhoseAnswerIsLostIsAskedForAgainWithItsOwnKey) {
    inject(Fault::Kind::CloseMidReply, "setup", "open_connection");
    const Phy alone = rack.open("BOARD7:2", Access::exclusive()).phy(1);
    alone.open();
    const std::vector<Request> opens = board.requestsOf("open_connection");
    ASSERT_EQ(opens.size(), 2U);
    EXPECT_NE(argumentsOf(opens[0]).front(), Json(0));
    EXPECT_EQ(opens[0].arguments(), opens[1].arguments());
    EXPECT_EQ(alone.key(), argumentsOf(opens[0]).front().get<unsigned>());
}

TEST_F(RackIdentity, SessionThatMayBeLeftOnTheBoardIsNamed) {
    std::promise<std::string> told;
    rack.onEvent([&told](const Event& event) {
        if (event.kind == Event::Kind::Lost)
            told.set_value(event.text);
    });
    inject(Fault::Kind::CloseMidReply, "setup", "open_connection");
    rack.open("BOARD7:2", Access::exclusive(0x4711)).phy(1).open();
    EXPECT_EQ(told.get_future().get(),
              "the answer to an opening was lost: the board may keep a session of key "
              "0x4711 until it misses its pings");
    rack.onEvent({});
}

TEST_F(RackIdentity, EverySessionThatMayBeLeftOnTheBoardIsNamed) {
    std::promise<void> told;
    rack.onEvent([&told, count = 0](const Event& event) mutable {
        if (event.kind == Event::Kind::Lost && ++count == 2)
            told.set_value();
    });
    inject(Fault::Kind::DelayReply, "setup", "open_connection", 1,
           60000); // is asked for again after a second
    inject(Fault::Kind::CloseMidReply, "setup", "open_connection");
    phy.open(within(20s));
    EXPECT_EQ(told.get_future().wait_for(20s), std::future_status::ready);
    rack.onEvent({});
}

TEST_F(RackIdentity, OpeningThatNeverLeftNamesNoSession) {
    Events events(rack);
    board.stop();
    failureOf([&] { phy.open(within(700ms)); });
    board.start();
    phy.open(within(20s));
    EXPECT_TRUE(events.waitFor(Event::Kind::Opened));
    EXPECT_FALSE(events.came(Event::Kind::Lost));
}

TEST_F(RackIdentity, RefusalSaysWhatTheBoardAddsToIt) {
    phy.open();
    const std::pair<std::string, const char*> records[] = {
        {{"\3\0\0\0\x11", 5}, " The board adds 3, 17."},
        {{"\0\0\0\0\1", 5}, " The board adds 0, 1."},
        {{"\3\xFF\xFF\xFF\xFE", 5}, " The board adds 3, -2."}};
    for (const auto& [record, addition] : records) {
        Fault words{"setup", "get_error_msg", Fault::Kind::ReplyBody};
        words.bytes = std::string(7, '\0') + record;
        board.inject(words);
        const Failure failure = failureOf([&] { rack.open("BOARD7:1", Access::exclusive(1)).phy(3).open(); });
        EXPECT_EQ(failure.kind(), FailureKind::Refused);
        EXPECT_NE(failure.advice().find(addition), std::string::npos) << failure.advice();
    }
    EXPECT_EQ(argumentsOf(board.requestsOf("get_error_msg").at(0)).front().get<std::int64_t>(), 0xFFFFFFF3);
}

TEST_F(RackIdentity, RefusalStandsWhenTheBoardHasNothingToAdd) {
    phy.open();
    inject(Fault::Kind::CloseConnection, "setup", "get_error_msg");
    EXPECT_EQ(failureOf([&] { rack.open("BOARD7:1", Access::exclusive(1)).phy(3).open(); }).kind(),
              FailureKind::Refused);
}

} // namespace
} // namespace OrvaneTest
