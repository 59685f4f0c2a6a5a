// Calls of one thread while another drops the handles that they go through.
#include "ov_sys/Interface/buses/rpc/RPCMDIO.h"
#include "ov_sys/Interface/foundation/Exceptions.h"
#include "tests/support/SessionOnBoard.h"
#include "tests/support/WrittenText.h"

#include <atomic>
#include <gtest/gtest.h>
#include <thread>

namespace Orvane {
namespace {

using namespace OrvaneTest;

constexpr int kResets = 10000;

class ResetStorm : public testing::Test, public SessionOnBoard {
protected:
    ResetStorm() { board.setRegister(OrvaneSim::Space::C45, kPort, kPhy, kRegister, kValue); }

    // One read, which gives the right value or one of the exceptions that calls are documented to throw. A
    // session that died of it is revived.
    void readOnce() {
        try {
            wrong += MDIO::RPC::read(session, kRegister) == kValue ? 0 : 1;
            ++good;
        } catch (const Exceptions::InvalidRPCClient&) {
            ++failed;
        } catch (const Exceptions::InvalidSession&) {
            ++failed;
        } catch (const Exceptions::NoDevice&) {
            ++failed;
        } catch (const Exceptions::Standard& problem) {
            wrong += std::string(problem.what()) == "Remote error." ? 0 : 1;
            ++failed;
        } catch (...) {
            ++wrong;
        }
        if (session.getSessionState() != PhySession::SESSION_VALID)
            session.setSessionState(PhySession::SESSION_VALID);
    }

    // Resets all clients, and every hundredth time makes them anew and lets the readers get a word in.
    void storm() {
        for (int i = 1; i <= kResets; ++i) {
            session.connection->resetClients();
            if (i % 100 == 0) {
                session.connection->updateClients();
                for (const int before = good + failed; good + failed == before;)
                    std::this_thread::yield();
            }
        }
    }

    void rageAmong(int readers) {
        std::atomic<bool> over{false};
        std::vector<std::thread> threads;
        for (int i = 0; i < readers; ++i)
            threads.emplace_back([&] {
                while (!over)
                    readOnce();
            });
        storm();
        over = true;
        for (std::thread& thread : threads)
            thread.join();
    }

    void expectHealth() {
        EXPECT_EQ(wrong, 0);
        EXPECT_GE(good + failed, kResets / 100);
        session.connection->updateClients();
        session.setSessionState(PhySession::SESSION_VALID);
        EXPECT_EQ(MDIO::RPC::read(session, kRegister), kValue);
    }

    std::atomic<int> good{0};
    std::atomic<int> failed{0};
    std::atomic<int> wrong{0};
};

TEST_F(ResetStorm, OfTenThousandResetsHarmsNoReader) {
    textWritten([&] { rageAmong(1); });
    expectHealth();
}

TEST_F(ResetStorm, HarmsNoneOfSeveralReadersBesideTheKeepAliveThread) {
    textWritten([&] {
        session.startKeepAlive();
        rageAmong(3);
        session.stopKeepAlive();
    });
    expectHealth();
}

} // namespace
} // namespace Orvane
