// A thread that hears requests and sends what the test has it answer.
#include "tests/support/discovery/BoardSide.h"

#include "simulator/network/PrivateNetwork.h"
#include "tests/support/discovery/Group.h"

#include <arpa/inet.h>
#include <chrono>
#include <gtest/gtest.h>
#include <netinet/in.h>
#include <sys/socket.h>
#include <utility>

namespace OrvaneTest {

namespace {

constexpr char kMark[] = "mark ";

Orvane::FileDescriptor datagramSocket() {
    return Orvane::FileDescriptor(socket(AF_INET, SOCK_DGRAM, 0));
}

sockaddr_in endPoint(in_addr_t address, int port) {
    sockaddr_in result{};
    result.sin_family = AF_INET;
    result.sin_port = htons(static_cast<in_port_t>(port));
    result.sin_addr.s_addr = address;
    return result;
}

bool bindTo(int socket, const sockaddr_in& address) {
    return bind(socket, reinterpret_cast<const sockaddr*>(&address), sizeof address) == 0;
}

void sendTo(int socket, const std::string& text, const sockaddr_in& target) {
    EXPECT_EQ(sendto(socket, text.data(), text.size(), 0, reinterpret_cast<const sockaddr*>(&target),
                     sizeof target),
              static_cast<ssize_t>(text.size()));
}

} // namespace

// Everything that the board side does happens on its thread, because sockets belong to the network of the
// thread that opens them.
BoardSide::BoardSide(Answer answer) : answer_(std::move(answer)) {
    std::thread([this] { openSocket(); }).join();
    thread_ = std::thread([this] { serve(); });
    requests(); // the way is open before the first request is sent
}

BoardSide::~BoardSide() {
    shutdown(socket_.get(), SHUT_RDWR); // ends the wait for requests
    thread_.join();
}

// A mark sent after the requests arrives after them.
std::vector<std::string> BoardSide::requests() {
    const Orvane::FileDescriptor host = datagramSocket();
    std::unique_lock<std::mutex> guard(lock_);
    const int mark = ++sentMarks_;
    bool seen = false;
    for (int attempt = 0; attempt < 200 && !seen; ++attempt) {
        sendTo(host.get(), kMark + std::to_string(mark), endPoint(inet_addr("10.83.0.1"), kGroupPort));
        seen = changed_.wait_for(guard, std::chrono::milliseconds(100), [&] { return seenMark_ >= mark; });
    }
    EXPECT_TRUE(seen) << "nothing arrives at the board side";
    return requests_;
}

void BoardSide::openSocket() {
    OrvaneSim::PrivateNetwork::joinBoardSide();
    socket_ = datagramSocket();
    EXPECT_TRUE(bindTo(socket_.get(), endPoint(htonl(INADDR_ANY), kGroupPort)));
    ip_mreqn group{};
    group.imr_multiaddr.s_addr = inet_addr("239.255.255.38");
    group.imr_ifindex = OrvaneSim::PrivateNetwork::boardInterfaces().at(0);
    EXPECT_EQ(setsockopt(socket_.get(), IPPROTO_IP, IP_ADD_MEMBERSHIP, &group, sizeof group), 0);
}

void BoardSide::serve() {
    OrvaneSim::PrivateNetwork::joinBoardSide();
    char text[2048];
    for (;;) {
        sockaddr_in requester{};
        socklen_t length = sizeof requester;
        const ssize_t size =
            recvfrom(socket_.get(), text, sizeof text, 0, reinterpret_cast<sockaddr*>(&requester), &length);
        if (size <= 0)
            return;
        handle(std::string(text, static_cast<std::size_t>(size)), requester.sin_addr.s_addr);
    }
}

void BoardSide::handle(const std::string& text, unsigned requester) {
    int number = 0;
    {
        const std::lock_guard<std::mutex> guard(lock_);
        if (text.rfind(kMark, 0) == 0) {
            seenMark_ = std::stoi(text.substr(sizeof kMark - 1));
            changed_.notify_all();
            return;
        }
        requests_.push_back(text);
        number = static_cast<int>(requests_.size());
    }
    for (const Reply& reply : answer_(number)) {
        const Orvane::FileDescriptor board = datagramSocket();
        EXPECT_TRUE(bindTo(board.get(), endPoint(inet_addr(reply.address.c_str()), 0)));
        sendTo(board.get(), reply.text, endPoint(requester, kGroupPort));
    }
}

} // namespace OrvaneTest
