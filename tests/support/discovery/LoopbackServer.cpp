// A thread that accepts one connection and says its part.
#include "tests/support/discovery/LoopbackServer.h"

#include <cstdint>
#include <gtest/gtest.h>
#include <netinet/in.h>
#include <sys/socket.h>
#include <utility>

namespace OrvaneTest {

LoopbackServer::LoopbackServer(Script script, int host, int port) : socket_(listenOnLoopback(host, port, 1)) {
    thread_ = std::thread([this, play = std::move(script)] {
        const Orvane::FileDescriptor connection(accept(socket_.get(), nullptr, nullptr));
        if (connection)
            play(connection.get());
    });
}

LoopbackServer::~LoopbackServer() {
    shutdown(socket_.get(), SHUT_RDWR); // ends an accept that nobody has answered
    join();
}

int LoopbackServer::port() const {
    return boundPort(socket_.get());
}

void LoopbackServer::join() {
    if (thread_.joinable())
        thread_.join();
}

Orvane::FileDescriptor listenOnLoopback(int host, int port, int backlog) {
    Orvane::FileDescriptor listener(socket(AF_INET, SOCK_STREAM, 0));
    const int on = 1;
    setsockopt(listener.get(), SOL_SOCKET, SO_REUSEADDR, &on, sizeof on);
    sockaddr_in here{};
    here.sin_family = AF_INET;
    here.sin_port = htons(static_cast<std::uint16_t>(port));
    here.sin_addr.s_addr = htonl(0x7F000000U + static_cast<unsigned>(host));
    EXPECT_EQ(bind(listener.get(), reinterpret_cast<const sockaddr*>(&here), sizeof here), 0);
    EXPECT_EQ(listen(listener.get(), backlog), 0);
    return listener;
}

int boundPort(int socket) {
    sockaddr_in here{};
    socklen_t length = sizeof here;
    EXPECT_EQ(getsockname(socket, reinterpret_cast<sockaddr*>(&here), &length), 0);
    return ntohs(here.sin_port);
}

std::string receive(int connection, std::size_t size) {
    std::string text(size, '\0');
    const ssize_t received = recv(connection, text.data(), size, MSG_WAITALL);
    text.resize(received < 0 ? 0 : static_cast<std::size_t>(received));
    return text;
}

std::string receiveToEnd(int connection) {
    std::string all;
    for (std::string byte = receive(connection, 1); !byte.empty(); byte = receive(connection, 1))
        all += byte;
    return all;
}

void sendText(int connection, const std::string& text) {
    EXPECT_EQ(send(connection, text.data(), text.size(), MSG_NOSIGNAL), static_cast<ssize_t>(text.size()));
}

} // namespace OrvaneTest
