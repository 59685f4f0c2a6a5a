// Threads, resets and pings on handles that no global lock of libtirpc puts into an order.
#include "ov_sys/Interface/buses/rpc/RPCMDIO.h"
#include "ov_sys/Interface/buses/rpc/RPCSetup.h"
#include "ov_sys/Interface/connection/BoardConnection.h"
#include "ov_sys/Interface/foundation/Exceptions.h"
#include "tests/support/faults_unlocked/ClientWithoutLocks.h"
#include "tests/support/OpenSession.h"
#include "tests/support/WrittenText.h"

#include <atomic>
#include <gtest/gtest.h>
#include <thread>

namespace Orvane {
namespace {

using OrvaneFaults::inProcessValue;
using OrvaneTest::simpleOpenMode;
using OrvaneTest::textWritten;

constexpr unsigned kThreads = 16;
constexpr unsigned kCalls = 2000;

class UnlockedHandles : public testing::Test {
protected:
    UnlockedHandles() : session(AddressResponse("board7", OrvaneFaults::kInProcessHost), simpleOpenMode()) {
        Setup::openConnection(session);
    }

    // One read: the right value, or an exception that calls are documented to throw.
    void readOnce(unsigned address) {
        try {
            const bool right =
                MDIO::RPC::read(session, address) == inProcessValue(address | session.mdioAddressPrefix);
            ++(right ? good : wrong);
        } catch (const Exceptions::Standard& problem) {
            ++(problem.text == "Remote error." ? failed : wrong);
        } catch (const Exceptions::InvalidRPCClient&) {
            ++failed;
        } catch (const Exceptions::InvalidSession&) {
            ++failed;
        } catch (const Exceptions::NoDevice&) {
            ++failed;
        }
        if (session.getSessionState() != PhySession::SESSION_VALID)
            session.setSessionState(PhySession::SESSION_VALID);
    }

    void readFromAllThreads() {
        std::vector<std::thread> threads;
        for (unsigned thread = 0; thread < kThreads; ++thread)
            threads.emplace_back([this, thread] {
                for (unsigned i = 0; i < kCalls; ++i)
                    readOnce((thread * kCalls + i) & 0x1FFFFFU);
            });
        for (std::thread& thread : threads)
            thread.join();
    }

    PhySession session;
    std::atomic<unsigned> good{0};
    std::atomic<unsigned> failed{0};
    std::atomic<unsigned> wrong{0};
};

TEST_F(UnlockedHandles, ServeSixteenThreadsBesideTheKeepAliveThread) {
    textWritten([&] {
        session.startKeepAlive();
        readFromAllThreads();
        session.stopKeepAlive();
    });
    EXPECT_EQ(good, kThreads * kCalls);
    EXPECT_EQ(wrong, 0U);
}

TEST_F(UnlockedHandles, ThatAreResetAllTheTimeGiveNoWrongAnswer) {
    std::atomic<bool> over{false};
    textWritten([&] {
        session.startKeepAlive();
        std::thread resetter([&] {
            while (!over) {
                session.connection->resetClients();
                session.connection->updateClients();
            }
        });
        readFromAllThreads();
        over = true;
        resetter.join();
        session.stopKeepAlive();
    });
    EXPECT_EQ(wrong, 0U);
    EXPECT_EQ(good + failed, kThreads * kCalls);
    EXPECT_GT(good, 0U);
}

} // namespace
} // namespace Orvane
