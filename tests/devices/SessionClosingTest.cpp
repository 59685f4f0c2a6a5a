// Many sessions closed at once, and one closed by many.
#include "ov_sys/Interface/connection/BoardConnection.h"
#include "ov_sys/Interface/connection/HandleTurn.h"
#include "ov_sys/Interface/devices/HWInterface.h"
#include "ov_sys/Interface/foundation/AddressResponse.h"
#include "ov_sys/Interface/foundation/Exceptions.h"
#include "ov_sys/Interface/sessions/PhySession.h"
#include "tests/support/allocations/AllocationFailure.h"
#include "tests/support/devices/AdaptersOnBoard.h"
#include "tests/support/NamedParam.h"
#include "tests/support/SessionOnBoard.h"

#include <atomic>
#include <chrono>
#include <exception>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <mutex>
#include <orvane/lab_json.h>
#include <sys/wait.h>
#include <thread>
#include <unistd.h>

namespace OrvaneTest {
namespace {

using namespace std::chrono_literals;
using Orvane::Exceptions::InvalidSession;
using OrvaneSim::Fault;
using std::chrono::steady_clock;
using testing::Each;
using testing::ElementsAre;
using testing::SizeIs;

template <class Work>
steady_clock::duration timeOf(Work work) {
    const auto start = steady_clock::now();
    work();
    return steady_clock::now() - start;
}

// Boards of two devices each, all of them open adapters.
class ManyBoards : public testing::Test {
protected:
    void addBoards(unsigned count, int phys) {
        for (unsigned number = 0; number < count; ++number) {
            OrvaneSim::BoardOptions options;
            options.serial = "M" + std::to_string(number);
            boards.push_back(&lab.add(options));
            Orvane::AddressResponse found(boards.back()->nameLine(), boards.back()->address());
            std::vector<Orvane::AddressResponse*> records{&found};
            devices.updateSimpleDeviceList(records);
        }
        for (unsigned adapter = 0; adapter < devices.devices.size(); ++adapter) {
            devices.openAdapter(adapter);
            for (int phy = 0; phy < phys; ++phy)
                devices.getSimpleSession(static_cast<int>(adapter), phy);
        }
    }
    template <class Value>
    std::vector<std::size_t> ofEach(Value value) const {
        std::vector<std::size_t> values;
        for (OrvaneSim::Board* board : boards)
            values.push_back(value(*board));
        return values;
    }

