// Ports and the PHYs that they can have.
#include "ov_sys/rack/Port.h"

#include "tests/support/rack/RackOnBoard.h"

namespace OrvaneTest {
namespace {

using namespace Orvane;

class RackPort : public testing::Test, protected RackOnBoard {};

TEST_F(RackPort, KnowsItsBoardItsNumberAndItsAccess) {
    const Port port = rack.open("board7:9", Access::shared(5).queueing());
    EXPECT_EQ(port.board(), "BOARD7");
    EXPECT_EQ(port.number(), 9U);
    EXPECT_EQ(port.access().mode, Access::Mode::Shared);
    EXPECT_EQ(port.access().key, 5U);
    EXPECT_TRUE(port.access().queues);
}

TEST_F(RackPort, OfMdioHasPhysFrom0To31) {
    const Port port = rack.open("board7:9");
    EXPECT_EQ(port.phy(0).id(), 0U);
    EXPECT_EQ(port.phy(31).id(), 31U);
    const Failure failure = failureOf([&] { port.phy(32); });
    EXPECT_EQ(failure.kind(), FailureKind::InvalidArgument);
    EXPECT_STREQ(failure.what(), "BOARD7:9: phy 32: invalid argument. PHYs of an MDIO port are 0 to 31.");
}

TEST_F(RackPort, OfSmbusHasDevicesFrom0To127) {
    const Port port = rack.open("board7:10");
    EXPECT_EQ(port.phy(0).id(), 0U);
    EXPECT_EQ(port.phy(127).id(), 127U);
    const Failure failure = failureOf([&] { port.phy(128); });
    EXPECT_EQ(failure.kind(), FailureKind::InvalidArgument);
    EXPECT_STREQ(failure.what(), "BOARD7:10: phy 128: invalid argument. SMBus devices are 0 to 127.");
}

TEST_F(RackPort, IsOfMdioUpTo9) {
    board.setRegister(Space::C45, 9, 31, 0x1EC010, 0xBEEF);
    EXPECT_EQ(rack.open("board7:9").phy(31).read({30, 0xC010}), 0xBEEFU);
    EXPECT_EQ(count("mdio_read"), 1U);
    rack.open("board7:6").phy(21).read({30, 0xC010});
    EXPECT_EQ(argumentsOf(board.requestsOf("mdio_read").back())["addresses"][0], 0xD51EC010U);
}

} // namespace
} // namespace OrvaneTest
