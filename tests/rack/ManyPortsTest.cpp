// Opening and closing of many ports together.
#include "tests/support/rack/RackOnBoard.h"

namespace OrvaneTest {
namespace {

using namespace Orvane;
using Names = std::vector<std::string>;

class RackManyPorts : public testing::Test {
protected:
    OrvaneSim::Lab lab;
    Rack rack;

    OrvaneSim::Board& addBoard(const std::string& serial) {
        OrvaneSim::BoardOptions options;
        options.serial = serial;
        return lab.add(options);
    }
    OrvaneSim::Board& addKnown(const std::string& serial) {
        OrvaneSim::Board& board = addBoard(serial);
        rack.know(serial, board.address());
        return board;
    }
    static Names namesOf(const std::vector<OpenedPort>& opened) {
        Names names;
        for (const OpenedPort& one : opened)
            names.push_back(one.name);
        return names;
    }
    std::size_t sessions() {
        std::size_t count = 0;
        for (const OrvaneSim::Board* const board : lab.boards())
            count += board->sessionCount();
        return count;
    }
};

TEST_F(RackManyPorts, EveryNameGetsItsPort) {
    for (const char* const serial : {"AA1", "AA2", "AA3"})
        addBoard(serial);
    const std::vector<OpenedPort> opened = rack.openAll({"AA2:1", "aa3:0", "AA1:0"});
    ASSERT_EQ(namesOf(opened), (Names{"AA2:1", "aa3:0", "AA1:0"}));
    for (const OpenedPort& one : opened)
        EXPECT_FALSE(one.failure) << one.name;
    EXPECT_EQ(opened[0].port->board(), "AA2");
    EXPECT_EQ(opened[0].port->number(), 1U);
    EXPECT_EQ(opened[1].port->board(), "AA3");
    EXPECT_EQ(sessions(), 0U);
}

TEST_F(RackManyPorts, UnknownBoardsAreLookedForInOneSearch) {
    OrvaneSim::Board& first = addBoard("AA1");
    addBoard("AA2");
    rack.openAll({"AA1:0", "AA2:0"});
    EXPECT_LE(first.discoveryCount(), 2U);
}

TEST_F(RackManyPorts, PatternTakesThePortsThatAnswerInOrder) {
    for (const char* const serial : {"OV2", "XX1", "OV1"})
        addBoard(serial);
    EXPECT_EQ(namesOf(rack.openAll({"ov*:0"})), (Names{"OV1:0", "OV2:0"}));
    EXPECT_EQ(namesOf(rack.openAll({"OV2:1", "OV[12]:?"})), (Names{"OV2:1", "OV1:0", "OV1:1", "OV2:0"}));
}

TEST_F(RackManyPorts, PatternBeginsAsItLikesAndSpansEveryCharacter) {
    addBoard("A/1");
    EXPECT_EQ(namesOf(rack.openAll({"*:0"})), (Names{"A/1:0"}));
}

TEST_F(RackManyPorts, PatternThatNothingAnswersToIsAFailureOfItsOwn) {
    addBoard("AA1");
    const std::vector<OpenedPort> opened = rack.openAll({"ZZ*:0", "AA1:0"});
    ASSERT_EQ(opened.size(), 2U);
    EXPECT_EQ(opened[0].failure->kind(), FailureKind::NoSuchPort);
    EXPECT_EQ(opened[0].failure->code(), 0);
    EXPECT_FALSE(opened[1].failure);
}

TEST_F(RackManyPorts, SessionsOfThePhysAreOpenedOnAllPorts) {
    addKnown("AA1");
    addKnown("AA2");
    const std::vector<OpenedPort> opened = rack.openAll({"AA1:0", "AA2:1"}, {3, 4}, Access::exclusive(7));
    EXPECT_EQ(sessions(), 4U);
    EXPECT_TRUE(opened[1].port->phy(4).isOpen());
    EXPECT_EQ(opened[1].port->phy(4).key(), 7U);
}

TEST_F(RackManyPorts, FailureOfOneCostsTheOthersNothing) {
    OrvaneSim::Board& taken = addKnown("AA1");
    addKnown("AA2");
    addKnown("AA3").stop();
    Rack other;
    other.know("AA1", taken.address());
    const Phy holder = other.open("AA1:0", Access::exclusive(1)).phy(3);
    holder.open();
    const std::vector<OpenedPort> opened = rack.openAll({"AA1:0", "AA2:0", "AA3:0", "none", "AA4:0", "AA2:1"},
                                                        {3}, Access::exclusive(2), within(2s));
    ASSERT_EQ(opened.size(), 6U);
    EXPECT_EQ(opened[0].failure->kind(), FailureKind::Refused);
    EXPECT_EQ(opened[0].failure->board(), "AA1");
    EXPECT_FALSE(opened[1].failure);
    EXPECT_EQ(opened[3].failure->kind(), FailureKind::InvalidArgument);
    EXPECT_EQ(opened[4].failure->kind(), FailureKind::NoSuchPort);
    EXPECT_EQ(opened[4].failure->board(), "AA4");
    EXPECT_EQ(opened[4].failure->code(), 0);
    EXPECT_FALSE(opened[5].failure);
    EXPECT_TRUE(opened[1].port->phy(3).isOpen());
}

TEST_F(RackManyPorts, BoardsThatDoNotAnswerEndTogetherAtTheDeadline) {
    Names names;
    for (int i = 0; i < 8; ++i) {
        names.push_back("S" + std::to_string(i) + ":0");
        addKnown("S" + std::to_string(i)).stop();
    }
    const auto begun = std::chrono::steady_clock::now();
    const std::vector<OpenedPort> opened = rack.openAll(names, {3}, Access::simple(), within(500ms));
    EXPECT_LT(std::chrono::steady_clock::now() - begun, 3s);
    for (const OpenedPort& one : opened) {
        ASSERT_TRUE(one.failure);
        EXPECT_EQ(one.failure->kind(), FailureKind::Unreachable);
        EXPECT_EQ(one.failure->code(), 0);
        EXPECT_EQ(one.failure->board() + ":0", one.name);
    }
}

TEST_F(RackManyPorts, PhyThatAPortCannotHaveIsAFailureOfThePort) {
    addKnown("AA1");
    const std::vector<OpenedPort> opened = rack.openAll({"AA1:0"}, {32});
    EXPECT_EQ(opened[0].failure->kind(), FailureKind::InvalidArgument);
}

TEST_F(RackManyPorts, EverySessionIsClosedTogether) {
    for (const char* const serial : {"AA1", "AA2", "AA3"})
        addKnown(serial);
    const std::vector<OpenedPort> opened = rack.openAll({"AA1:0", "AA2:0", "AA3:1"}, {1, 2});
    EXPECT_EQ(sessions(), 6U);
    EXPECT_TRUE(rack.closeAll().empty());
    EXPECT_EQ(sessions(), 0U);
    opened[0].port->phy(1).read({1, 0});
    EXPECT_EQ(sessions(), 1U);
}

TEST_F(RackManyPorts, BoardThatCannotBeToldOfAClosingIsNamed) {
    addKnown("AA1");
    OrvaneSim::Board& silent = addKnown("AA2");
    const std::vector<OpenedPort> opened = rack.openAll({"AA1:0", "AA2:0"}, {1});
    silent.hang();
    const std::vector<Failure> failures = rack.closeAll(within(300ms));
    ASSERT_EQ(failures.size(), 1U);
    EXPECT_EQ(failures[0].board(), "AA2");
    EXPECT_EQ(failures[0].operation(), "close");
    EXPECT_EQ(lab.boards()[0]->sessionCount(), 0U);
}

TEST_F(RackManyPorts, EventsTellOfClosings) {
    addKnown("AA1");
    const std::vector<OpenedPort> opened = rack.openAll({"AA1:0"}, {1});
    Events events(rack);
    rack.closeAll();
    EXPECT_TRUE(events.waitFor(Event::Kind::Closed));
}

TEST_F(RackManyPorts, CancellationFromAnotherThreadEndsAllAtOnce) {
    addKnown("AA1").hang();
    addKnown("AA2").hang();
    Cancellation cancellation;
    std::thread canceller([&] {
        std::this_thread::sleep_for(100ms); // the boards hear nothing that could be waited for
        cancellation.cancel();
    });
    const auto begun = std::chrono::steady_clock::now();
    const auto opened =
        rack.openAll({"AA1:0", "AA2:0"}, {1}, Access::simple(), within(60s).cancelledBy(cancellation));
    EXPECT_LT(std::chrono::steady_clock::now() - begun, 600ms); // before anybody's patience ends
    canceller.join();
    for (const OpenedPort& one : opened) {
        EXPECT_EQ(one.failure->kind(), FailureKind::Cancelled);
        EXPECT_EQ(one.failure->code(), 0);
    }
}

} // namespace
} // namespace OrvaneTest
