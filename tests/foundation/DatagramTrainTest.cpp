// Datagrams that travel together are the same as those that travel alone.
#include "ov_sys/Interface/foundation/DatagramTrain.h"

#include "ov_sys/Interface/foundation/FileDescriptor.h"

#include <arpa/inet.h>
#include <gtest/gtest.h>
#include <string>
#include <vector>

namespace OrvaneTest {
namespace {

using namespace Orvane;
using Datagrams = std::vector<std::string>;

class DatagramTravel : public testing::Test {
protected:
    // A socket of its own port on 127.0.0.1, whose receives do not wait.
    struct End {
        FileDescriptor socket{::socket(AF_INET, SOCK_DGRAM | SOCK_NONBLOCK | SOCK_CLOEXEC, 0)};
        sockaddr_in address{};

        End() {
            address.sin_family = AF_INET;
            address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
            auto* const place = reinterpret_cast<sockaddr*>(&address);
            socklen_t size = sizeof address;
            EXPECT_EQ(bind(socket.get(), place, size), 0);
            EXPECT_EQ(getsockname(socket.get(), place, &size), 0);
        }

        // Everything that has come, one by one.
        Datagrams arrived() const {
            Datagrams all;
            std::string room(65536, '\0');
            for (ssize_t length = 0; (length = recv(socket.get(), room.data(), room.size(), 0)) >= 0;)
                all.push_back(room.substr(0, static_cast<std::size_t>(length)));
            return all;
        }
    };

    End from;
    End to;
    DatagramTrain train;

    void add(const std::string& datagram) { add(datagram, to); }
    void add(const std::string& datagram, const End& peer) {
        train.add(from.socket.get(), peer.address, datagram.data(), datagram.size());
    }

    // Sends them all, and checks that the other end gets each by itself.
    void expectToArrive(const Datagrams& datagrams) {
        for (const std::string& one : datagrams)
            add(one);
        train.leave();
        EXPECT_EQ(to.arrived(), datagrams);
    }

    // Whether the system cuts trains; otherwise each datagram is sent by itself.
    bool trainsRun() const {
        int length = 0;
        socklen_t size = sizeof length;
        return getsockopt(from.socket.get(), IPPROTO_UDP, UDP_SEGMENT, &length, &size) == 0;
    }

    // How many datagrams each look at the other end finds.
    std::vector<std::size_t> foundAtEachLook() const {
        std::vector<std::size_t> counts;
        ArrivedTrain arrivals;
        char* bytes = nullptr;
        std::size_t length = 0;
        while (arrivals.take(to.socket.get()))
            for (counts.push_back(0); arrivals.next(bytes, length);)
                ++counts.back();
        return counts;
    }
};

TEST_F(DatagramTravel, LeavesNothingBeforeItIsTold) {
    add("one");
    add("two");
    EXPECT_EQ(to.arrived(), Datagrams{});
    train.leave();
    EXPECT_EQ(to.arrived(), (Datagrams{"one", "two"}));
    train.leave();
    EXPECT_EQ(to.arrived(), Datagrams{}); // once
}

TEST_F(DatagramTravel, KeepsOrderAndLengthOfEveryDatagram) {
    expectToArrive({"a", "bb", "cc", "dd", "e", "ff", "", "g", "", "hhhh", "iiii", "jjj", "kkkk"});
}

TEST_F(DatagramTravel, TakesMoreThanTheSystemDoesAtOnce) {
    Datagrams many;
    for (int i = 0; i < 200; ++i)
        many.push_back("datagram " + std::to_string(1000 + i));
    expectToArrive(many);
    expectToArrive({std::string(25000, 'a'), std::string(25000, 'b'), std::string(25000, 'c')});
    expectToArrive({"first", std::string(60001, 'd'), "last"});
    expectToArrive({std::string(30000, 'e'), std::string(30000, 'f'), "g"});
}

TEST_F(DatagramTravel, ReachesEachPeerByItself) {
    const End other;
    add("one");
    add("two", other);
    add("six");
    train.leave();
    EXPECT_EQ(to.arrived(), (Datagrams{"one", "six"}));
    EXPECT_EQ(other.arrived(), Datagrams{"two"});
}

TEST_F(DatagramTravel, ComesFromTheSocketThatItWasGivenTo) {
    const End second;
    add("one");
    train.add(second.socket.get(), to.address, "two", 3);
    train.leave();
    std::vector<std::uint16_t> ports;
    ArrivedTrain arrivals;
    while (arrivals.take(to.socket.get()))
        ports.push_back(arrivals.from().sin_port);
    EXPECT_EQ(ports, (std::vector<std::uint16_t>{from.address.sin_port, second.address.sin_port}));
}

TEST_F(DatagramTravel, ToAPortWithoutASocketLosesNothingElse) {
    sockaddr_in nobody{};
    {
        const End gone;
        nobody = gone.address;
    }
    train.add(from.socket.get(), nobody, "one", 3);
    add("two");
    train.leave();
    EXPECT_EQ(to.arrived(), Datagrams{"two"});
}

TEST_F(DatagramTravel, OfOneLengthArrivesInOneGoWhereItIsExpected) {
    if (!trainsRun())
        GTEST_SKIP() << "needs a system that cuts trains";
    ArrivedTrain::expect(to.socket.get());
    for (const char* const one : {"one", "two", "six", "at", "ten"})
        add(one);
    train.leave();
    EXPECT_EQ(foundAtEachLook(),
              (std::vector<std::size_t>{4, 1})); // what follows a shorter one is a train anew
}

TEST_F(DatagramTravel, IsCutUpAtTheLimitsOfTheSystem) {
    if (!trainsRun())
        GTEST_SKIP() << "needs a system that cuts trains";
    ArrivedTrain::expect(to.socket.get());
    for (int i = 0; i < 65; ++i)
        add("one");
    train.leave();
    EXPECT_EQ(foundAtEachLook(), (std::vector<std::size_t>{64, 1}));
    for (int i = 0; i < 4; ++i)
        add(std::string(20000, 'a'));
    train.leave();
    EXPECT_EQ(foundAtEachLook(), (std::vector<std::size_t>{3, 1}));
}

TEST_F(DatagramTravel, TellsOfADatagramWithoutBytes) {
    add("");
    train.leave();
    ArrivedTrain arrivals;
    ASSERT_TRUE(arrivals.take(to.socket.get()));
    char* bytes = nullptr;
    std::size_t length = 1;
    EXPECT_TRUE(arrivals.next(bytes, length));
    EXPECT_EQ(length, 0U);
    EXPECT_FALSE(arrivals.next(bytes, length));
    EXPECT_FALSE(arrivals.take(to.socket.get()));
    EXPECT_FALSE(arrivals.next(bytes, length));
}

} // namespace
} // namespace OrvaneTest
