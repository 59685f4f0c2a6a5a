// The lab's own interface: boards, their requests, the private network.
#include "tests/support/simulator/Client.h"
#include "tests/support/simulator/RawSocket.h"

#include "simulator/network/PrivateNetwork.h"

#include <atomic>
#include <cerrno>
#include <fstream>
#include <thread>

namespace OrvaneSim {
namespace {

// Why a connection cannot be had; 0 when it can.
int connectionError(const std::string& address, std::uint16_t port) {
    const Orvane::FileDescriptor socket(::socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0));
    const sockaddr_in point = endPoint(address, port);
    return ::connect(socket.get(), reinterpret_cast<const sockaddr*>(&point), sizeof point) == 0 ? 0 : errno;
}

TEST(LabOfBoards, GivesEachBoardTheNextFreeAddress) {
    Lab lab;
    EXPECT_EQ(lab.add({"", "A", {}, "host", 1, false}).address(), "10.83.0.1");
    EXPECT_EQ(lab.add({"10.83.0.2", "B", {}, "host", 1, false}).address(), "10.83.0.2");
    EXPECT_EQ(lab.add({"", "C", {}, "host", 1, false}).address(), "10.83.0.3");
    EXPECT_EQ(lab.board("B").nameLine(), "host B:0 B:1");
    EXPECT_EQ(lab.boards().size(), 3U);
}

TEST(LabOfBoards, RefusesWhatItHasAlready) {
    Lab lab;
    lab.add({"", "A", {}, "host", 1, false});
    EXPECT_THROW(lab.add({"", "A", {}, "host", 1, false}), std::invalid_argument);
    EXPECT_THROW(lab.add({"10.83.0.1", "B", {}, "host", 1, false}), std::invalid_argument);
    EXPECT_THROW(lab.add({"10.83", "B", {}, "host", 1, false}), std::invalid_argument);
    EXPECT_THROW(lab.add({"", "", {}, "host", 1, false}), std::invalid_argument);
    EXPECT_THROW(lab.board("B"), std::out_of_range);
}

TEST(LabOfBoards, RefusesAnAddressThatIsNotOnTheBoardSide) {
    Lab lab;
    EXPECT_THROW(lab.add({"192.0.2.1", "A", {}, "host", 1, false}), std::system_error);
    EXPECT_EQ(lab.add({"", "A", {}, "host", 1, false}).serial(), "A") << "the failure left nothing behind";
}

TEST(LabOfBoards, BesideAnotherTakesAddressesThatAreLeft) {
    Lab first;
    Lab second;
    EXPECT_NE(first.add().address(), second.add().address());
}

class OneBoard : public BoardWithClient {};

TEST_F(OneBoard, RefusesEverythingWhileItIsStopped) {
    board.stop();
    int value = 0;
    EXPECT_NE(setup.call(sim_ping_1, 1, value), RPC_SUCCESS);
    for (const std::uint16_t port : {std::uint16_t{111}, std::uint16_t{12345}})
        EXPECT_EQ(connectionError(board.address(), port), ECONNREFUSED);
    board.start();
    Client again(board, SIM_SETUP, "tcp");
    EXPECT_EQ(again.call(sim_ping_1, 1, value), RPC_SUCCESS);
    EXPECT_EQ(board.sessionCount(), 1U) << "sessions outlive a restart";
}

TEST_F(OneBoard, HasItsRequestsSelectedAndForgotten) {
    int value = 0;
    setup.call(sim_ping_1, 1, value);
    setup.call(sim_ping_1, 2, value);
    EXPECT_EQ(board.requests("setup").size(), 3U);
    EXPECT_EQ(argumentsOf(board.requestsOf("ping").at(1))["value"], 2);
    EXPECT_TRUE(board.requests("mdio").empty());
    board.forgetRequests();
    EXPECT_TRUE(board.requests().empty());
}

TEST_F(OneBoard, WaitsForARequestThatIsYetToCome) {
    std::thread caller([this] {
        int value = 0;
        setup.call(sim_ping_1, 77, value);
    });
    const Request request = board.waitFor(
        [](const Request& r) { return r.procedure == "ping" && argumentsOf(r)["value"] == 77; });
    EXPECT_EQ(request.transport, "tcp");
    caller.join();
}

TEST_F(OneBoard, ReportsARequestThatDoesNotCome) {
    try {
        board.waitFor([](const Request&) { return false; }, std::chrono::milliseconds(10));
        FAIL() << "nothing could match";
    } catch (const std::runtime_error& problem) {
        EXPECT_NE(std::string(problem.what()).find("open_connection x1"), std::string::npos)
            << problem.what();
    }
}

TEST_F(OneBoard, ServesSeveralThreadsWhileItIsInspected) {
    std::atomic<int> failures{0};
    std::vector<std::thread> callers;
    for (int i = 0; i < 3; ++i)
        callers.emplace_back([&] {
            Client own(board, SIM_SETUP, "udp");
            int value = 0;
            for (int n = 0; n < 200; ++n)
                if (own.call(sim_ping_1, n, value) != RPC_SUCCESS || value != n)
                    ++failures;
        });
    for (int n = 0; n < 50; ++n) {
        board.setRegister(Space::C45, 0, 0, 0x10010, static_cast<unsigned>(n));
        board.requests("setup");
    }
    for (std::thread& caller : callers)
        caller.join();
    EXPECT_EQ(failures, 0);
    EXPECT_EQ(board.requestsOf("ping").size(), 600U);
}

TEST(NetworkOfTheLab, HasNoWayOut) {
    ASSERT_TRUE(PrivateNetwork::entered());
    const Orvane::FileDescriptor socket(::socket(AF_INET, SOCK_DGRAM, 0));
    const sockaddr_in outside = endPoint("192.0.2.99", 9);
    EXPECT_EQ(::connect(socket.get(), reinterpret_cast<const sockaddr*>(&outside), sizeof outside), -1);
    EXPECT_EQ(errno, ENETUNREACH);
    EXPECT_THROW(PrivateNetwork::enter({}), std::logic_error);
}

TEST(NetworkOfTheLab, ReachesAllItsBoardsThroughOneNeighbour) {
    for (int i = 1; i <= 200; ++i)
        EXPECT_EQ(connectionError("10.83.7." + std::to_string(i), 111), ECONNREFUSED);
    std::ifstream neighbours("/proc/net/arp");
    std::string line;
    while (std::getline(neighbours, line))
        EXPECT_EQ(line.find("10.83.7."), std::string::npos) << line;
}

TEST(NetworkOfTheLab, RefusesConnectionsToAddressesWithoutBoard) {
    EXPECT_EQ(connectionError("10.83.77.77", 111), ECONNREFUSED);
}

} // namespace
} // namespace OrvaneSim
