// Searches for boards, alone and beside others.
#include "ov_sys/rack/values/Discovery.h"

#include "ov_sys/rack/core/Hunt.h"
#include "ov_sys/rack/Flight.h"
#include "ov_sys/rack/search/Search.h"
#include "tests/support/rack/RackOnBoard.h"

#include <netinet/in.h>
#include <sys/wait.h>
#include <unistd.h>

namespace OrvaneTest {
namespace {

using namespace Orvane;

// Runs `job` in a child process; its result is the exit status.
template <class Job>
pid_t inChild(Job job) {
    const pid_t child = fork();
    if (child == 0)
        _exit(job());
    return child;
}

int exitOf(pid_t child) {
    int status = 0;
    waitpid(child, &status, 0);
    return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
}

class RackDiscovery : public testing::Test {
protected:
    OrvaneSim::Lab lab;

    OrvaneSim::Board& addBoard(const std::string& serial) {
        OrvaneSim::BoardOptions options;
        options.serial = serial;
        return lab.add(options);
    }
    void addBoards(int count) {
        for (int i = 0; i < count; ++i)
            addBoard("B" + std::to_string(1000 + i));
    }
    // The number of boards that a search finds, to be called in a child: the lab's thread is not there.
    static int search() {
        Rack rack;
        return static_cast<int>(rack.discover().boards.size());
    }
};

TEST_F(RackDiscovery, FindsEveryBoardWithItsPortsAndAddress) {
    OrvaneSim::BoardOptions options;
    options.serial = "zz9";
    options.devices = {"zz9:3", "zz9:0", "zz9:10"};
    options.firstWord = "wren";
    const std::string address = lab.add(options).address();
    const std::string first = addBoard("aa1").address();
    const Discovery found = Rack().discover();
    ASSERT_EQ(found.boards.size(), 2U);
    EXPECT_EQ(found.boards[0].serial, "AA1");
    EXPECT_EQ(found.boards[0].address, first);
    EXPECT_EQ(found.boards[1].serial, "ZZ9");
    EXPECT_EQ(found.boards[1].address, address);
    EXPECT_EQ(found.boards[1].ports, (std::vector<unsigned>{0, 3, 10}));
    EXPECT_EQ(found.boards[1].kind, "wren");
    EXPECT_EQ(found.malformed, 0U);
}

TEST_F(RackDiscovery, ListensForItsWholeTimeWhoeverAnswers) {
    addBoards(20);
    const auto begun = std::chrono::steady_clock::now();
    EXPECT_EQ(Rack().discover(within(700ms)).boards.size(), 20U);
    const auto spent = std::chrono::steady_clock::now() - begun;
    EXPECT_GE(spent, 700ms);
    EXPECT_LT(spent, 2s);
}

TEST_F(RackDiscovery, LostAnswersAreAskedForAgain) {
    addBoard("aa1").inject({"discovery", "", Fault::Kind::LoseReply, 2});
    EXPECT_EQ(Rack().discover().boards.size(), 1U);
}

TEST_F(RackDiscovery, MalformedAnswersAreCountedAndNotShown) {
    addBoard("aa1").setDiscoveryReplies(
        std::vector<std::string>{"|host AA1:0", "no bar", "|", "|host", "|host AA1", "|host AA1:x",
                                 "|host \x1B[31mAA1:0", std::string("|host A\0:1", 10)});
    const Discovery found = Rack().discover();
    EXPECT_EQ(found.boards.size(), 1U);
    EXPECT_EQ(found.malformed, 7U);
}

TEST_F(RackDiscovery, ThreeThousandBoardsAreAllFound) {
    addBoards(3000);
    EXPECT_EQ(Rack().discover().boards.size(), 3000U);
}

TEST_F(RackDiscovery, EndsWhenItsCallerHasEnough) {
    addBoards(3);
    std::vector<std::string> seen;
    const Discovery found = Rack().discover(
        [&](const FoundBoard& board) {
            seen.push_back(board.serial);
            return seen.size() == 2;
        },
        within(60s));
    EXPECT_EQ(seen.size(), 2U);
    EXPECT_EQ(found.boards.size(), 2U);
}

TEST_F(RackDiscovery, AddressesAreAskedDirectlyAndKnownThen) {
    OrvaneSim::Board& board = addBoard("aa1");
    OrvaneSim::Board& other = addBoard("aa2");
    board.setRegister(Space::C45, 0, 1, 0x10002, 0x42);
    Rack rack;
    const Discovery found = rack.ask({board.address(), "10.83.200.1"});
    ASSERT_EQ(found.boards.size(), 1U);
    EXPECT_EQ(found.boards[0].serial, "AA1");
    EXPECT_EQ(found.boards[0].ports, (std::vector<unsigned>{0, 1}));
    EXPECT_EQ(rack.open("AA1:0").phy(1).read({1, 2}), 0x42U);
    EXPECT_EQ(board.discoveryCount() + other.discoveryCount(), 0U);
    EXPECT_EQ(other.probeRequests().size(), 0U);
}

TEST_F(RackDiscovery, MoreAddressesThanAreAskedAtATimeAreAllAsked) {
    addBoards(300);
    std::vector<std::string> addresses;
    for (const OrvaneSim::Board* const board : lab.boards())
        addresses.push_back(board->address());
    EXPECT_EQ(Rack().ask(addresses, within(60s)).boards.size(), 300U);
}

TEST_F(RackDiscovery, AddressThatIsNoneIsRefusedWithItsText) {
    const Failure failure = RackOnBoard::failureOf([] { Rack().ask({"10.83.0"}); });
    EXPECT_EQ(failure.kind(), FailureKind::InvalidArgument);
    EXPECT_EQ(failure.location(), "\"10.83.0\"");
}

TEST_F(RackDiscovery, SearchesOfManyProcessesAtOnceAllFindEveryBoard) {
    addBoards(30);
    std::vector<pid_t> children;
    const auto begun = std::chrono::steady_clock::now();
    for (int i = 0; i < 64; ++i)
        children.push_back(inChild(search));
    for (const pid_t child : children)
        EXPECT_EQ(exitOf(child), 30);
    EXPECT_LT(std::chrono::steady_clock::now() - begun, 10s);
}

TEST_F(RackDiscovery, EndOfTheProcessThatListensCostsTheOthersNothing) {
    addBoards(30);
    std::vector<pid_t> killed;
    std::vector<pid_t> children;
    for (int i = 0; i < 4; ++i) {
        killed.push_back(inChild(search));
        children.push_back(inChild(search));
    }
    const auto questions = lab.boards().front()->discoveryCount();
    const auto limit = std::chrono::steady_clock::now() + 10s;
    while (lab.boards().front()->discoveryCount() == questions && std::chrono::steady_clock::now() < limit)
        std::this_thread::yield();
    for (const pid_t child : killed)
        kill(child, SIGKILL);
    for (const pid_t child : killed)
        exitOf(child);
    for (const pid_t child : children)
        EXPECT_EQ(exitOf(child), 30);
}

TEST_F(RackDiscovery, ProcessThatHoldsTheNameAndSaysNothingIsDoneWithout) {
    addBoards(3);
    RackSearch::Speaker mute;
    ASSERT_TRUE(mute.open());
    const auto begun = std::chrono::steady_clock::now();
    EXPECT_EQ(Rack().discover().boards.size(), 3U);
    EXPECT_LT(std::chrono::steady_clock::now() - begun, 5s);
}

TEST_F(RackDiscovery, OpenFindsTheBoardByItsName) {
    addBoards(3);
    OrvaneSim::Board& board = addBoard("Some-1");
    board.setRegister(Space::C45, 1, 3, 0x10002, 0x42);
    Rack rack;
    EXPECT_EQ(rack.open("some-1:1").phy(3).read({1, 2}), 0x42U);
}

TEST_F(RackDiscovery, BoardThatWasFoundIsNotSearchedForAgain) {
    OrvaneSim::Board& board = addBoard("aa1");
    Rack rack;
    rack.discover();
    const std::size_t questions = board.discoveryCount();
    rack.open("AA1:0").phy(1).read({1, 0});
    EXPECT_EQ(board.discoveryCount(), questions);
}

TEST_F(RackDiscovery, NameThatNobodyAnswersToIsNoSuchPort) {
    addBoards(1);
    Rack rack;
    const Failure failure =
        RackOnBoard::failureOf([&] { rack.open("NONE:1", Access::simple(), within(400ms)); });
    EXPECT_EQ(failure.kind(), FailureKind::NoSuchPort);
    EXPECT_EQ(failure.board(), "NONE");
}

TEST_F(RackDiscovery, BoardThatMovedIsFoundByItsNameAndItsSessionOpenedThere) {
    OrvaneSim::Board& board = addBoard("aa1");
    board.setRegister(Space::C45, 0, 1, 0x10002, 0x42);
    Rack rack;
    Events events(rack);
    const Phy phy = rack.open("AA1:0", Access::exclusive(7)).phy(1);
    phy.open();
    board.forgetSessions();
    board.moveTo("10.83.7.7");
    EXPECT_EQ(phy.read({1, 2}, within(20s)), 0x42U);
    EXPECT_TRUE(events.waitFor(Event::Kind::Moved));
    EXPECT_EQ(rack.counters().at("AA1").moves, 1U);
}

TEST_F(RackDiscovery, BoardThatMovedIsFoundWhileManyOthersStayMissing) {
    Rack rack;
    Flight flight;
    for (int i = 0; i < 12; ++i) {
        OrvaneSim::Board& gone = addBoard("A" + std::to_string(i));
        rack.know(gone.serial(), gone.address());
        gone.stop();
        flight.read(rack.open(gone.serial() + ":0").phy(1), {1, 2}, within(20s));
    }
    OrvaneSim::Board& board = addBoard("ZZ");
    rack.know("ZZ", board.address());
    const Phy phy = rack.open("ZZ:0").phy(1);
    phy.open();
    board.setRegister(Space::C45, 0, 1, 0x10002, 0x42);
    board.moveTo("10.83.7.7");
    EXPECT_EQ(flight.read(phy, {1, 2}, within(6s)).get(), 0x42U);
}

TEST_F(RackDiscovery, HuntForMissingBoardsKeepsNobodyWaiting) {
    OrvaneSim::Board& board = addBoard("aa1");
    std::vector<std::string> found;
    RackCore::Hunt hunt({"AA1", "NONE"}, [&](const FoundBoard& one) { found.push_back(one.address); });
    EXPECT_FALSE(hunt.step());
    unsigned steps = 1;
    for (bool over = false; !over; ++steps) {
        pollfd entries[RackSearch::Search::kMostWatched];
        poll(entries, static_cast<nfds_t>(hunt.watch(entries)), 50);
        over = hunt.step();
    }
    EXPECT_EQ(found, std::vector<std::string>{board.address()});
    EXPECT_GT(steps, 5U);
}

TEST_F(RackDiscovery, CancelledSearchEndsAtOnce) {
    Cancellation cancellation;
    cancellation.cancel();
    Rack rack;
    const auto begun = std::chrono::steady_clock::now();
    EXPECT_EQ(RackOnBoard::failureOf([&] { rack.discover(within(60s).cancelledBy(cancellation)); }).kind(),
              FailureKind::Cancelled);
    EXPECT_EQ(RackOnBoard::failureOf([&] {
                  rack.ask({"10.83.200.1"}, within(60s).cancelledBy(cancellation));
              }).kind(),
              FailureKind::Cancelled);
    EXPECT_LT(std::chrono::steady_clock::now() - begun, 1s);
}

} // namespace
} // namespace OrvaneTest
