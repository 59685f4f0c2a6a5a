// A test of a program that uses the library: the board, its network and its faults are in this process.
#include <cstdio>
#include <exception>
#include <gtest/gtest.h>
#include <orvane/lab.h>
#include <orvane/orvane.hpp>
#include <string>

namespace {

constexpr unsigned kPhy = 3;
constexpr unsigned kMmd = 30;
constexpr unsigned kRegister = 0xC010;
constexpr unsigned kAddress = kMmd << 16 | kRegister;

OrvaneSim::BoardOptions named(const std::string& serial) {
    OrvaneSim::BoardOptions options;
    options.serial = serial;
    return options;
}

TEST(RegisterRead, givesTheValueAlthoughTheFirstReplyIsLost) {
    OrvaneSim::Lab lab;
    OrvaneSim::Board& board = lab.add(named("OV0001"));
    board.setRegister(OrvaneSim::Space::C45, 0, kPhy, kAddress, 0xCAFE);
    Orvane::HWInterface boards;
    ASSERT_TRUE(boards.open("OV0001:0"));
    const auto adapter = static_cast<unsigned>(boards.deviceIndex("OV0001:0"));

    board.inject({"mdio", "mdio_read", OrvaneSim::Fault::Kind::LoseReply, 1, 0});
    EXPECT_EQ(boards.readAdapter(adapter, kPhy, kMmd, kRegister), 0xCAFEU);

    const OrvaneSim::Request asked =
        board.waitFor([](const OrvaneSim::Request& request) { return request.procedure == "mdio_read"; });
    const std::string addresses = R"("addresses":[)" + std::to_string(kPhy << 24 | kAddress) + "]";
    EXPECT_NE(asked.arguments().find(addresses), std::string::npos) << asked.arguments();
    EXPECT_EQ(board.counts("mdio_read").lostReplies, 1U);
    EXPECT_EQ(board.executions("mdio_read"), 2U) << "once for the lost reply, once more for the answer";
}

} // namespace

int main(int argc, char** argv) {
    testing::InitGoogleTest(&argc, argv);
    try {
        OrvaneSim::PrivateNetwork::enter({}); // nothing that this test sends can leave the machine
    } catch (const std::exception& problem) {
        std::fprintf(stderr, "%s\n", problem.what());
        return 1;
    }
    return RUN_ALL_TESTS();
}
