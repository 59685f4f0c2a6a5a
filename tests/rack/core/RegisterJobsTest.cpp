// Register accesses of a flight: how often they are sent, and where those failed that never began.
// began.
#include "ov_sys/rack/core/RegisterJobs.h"

#include "ov_sys/rack/Flight.h"
#include "tests/support/rack/RackOnBoard.h"

namespace OrvaneTest {
namespace {

using namespace Orvane;

class RackRegisterJobs : public testing::Test, protected RackOnBoard {
protected:
    Flight flight;

    RackRegisterJobs() { phy.open(); }
};

TEST_F(RackRegisterJobs, BatchThatNeverBeganIsNamedByItsFirstOperation) {
    std::optional<Flight> brief(std::in_place);
    Batch batch;
    batch.read({1, 7});
    batch.write({1, 8}, 1);
    const auto mdio = brief->run(phy, batch);
    const auto smbus = brief->run(rack.open("BOARD7:10").phy(3), batch);
    brief.reset();
    for (const Pending<BatchResult>& one : {mdio, smbus}) {
        ASSERT_TRUE(one.get().failure());
        EXPECT_EQ(one.get().failure()->kind(), FailureKind::Cancelled);
        EXPECT_EQ(one.get().failure()->code(), 0);
        EXPECT_EQ(one.get().failure()->attempts(), 0U);
        EXPECT_EQ(one.get().failure()->location(), "from 1.0x0007");
        EXPECT_EQ(one.get().outcome(0).state, OperationOutcome::State::NotSent);
        EXPECT_EQ(one.get().outcome(0).code, 0);
    }
}

TEST_F(RackRegisterJobs, ReadsAreRepeatedWhateverIsSaidOfWritesAndWritesWhateverIsSaidOfReads) {
    for (const unsigned times : {1U, 2U, Repeat::kUpToTheDeadline}) {
        inject(Fault::Kind::LoseReply, "mdio", "mdio_read");
        EXPECT_EQ(flight.read(phy, {1, 1}, Within{}.repeating({times, 0})).get(), 0U);
        inject(Fault::Kind::LoseReply, "mdio", "mdio_read");
        EXPECT_EQ(flight.read(phy, {1, 1}, 2, Within{}.repeating({times, 0})).get().size(), 2U);
        inject(Fault::Kind::LoseReply, "mdio", "mdio_write");
        EXPECT_EQ(flight.write(phy, {1, 1}, 0, Within{}.repeating({0, times})).get(), 0U);
    }
}

} // namespace
} // namespace OrvaneTest
