// Lists of registers: what is sent for them, and what is said of those that fail.
#include "tests/support/rack/RackOnBoard.h"

namespace OrvaneTest {
namespace {

using namespace Orvane;
using Json = nlohmann::ordered_json;
using Values = std::vector<std::uint32_t>;

class RackListRead : public testing::Test, protected RackOnBoard {
protected:
    RackListRead() {
        phy.open();
        for (std::uint32_t i = 0; i < 874; ++i)
            board.setRegister(Space::C45, 1, 3, 0x1E0000 + i, i ^ 0x5555);
    }
};

TEST_F(RackListRead, ListOfOneCallNamesEachRegisterOfThePhy) {
    EXPECT_EQ(phy.read({{30, 1}, {30, 7}}), (Values{0x5554, 0x5552}));
    const Json arguments = argumentsOf(board.requestsOf("mdio_read").at(0));
    EXPECT_EQ(arguments["addresses"], (Json{0x231E0001, 0x231E0007})); // PHY 3 of port 1
}

TEST_F(RackListRead, LongestListOfOneCallIsOneAndTheNextLongerTwo) {
    EXPECT_EQ(phy.read({30, 0}, 873).back(), 872U ^ 0x5555U);
    EXPECT_EQ(count("mdio_read"), 1U);
    EXPECT_EQ(phy.read({30, 0}, 874).back(), 873U ^ 0x5555U);
    EXPECT_EQ(count("mdio_read"), 3U);
}

TEST_F(RackListRead, ListOverTwoSpacesGoesByTheProceduresOfBoth) {
    board.setRegister(Space::C22, 1, 3, 2, 0xABCD);
    EXPECT_EQ(phy.read({{30, 1}, clause22(2)}), (Values{0x5554, 0xABCD}));
    EXPECT_EQ(count("mdio_read"), 1U);
    EXPECT_EQ(count("mdio_mixedblock_c22"), 1U);
}

TEST_F(RackListRead, RegisterThatDoesNotExistKeepsTheListFromBeingSent) {
    EXPECT_EQ(failureOf([&] { phy.read({{30, 1}, {32, 1}}); }).location(), "32.0x0001");
    EXPECT_EQ(failureOf([&] { phy.read({30, 0xFFFF}, 2); }).location(), "30.0x10000");
    EXPECT_EQ(count("mdio_read"), 0U);
}

TEST_F(RackListRead, RefusalNamesTheListByItsFirstRegister) {
    inject(Fault::Kind::ResultCode, "mdio", "mdio_read", 1, -5);
    const Failure failure = failureOf([&] { phy.read({{30, 1}, {30, 7}}); });
    EXPECT_EQ(failure.code(), -5);
    EXPECT_EQ(failure.operation(), "batch");
    EXPECT_EQ(failure.location(), "from 30.0x0001");
    EXPECT_EQ(failure.attempts(), 1U);
}

TEST_F(RackListRead, ShortAnswerIsAFailure) {
    inject(Fault::Kind::ReplyCount, "mdio", "mdio_read", 1, 9);
    EXPECT_EQ(failureOf([&] { phy.read({30, 0}, 10); }).kind(), FailureKind::BadReply);
}

TEST_F(RackListRead, LostAnswerIsAskedForAgainUnlessNothingMayBeSentTwice) {
    inject(Fault::Kind::LoseReply, "mdio", "mdio_read");
    EXPECT_EQ(phy.read({30, 0}, 2), (Values{0x5555, 0x5554}));
    inject(Fault::Kind::LoseReply, "mdio", "mdio_read");
    const Failure failure = failureOf([&] { phy.read({30, 0}, 2, within(300ms).once()); });
    EXPECT_EQ(failure.kind(), FailureKind::TimedOut);
    EXPECT_EQ(count("mdio_read"), 3U);
}

} // namespace
} // namespace OrvaneTest