    OrvaneSim::Lab lab;
    std::vector<OrvaneSim::Board*> boards;
    Orvane::HWInterface devices;
};

std::size_t closeRequests(const OrvaneSim::Board& board) {
    return board.requestsOf("close_connection").size();
}

TEST_F(ManyBoards, AreAllToldOnceWhenThreeHundredSessionsAreClosed) {
    addBoards(10, 15);
    EXPECT_LT(timeOf([&] { devices.close(); }), 15s); // one by one, each waits for its thread: 30 s
    EXPECT_THAT(ofEach(closeRequests), Each(30U));
    EXPECT_THAT(ofEach([](auto& board) { return board.sessionCount(); }), Each(0U));
    for (const auto& device : devices.devices) {
        EXPECT_THAT(device->sessions, SizeIs(0));
        EXPECT_EQ(device->isOpen, 0);
    }
}

TEST_F(ManyBoards, ThatAreSilentAreClosedTogether) {
    addBoards(8, 2);
    for (OrvaneSim::Board* board : boards)
        board->hang();
    EXPECT_LT(timeOf([&] { devices.close(); }), 12s); // one by one, 64 s
}

TEST_F(ManyBoards, HearOfTheirSessionsInTheOrderOfOpening) {
    addBoards(1, 6);
    const auto closedIds = [&] {
        std::vector<unsigned> ids;
        for (const auto& request : boards[0]->requestsOf("close_connection"))
            ids.push_back(argumentsOf(request).at("handle").get<unsigned>() & 0xFFU);
        return ids;
    };
    devices.closeAdapter(1);
    EXPECT_THAT(closedIds(), ElementsAre(7, 8, 9, 10, 11, 12));
}

TEST_F(ManyBoards, WhoseFirstSessionIsSlowToCloseHearOfTheNextATenthOfASecondLater) {
    addBoards(1, 2);
    std::thread closing;
    {
        Orvane::PhySession& first = *devices.devices[1]->sessions.front()->session;
        const Orvane::HandleTurn busy(*first.connection->getClient(Orvane::BoardConnection::SETUP));
        const auto start = steady_clock::now();
        closing = std::thread([&] { devices.closeAdapter(1); });
        boards[0]->waitFor([](const auto& request) { return request.procedure == "close_connection"; });
        EXPECT_GE(steady_clock::now() - start, 100ms);
    }
    closing.join();
    EXPECT_EQ(closeRequests(*boards[0]), 2U);
}

TEST_F(ManyBoards, AreLookedUpWhileOneIsClosed) {
    addBoards(2, 1);
    boards[0]->inject({"setup", "close_connection", Fault::Kind::LoseReply, -1});
    std::atomic<bool> closed{false};
    std::thread closing([&] {
        devices.close();
        closed = true;
    });
    boards[0]->waitFor([](const auto& request) { return request.procedure == "close_connection"; });
    EXPECT_EQ(devices.deviceIndex("M1:0"), 2);
    EXPECT_FALSE(closed); // it waits for the answer
    closing.join();
}

class ClosedTwiceAtOnce : public testing::Test, protected AdaptersOnBoard {
protected:
    template <class First, class Second>
    void together(First first, Second second) {
        std::thread other(first);
        second();
        other.join();
    }
};

TEST_F(ClosedTwiceAtOnce, AnAdapterEndsItsSessionsOnce) {
    for (int round = 0; round < 20; ++round) {
        devices.openAdapter(0);
        for (int phy = 0; phy < 3; ++phy)
            devices.getSimpleSession(0, phy);
        const auto close = [&] { EXPECT_EQ(devices.closeAdapter(0), 0U); };
        together(close, close);
        ASSERT_EQ(board.sessionCount(), 0U);
    }
    EXPECT_EQ(closeRequests(board), 60U);
}

TEST_F(ClosedTwiceAtOnce, ByAdapterAndAltogetherEndsItsSessionsOnce) {
    for (int round = 0; round < 20; ++round) {
        devices.openAdapter(0);
        devices.getSimpleSession(0, 5);
        together([&] { devices.close(); }, [&] { EXPECT_EQ(devices.closeAdapter(0), 0U); });
        ASSERT_EQ(board.sessionCount(), 0U);
    }
    EXPECT_EQ(closeRequests(board), 20U);
}

TEST_F(ClosedTwiceAtOnce, APhyIsClosedByOne) {
    for (int round = 0; round < 20; ++round) {
        devices.openAdapter(0);
        devices.getSimpleSession(0, 5);
        std::atomic<int> done{0};
        const auto close = [&] { done += devices.closePhyID("01A2:0", 0, 5) ? 1 : 0; };
        together(close, close);
        ASSERT_EQ(done, 1);
    }
}

TEST_F(ClosedTwiceAtOnce, AgainstAnAccessIsAnErrorOrAValue) {
    board.setRegister(OrvaneSim::Space::C45, 0, 5, 0x10002, 0xCAFE);
    std::atomic<bool> ended{false};
    std::atomic<int> reads{0};
    std::thread reading([&] {
        while (!ended)
            try {
                EXPECT_EQ(devices.readAdapter(0, 5, 1, 2), 0xCAFEU);
                ++reads;
            } catch (const std::exception&) { // closed
            }
    });
    for (int round = 0; round < 20; ++round) {
        devices.openAdapter(0);
        const int before = reads;
        while (reads == before)
            std::this_thread::yield();
        devices.closeAdapter(0);
    }
    ended = true;
    reading.join();
    EXPECT_EQ(board.sessionCount(), 0U);
}

struct WayToClose {
    std::string name;
    void (*close)(Orvane::HWInterface& devices);
};

const WayToClose kWaysToClose[] = {
    {"ByItself", [](auto& devices) { devices.closeAdapter(1); }},
    {"WithTheOthers", [](auto& devices) { devices.close(); }},
    {"WithTheOthersWithoutMemory",
     [](auto& devices) {
         const AllocationFailure first(0);
         devices.close();
         EXPECT_TRUE(first.happened());
     }},
};

class DeviceThatIsNotOpen : public testing::TestWithParam<WayToClose>, protected AdaptersOnBoard {};

TEST_P(DeviceThatIsNotOpen, KeepsItsSessionWhenItIsClosed) {
    devices.openAdapter(0);
    devices.getSimpleSession(0, 5);
    devices.devices[1]->getSession(5);
    GetParam().close(devices);
    EXPECT_THAT(devices.devices[1]->sessions, SizeIs(1));
    EXPECT_TRUE(devices.devices[1]->sessions.front()->session->isValid());
}

INSTANTIATE_TEST_SUITE_P(Closed, DeviceThatIsNotOpen, testing::ValuesIn(kWaysToClose), NamedParam());

class AtExit : public testing::Test, protected AdaptersOnBoard {
protected:
    AtExit() {
        for (unsigned adapter = 0; adapter < 2; ++adapter) {
            devices.openAdapter(adapter);
            devices.getSimpleSession(static_cast<int>(adapter), 5);
        }
    }
};

TEST_F(AtExit, EverySessionIsClosed) {
    devices.closeAtExit();
    EXPECT_EQ(closeRequests(board), 2U);
    for (const auto& device : devices.devices) {
        EXPECT_THAT(device->sessions, SizeIs(0));
        EXPECT_EQ(device->isOpen, 0);
    }
}

TEST_F(AtExit, OfAChildTheSessionsOfItsParentStayOpen) {
    const pid_t child = fork();
    if (child == 0) {
        devices.closeAtExit();
        _exit(7);
    }
    int status = 0;
    waitpid(child, &status, 0);
    EXPECT_TRUE(WIFEXITED(status) && WEXITSTATUS(status) == 7) << status;
    EXPECT_EQ(closeRequests(board), 0U);
    EXPECT_THAT(devices.devices[1]->sessions, SizeIs(1));
}

TEST_F(AtExit, ADeviceThatIsInUseIsLeftAfterTwoSeconds) {
    std::thread exiting;
    {
        const std::lock_guard<std::mutex> use(devices.devices[0]->lock);
        const auto start = steady_clock::now();
        exiting = std::thread([&] { devices.closeAtExit(); });
        board.waitFor([](const auto& request) { return request.procedure == "close_connection"; });
        EXPECT_GE(steady_clock::now() - start, 2s);
    }
    exiting.join();
    EXPECT_EQ(closeRequests(board), 1U);
    EXPECT_THAT(devices.devices[0]->sessions, SizeIs(1));
    EXPECT_THAT(devices.devices[1]->sessions, SizeIs(0));
}

class Adopted : public testing::Test, protected AdaptersOnBoard {
protected:
    // The board's own name, so that the session is for device 01A2:1.
    Orvane::PhySession* sessionOfDevice() {
        auto* session =
            new Orvane::PhySession(Orvane::AddressResponse("01A2:1", board.address()), simpleMode());
        return session;
    }
};

TEST_F(Adopted, TwiceByOneDeviceIsOneSession) {
    Orvane::PhySession* session = sessionOfDevice();
    EXPECT_TRUE(devices.setSession(session));
    EXPECT_TRUE(devices.setSession(session));
    EXPECT_THAT(devices.devices[1]->sessions, SizeIs(1));
    devices.close();
    EXPECT_EQ(closeRequests(board), 1U);
}

TEST_F(Adopted, ByAnotherDeviceIsRefused) {
    Orvane::PhySession* session = sessionOfDevice();
    AdaptersOf others{board};
    EXPECT_TRUE(devices.setSession(session));
    EXPECT_THROW(others.devices.setSession(session), InvalidSession);
    EXPECT_THAT(others.devices.devices[1]->sessions, SizeIs(0));
}

TEST_F(Adopted, OfTheDevicesOwnChangesNothing) {
    devices.openAdapter(1);
    Orvane::PhySession* own = devices.getSimpleSession(1, 5)->session.get();
    devices.devices[1]->setSession(own);
    EXPECT_THAT(devices.devices[1]->sessions, SizeIs(1));
}

} // namespace
} // namespace OrvaneTest
