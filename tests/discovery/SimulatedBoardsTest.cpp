// Discovery of simulated boards, multicast and TCP.
#include "ov_sys/Interface/discovery/BoardFinder.h"
#include "ov_sys/Interface/discovery/TcpBoardResolver.h"
#include "simulator/lab/Lab.h"
#include "tests/support/discovery/Found.h"
#include "tests/support/discovery/Group.h"

#include <algorithm>
#include <chrono>
#include <gtest/gtest.h>
#include <thread>

namespace Orvane {
namespace {

using OrvaneTest::Found;
using OrvaneTest::kPatientMs;
using Records = std::vector<AddressResponse>;
using Words = std::vector<std::string>;

OrvaneSim::BoardOptions options(const std::string& serial, const std::string& address,
                                const std::vector<std::string>& devices = {}) {
    OrvaneSim::BoardOptions result;
    result.serial = serial;
    result.address = address;
    result.devices = devices;
    return result;
}

// Three boards, of which the third has device names of its own.
class SimulatedBoards : public testing::Test {
protected:
    // Searches until there are `count` boards, and gives them in the order of their names.
    static Records search(const std::string& word, unsigned count) {
        Found found;
        BoardFinder::find(word, found.list, kPatientMs, count - 1);
        Records records = found.records();
        std::sort(records.begin(), records.end());
        return records;
    }

    OrvaneSim::Lab lab;
    OrvaneSim::Board& first = lab.add(options("01A2", "10.83.0.1"));
    OrvaneSim::Board& second = lab.add(options("01A3", "10.83.0.2"));
    OrvaneSim::Board& third = lab.add(options("01A4", "10.83.0.3", {"Left:0", "Right:1"}));
};

TEST_F(SimulatedBoards, AreAllFoundByTheEmptyWord) {
    EXPECT_EQ(search("", 3), (Records{{"host 01a2:0 01a2:1", "10.83.0.1"},
                                      {"host 01a3:0 01a3:1", "10.83.0.2"},
                                      {"host left:0 right:1", "10.83.0.3"}}));
}

TEST_F(SimulatedBoards, AreFoundBySerialNumberInAnyLetterCase) {
    EXPECT_EQ(search("01a3", 1), (Records{{"host 01a3:0 01a3:1", "10.83.0.2"}}));
    EXPECT_EQ(second.discoveryRequests().at(0), "01a3");
}

TEST_F(SimulatedBoards, AreFoundByDeviceName) {
    EXPECT_EQ(search("RIGHT:1", 1), (Records{{"host left:0 right:1", "10.83.0.3"}}));
}

TEST_F(SimulatedBoards, KeepSilentForAWordThatIsNoneOfTheirs) {
    Found found;
    BoardFinder::find("01A9", found.list, 0, 0);
    EXPECT_EQ(found.records(), Records{});
}

TEST_F(SimulatedBoards, AreFoundThoughTheyStartDuringTheSearch) {
    second.stop();
    std::thread starter([this] {
        while (first.discoveryCount() == 0) // the search has begun
            std::this_thread::sleep_for(std::chrono::milliseconds(1));
        second.start();
    });
    EXPECT_EQ(search("01A3", 1), (Records{{"host 01a3:0 01a3:1", "10.83.0.2"}}));
    starter.join();
}

TEST_F(SimulatedBoards, TellTheirNameToAProbe) {
    AddressResponse board("before", "10.83.0.3");
    BoardFinder::find_ports("LEFT:0", board);
    EXPECT_EQ(board, AddressResponse("host left:0 right:1", "10.83.0.3"));
    EXPECT_EQ(third.probeRequests(), (Words{"LEFT:0"}));
}

TEST_F(SimulatedBoards, LeaveTheNameEmptyWhenTheProbeIsNotForThem) {
    AddressResponse board("before", "10.83.0.3");
    BoardFinder::find_ports("01A2", board);
    EXPECT_EQ(board, AddressResponse("", "10.83.0.3"));
}

TEST_F(SimulatedBoards, CutLongNamesAndTextBehindANul) {
    first.setDiscoveryReplies(Words{"01A2|" + std::string(295, 'x')});
    EXPECT_EQ(search("01A2", 1), (Records{{std::string(250, 'x'), "10.83.0.1"}}));
    first.setDiscoveryReplies(Words{std::string("01A2|b\0c", 8)});
    EXPECT_EQ(search("01A2", 1), (Records{{"b", "10.83.0.1"}}));
}

} // namespace
} // namespace Orvane
