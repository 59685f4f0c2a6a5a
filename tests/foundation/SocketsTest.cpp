// The TCP socket wrappers.
#include "ov_sys/Interface/foundation/Sockets.h"

#include "tests/support/NoStandardInput.h"

#include <arpa/inet.h>
#include <cerrno>
#include <fcntl.h>
#include <gtest/gtest.h>
#include <map>
#include <netinet/in.h>
#include <string>
#include <sys/resource.h>
#include <sys/socket.h>
#include <thread>
#include <unistd.h>

namespace Orvane {
namespace {

// No new descriptor can be had while this lives.
class NoDescriptorsLeft {
public:
    NoDescriptorsLeft() {
        getrlimit(RLIMIT_NOFILE, &before_);
        rlimit none = before_;
        none.rlim_cur = 0;
        setrlimit(RLIMIT_NOFILE, &none);
    }
    NoDescriptorsLeft(const NoDescriptorsLeft&) = delete;
    NoDescriptorsLeft& operator=(const NoDescriptorsLeft&) = delete;
    ~NoDescriptorsLeft() { setrlimit(RLIMIT_NOFILE, &before_); }

private:
    rlimit before_{};
};

int option(int socket, int name) {
    int value = -1;
    socklen_t length = sizeof value;
    getsockopt(socket, SOL_SOCKET, name, &value, &length);
    return value;
}

// A TCP socket that listens on 127.0.0.1, closed at the end.
class Listener {
public:
    Listener() : socket_(::socket(AF_INET, SOCK_STREAM, 0)) {
        sockaddr_in any{};
        any.sin_family = AF_INET;
        any.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
        EXPECT_EQ(bind(socket_, reinterpret_cast<sockaddr*>(&any), sizeof any), 0);
        EXPECT_EQ(listen(socket_, 1), 0);
    }
    Listener(const Listener&) = delete;
    Listener& operator=(const Listener&) = delete;
    ~Listener() { close(socket_); }

    int port() const {
        sockaddr_in bound{};
        socklen_t length = sizeof bound;
        EXPECT_EQ(getsockname(socket_, reinterpret_cast<sockaddr*>(&bound), &length), 0);
        return ntohs(bound.sin_port);
    }

private:
    int socket_;
};

TEST(CreateTcpSocket, GivesAnIPv4StreamSocket) {
    const int created = create_tcp_socket();
    ASSERT_GE(created, 0);
    EXPECT_EQ(option(created, SO_DOMAIN), AF_INET);
    EXPECT_EQ(option(created, SO_TYPE), SOCK_STREAM);
    EXPECT_EQ(fcntl(created, F_GETFD), FD_CLOEXEC);
    close(created);
}

TEST(CreateTcpSocket, GivesDescriptor0WithoutStandardInput) {
    const OrvaneTest::NoStandardInput closed;
    const int created = create_tcp_socket();
    EXPECT_EQ(created, 0);
    close(created);
}

TEST(CreateTcpSocket, TellsTheErrorWhenThereIsNoDescriptorLeft) {
    testing::internal::CaptureStderr();
    int created = 0;
    {
        const NoDescriptorsLeft limit;
        created = create_tcp_socket();
    }
    EXPECT_EQ(testing::internal::GetCapturedStderr(), "socket failed with error: Too many open files\n");
    EXPECT_EQ(created, -1);
}

TEST(ConnectSocket, ReachesTheListenerAtAddressAndPort) {
    const Listener listener;
    const int created = create_tcp_socket();
    EXPECT_EQ(connect_socket(created, "127.0.0.1", listener.port()), 0);
    sockaddr_in peer{};
    socklen_t length = sizeof peer;
    EXPECT_EQ(getpeername(created, reinterpret_cast<sockaddr*>(&peer), &length), 0);
    EXPECT_EQ(ntohs(peer.sin_port), listener.port());
    close(created);
}

TEST(ConnectSocket, CountsOnlyTheLow16BitsOfThePort) {
    const Listener listener;
    const int created = create_tcp_socket();
    EXPECT_EQ(connect_socket(created, "127.0.0.1", listener.port() + 0x10000), 0);
    close(created);
}

TEST(ConnectSocket, GivesTheFailureOfConnect) {
    const int created = create_tcp_socket();
    const int taken = Listener().port(); // free again here
    EXPECT_EQ(connect_socket(created, "127.0.0.1", taken), -1);
    EXPECT_EQ(errno, ECONNREFUSED);
    close(created);
}

TEST(CloseSocket, ClosesTheSocket) {
    const int created = create_tcp_socket();
    ASSERT_GE(created, 0);
    close_socket(created);
    EXPECT_EQ(fcntl(created, F_GETFD), -1);
    EXPECT_EQ(errno, EBADF);
}

TEST(CloseSocket, DoesNothingForMinusOne) {
    errno = 0;
    close_socket(-1);
    EXPECT_EQ(errno, 0);
}

TEST(GetLastError, IsTheTextOfErrno) {
    const std::map<int, std::string> texts = {{0, "Success"},
                                              {EPERM, "Operation not permitted"},
                                              {EAGAIN, "Resource temporarily unavailable"},
                                              {ECONNREFUSED, "Connection refused"},
                                              {4711, "Unknown error 4711"}};
    for (const auto& [number, text] : texts) {
        errno = number;
        EXPECT_EQ(get_last_error(), text);
    }
}

TEST(GetLastError, OfOneThreadStaysWhenAnotherThreadAsks) {
    errno = 4711;
    const char* const text = get_last_error();
    std::thread([] {
        errno = 4712;
        EXPECT_STREQ(get_last_error(), "Unknown error 4712");
    }).join();
    EXPECT_STREQ(text, "Unknown error 4711");
}

} // namespace
} // namespace Orvane
