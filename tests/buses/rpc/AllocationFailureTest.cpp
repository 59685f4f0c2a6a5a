// Memory that runs out in the calls of a session.
#include "tests/support/allocations/AllocationFailure.h"

#include "ov_sys/Interface/buses/rpc/RPCMDIO.h"
#include "ov_sys/Interface/buses/rpc/RPCSetup.h"
#include "tests/support/allocations/OpenDescriptors.h"
#include "tests/support/SessionOnBoard.h"
#include "tests/support/WrittenText.h"

#include <gtest/gtest.h>

namespace Orvane {
namespace {

using namespace OrvaneTest;

class FailedAllocation : public testing::Test, public SessionOnBoard {
protected:
    FailedAllocation() {
        board.setRegister(OrvaneSim::Space::C45, kPort, kPhy, kRegister, kValue);
        board.setCommand("uname", {3, "Linux", "", 0});
    }

    // Fails each allocation of `call` in turn; after each the session works.
    template <class Call>
    std::size_t sweep(Call call) {
        std::size_t failed = 0;
        textWritten([&] {
            failed = failEachAllocation(call, [&] {
                EXPECT_TRUE(session.isValid());
                EXPECT_NO_THROW(call());
            });
        });
        EXPECT_TRUE(session.isValid());
        return failed;
    }
};

TEST_F(FailedAllocation, DuringACommandEndsNeitherStreamNorSession) {
    const std::size_t before = openDescriptors();
    EXPECT_GT(sweep([this] {
                  int exitCode = -1;
                  std::string output;
                  std::string errors;
                  Setup::RPC::runCommand(session, "uname", 1, exitCode, output, errors);
                  EXPECT_EQ(exitCode, 3);
                  EXPECT_EQ(output, "Linux");
              }),
              0U);
    EXPECT_EQ(openDescriptorsOnce(before), before);
}

TEST_F(FailedAllocation, DuringABlockEndsTheBlockOnly) {
    EXPECT_GT(sweep([this] {
                  const auto values = MDIO::RPC::blockRead(session, {kRegister, kRegister});
                  EXPECT_EQ(values, (std::vector<u_int>{kValue, kValue}));
              }),
              1U);
}

} // namespace
} // namespace Orvane
