// Memory that runs out while handles, clients and connections are made and used.
#include "tests/support/allocations/AllocationFailure.h"

#include "ov_sys/Interface/connection/BoardConnection.h"
#include "ov_sys/Interface/connection/RPCHandle.h"
#include "ov_sys/Interface/rpc_protocol/Programs.h"
#include "ov_sys/Interface/rpc_protocol/Stubs.h"
#include "tests/support/allocations/OpenDescriptors.h"
#include "tests/support/OneBoard.h"
#include "tests/support/WrittenText.h"

#include <gtest/gtest.h>
#include <set>

namespace Orvane {
namespace {

using namespace OrvaneTest;

class FailedAllocation : public testing::TestWithParam<const char*>, public OneBoard {
protected:
    // Fails each allocation of `make` in turn; afterwards nothing may be left open. What it writes is not
    // shown.
    template <class Make>
    void expectNothingLeftOpenBy(Make make) {
        static_cast<void>(openDescriptors()); // what is opened once and kept
        std::size_t failed = 0;
        const std::size_t before = openDescriptors();
        textWritten([&] { failed = failEachAllocation(make, [] {}); });
        EXPECT_GT(failed, 0U);
        EXPECT_EQ(openDescriptorsOnce(before), before);
    }

    const std::string host = board.address();
};

TEST_P(FailedAllocation, DuringTheMakingOfAHandleLeavesNothingOpen) {
    expectNothingLeftOpenBy([this] {
        const auto handle = RPCHandle::create(host, Programs::Setup, Programs::Version, GetParam());
        EXPECT_TRUE(handle == nullptr || handle->get()->cl_auth != nullptr);
    });
}

TEST_P(FailedAllocation, DuringTheConnectingOfAClientLeavesItUnconnectedOrWorking) {
    const std::string protocol = GetParam();
    expectNothingLeftOpenBy([&] {
        ThreadSafeRPCClient client(Programs::Setup, Programs::Version, protocol, "setup", "");
        try {
            client.update(host);
        } catch (const std::exception&) {
            EXPECT_EQ(client.client, nullptr);
            EXPECT_EQ(client.pin(), nullptr);
        }
    });
}

TEST_P(FailedAllocation, DuringACallDoesNotSpoilTheHandle) {
    const auto handle = RPCHandle::create(host, Programs::Setup, Programs::Version, GetParam());
    ASSERT_NE(handle, nullptr);
    std::set<clnt_stat> seen;
    const auto ping = [&] {
        int answer = 0;
        const clnt_stat status = ping_1(4711, &answer, handle->get());
        EXPECT_EQ(answer, status == RPC_SUCCESS ? 4711 : 0);
        return status;
    };
    const std::size_t failed = failEachAllocation(
        [&] {
            const clnt_stat status = ping();
            const NoAllocationFailure noting;
            seen.insert(status);
        },
        [&] { EXPECT_EQ(ping(), RPC_SUCCESS); });
    for (const clnt_stat status : seen)
        EXPECT_TRUE(status == RPC_SUCCESS || status == RPC_CANTENCODEARGS || status == RPC_CANTDECODERES)
            << status;
    EXPECT_EQ(failed == 0, seen.size() == 1);
}

INSTANTIATE_TEST_SUITE_P(Transports, FailedAllocation, testing::Values("udp", "tcp"));

using FailedAllocationOfAConnection = FailedAllocation;

TEST_P(FailedAllocationOfAConnection, DuringItsConstructionLeavesNothingOpen) {
    expectNothingLeftOpenBy([this] { BoardConnection connection(record()); });
}

TEST_P(FailedAllocationOfAConnection, DuringAPingEndsInAnErrorOrSuccess) {
    static_cast<void>(openDescriptors()); // what is opened once and kept
    const std::size_t connected = openDescriptors() + 7;
    BoardConnection connection(record());
    ASSERT_EQ(openDescriptorsOnce(connected), connected); // six sockets, and the board's end of the stream
    expectNothingLeftOpenBy([&] { connection.testServer(); });
    EXPECT_GE(connection.testServer(), 0);
}

INSTANTIATE_TEST_SUITE_P(Whole, FailedAllocationOfAConnection, testing::Values(""));

} // namespace
} // namespace Orvane
