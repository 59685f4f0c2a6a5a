// Memory that runs out, one allocation after the other, in what a program does with a board.
#include "tests/support/allocations/AllocationFailure.h"

#include "ov_sys/Interface/connection/BoardConnection.h"
#include "ov_sys/Interface/sessions/PhySession.h"
#include "tests/support/allocations/OpenDescriptors.h"
#include "tests/support/devices/AdaptersOnBoard.h"
#include "tests/support/OneBoard.h"
#include "tests/support/SessionOnBoard.h"
#include "tests/support/WrittenText.h"

#include <cstdio>
#include <cstdlib>
#include <gtest/gtest.h>
#include <memory>
#include <netdb.h>

namespace OrvaneTest {
namespace {

using Orvane::PhySession;
using OrvaneSim::Fault;

constexpr unsigned kMmd = 1;
constexpr unsigned kReadRegister = 0x8002;

// The devices of a board, as one program has them.
struct Program : AdaptersOf {
    using AdaptersOf::AdaptersOf;

    void open() {
        devices.openAdapter(kAdapter);
        devices.getSimpleSession(kAdapter, kPhy);
    }
    unsigned read() { return devices.readAdapter(kAdapter, kPhy, kMmd, kReadRegister); }
    PhySession& session() { return *devices.getSimpleSession(kAdapter, kPhy)->session; }

    std::unique_ptr<PhySession> notAdopted; // opened beside the devices
};

class FailedAllocation : public testing::Test, public OneBoard {
protected:
    FailedAllocation() {
        gethostbyname("localhost"); // glibc's resolver keeps its lock when its first allocation fails
        board.setRegister(OrvaneSim::Space::C45, kAdapter, kPhy, kMmd << 16U | kReadRegister, kValue);
    }

    void expectFreshProgramWorks() {
        Program fresh(board);
        fresh.open();
        EXPECT_EQ(fresh.read(), kValue);
    }

    // Does `work` on a program that `prepare` has brought so far, failing one allocation further each time;
    // after each, another program works.
    template <class Prepare, class Work>
    void sweep(Prepare prepare, Work work) {
        std::unique_ptr<Program> program;
        const auto renew = [&] {
            program.reset();
            program = std::make_unique<Program>(board);
            prepare(*program);
        };
        std::size_t failed = 0;
        const WrittenText written = textWritten([&] {
            renew();
            failed = failEachAllocation([&] { work(*program); },
                                        [&] {
                                            board.clearFaults();
                                            expectFreshProgramWorks();
                                            renew();
                                        });
            program.reset();
        });
        EXPECT_GT(failed, 0U);
        EXPECT_EQ(openDescriptorsOnce(before), before);
        if (HasFailure()) // which was shown among it
            std::puts(written.output.c_str());
    }

    const std::size_t before = openDescriptors();
};

void opened(Program& program) {
    program.open();
}

TEST_F(FailedAllocation, DuringTheOpeningLeavesNothingBehind) {
    sweep([](Program&) {}, opened);
}

TEST_F(FailedAllocation, DuringTheFirstReadIsAnErrorOrTheValue) {
    sweep([](Program& program) { program.devices.openAdapter(kAdapter); },
          [](Program& program) { EXPECT_EQ(program.read(), kValue); });
}

TEST_F(FailedAllocation, DuringABlockIsAnErrorOrTheValues) {
    sweep(opened, [](Program& program) {
        for (int i = 0; i < 3; ++i)
            program.devices.blockReadAdapter(kAdapter, kPhy, kMmd, kReadRegister);
        const unsigned* const values = program.devices.blockOperationExecuteAdapter(kAdapter, kPhy);
        ASSERT_NE(values, nullptr);
        EXPECT_EQ(program.devices.blockReadQueueSize(), 3U);
        for (int i = 0; i < 3; ++i)
            EXPECT_EQ(values[i], kValue);
    });
}

// A reply that cannot be decoded is a transport error at once: no wait for a lost one.
TEST_F(FailedAllocation, DuringARecoveryLeavesASessionThatHasAVerdict) {
    constexpr std::int64_t kCutTo = 20;
    sweep(
        [&](Program& program) {
            program.open();
            inject(Fault::Kind::TruncateReply, "mdio", "", 1, kCutTo);
        },
        [](Program& program) {
            const struct Verdict {
                const PhySession& session;
                ~Verdict() { EXPECT_NE(session.getSessionState(), PhySession::SESSION_ERROR_HANDLING); }
            } verdict{program.session()};
            EXPECT_EQ(program.read(), kValue);
        });
}

TEST_F(FailedAllocation, DuringTheSearchForABoardThatMovedLeavesNothingBehind) {
    unsigned moves = 0;
    sweep(
        [&](Program& program) {
            program.open();
            board.moveTo("10.83.90." + std::to_string(1 + moves++ % 250));
        },
        [](Program& program) { program.session().connection->updateAddress(); });
}

TEST_F(FailedAllocation, DuringADiscoveryLeavesAListThatWorks) {
    sweep([](Program&) {},
          [](Program& program) {
              program.devices.refreshDevices(kBoardSerial, "");
              EXPECT_EQ(program.devices.deviceIndex(std::string(kBoardName) + ":1"), 1);
          });
}

TEST_F(FailedAllocation, DuringTheProbeOfAnAddressIsNoNameOrTheName) {
    sweep([](Program&) {},
          [this](Program& program) {
              const std::unique_ptr<char, void (*)(void*)> name(program.devices.device(board.address()),
                                                                std::free);
              EXPECT_TRUE(name == nullptr || std::string_view(name.get()) == kBoardName) << name.get();
          });
}

TEST_F(FailedAllocation, DuringTheAdoptionOfASessionLeavesItToItsOwner) {
    sweep([this](Program& program) { program.notAdopted = openSession(board); },
          [](Program& program) {
              program.devices.devices[kAdapter]->setSession(program.notAdopted.get());
              static_cast<void>(program.notAdopted.release());
          });
}

TEST_F(FailedAllocation, DuringTheClosingLeavesNoSessionOpen) {
    sweep(
        [](Program& program) {
            for (const int phy : {4, 5, 6}) {
                program.devices.openAdapter(kAdapter);
                program.devices.getSimpleSession(kAdapter, phy);
            }
        },
        [](Program& program) {
            program.devices.close();
            const NoAllocationFailure looking;
            EXPECT_TRUE(program.devices.devices[kAdapter]->sessions.empty());
        });
}

} // namespace
} // namespace OrvaneTest
