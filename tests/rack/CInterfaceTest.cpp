// The C interface, called as a C program would.
#include "tests/support/rack/RackOnBoard.h"

#include <orvane/rack.h>

namespace OrvaneTest {
namespace {

class CInterfaceTest : public testing::Test, protected OneBoard {
protected:
    orvane_rack* rack = nullptr;
    orvane_phy* phy = nullptr;
    orvane_failure failure{};

    CInterfaceTest() {
        orvane_rack_new(&rack, nullptr);
        orvane_rack_know(rack, kBoardSerial, board.address().c_str(), nullptr);
        orvane_rack_phy(rack, "board7:1", {ORVANE_EXCLUSIVE, 7, 0}, 3, nullptr, &phy, nullptr);
    }
    ~CInterfaceTest() override {
        orvane_phy_free(phy);
        orvane_rack_free(rack);
    }

    static constexpr orvane_register kRegister{ORVANE_CLAUSE45, 30, 0xC010};
};

TEST_F(CInterfaceTest, RegistersAreReadWrittenAndModified) {
    uint32_t value = 0;
    EXPECT_EQ(orvane_phy_write(phy, kRegister, 0xF0F0, nullptr, &failure), ORVANE_DONE);
    EXPECT_EQ(orvane_phy_modify(phy, kRegister, 0x00F0, 0x0040, nullptr, &value, &failure), ORVANE_DONE);
    EXPECT_EQ(value, 0xF040U);
    EXPECT_EQ(orvane_phy_read(phy, kRegister, nullptr, &value, &failure), ORVANE_DONE);
    EXPECT_EQ(value, 0xF040U);
    EXPECT_EQ(board.registerValue(Space::C45, 1, 3, 0x1EC010), 0xF040U);
}

TEST_F(CInterfaceTest, ListsOfAnyLengthAreRead) {
    std::vector<uint32_t> values(1000);
    board.setRegister(Space::C45, 1, 3, 0x1EC010 + 999, 0x77);
    EXPECT_EQ(orvane_phy_read_list(phy, kRegister, values.size(), nullptr, values.data(), &failure),
              ORVANE_DONE);
    EXPECT_EQ(values[999], 0x77U);
}

TEST_F(CInterfaceTest, FailureIsInTheStructOfTheCaller) {
    orvane_phy_open(phy, nullptr, nullptr);
    inject(Fault::Kind::ResultCode, "mdio", "mdio_read", 1, -121);
    uint32_t value = 5;
    EXPECT_EQ(orvane_phy_read(phy, kRegister, nullptr, &value, &failure), ORVANE_BOARD_ERROR);
    EXPECT_EQ(value, 5U);
    EXPECT_EQ(failure.kind, ORVANE_BOARD_ERROR);
    EXPECT_EQ(failure.code, -121);
    EXPECT_EQ(failure.port, 1);
    EXPECT_EQ(failure.phy, 3);
    EXPECT_EQ(failure.attempts, 1U);
    EXPECT_STREQ(failure.board, "BOARD7");
    EXPECT_STREQ(failure.operation, "read");
    EXPECT_STREQ(failure.location, "30.0xC010");
    EXPECT_NE(std::string(failure.message).find("EREMOTEIO"), std::string::npos);
}

TEST_F(CInterfaceTest, LimitsAreObeyed) {
    orvane_phy_open(phy, nullptr, nullptr);
    inject(Fault::Kind::LoseReply, "mdio", "mdio_read", -1);
    orvane_limits limits = orvane_default_limits();
    limits.seconds = 0.2;
    limits.read_repeats = 0;
    uint32_t value = 0;
    EXPECT_EQ(orvane_phy_read(phy, kRegister, &limits, &value, &failure), ORVANE_TIMED_OUT);
    EXPECT_EQ(count("mdio_read"), 1U);
}

TEST_F(CInterfaceTest, BatchTellsWhatBecameOfEachOperation) {
    orvane_operation operations[3] = {
        {kRegister, 1, 5, 0, 0}, {{ORVANE_CLAUSE22, 0, 4}, 0, 0, 0, 0}, {kRegister, 1, 0, 0, 0}};
    inject(Fault::Kind::ResultCode, "mdio", "mdio_mixedblock_c22", 1, -5);
    EXPECT_EQ(orvane_phy_run(phy, operations, 3, nullptr, &failure), ORVANE_BOARD_ERROR);
    EXPECT_EQ(operations[0].state, ORVANE_OPERATION_DONE);
    EXPECT_EQ(operations[1].state, ORVANE_OPERATION_REFUSED);
    EXPECT_EQ(operations[1].code, -5);
    EXPECT_EQ(operations[2].state, ORVANE_OPERATION_NOT_SENT);
}

TEST_F(CInterfaceTest, DiscoveryListsBoardsWithTheirPorts) {
    orvane_board_list* boards = nullptr;
    ASSERT_EQ(orvane_rack_discover(rack, nullptr, &boards, &failure), ORVANE_DONE);
    ASSERT_EQ(orvane_board_list_size(boards), 1U);
    const orvane_board* const found = orvane_board_list_at(boards, 0);
    EXPECT_STREQ(found->serial, "BOARD7");
    EXPECT_EQ(found->address, board.address());
    EXPECT_EQ(std::vector<unsigned>(found->ports, found->ports + found->port_count),
              (std::vector<unsigned>{0, 1}));
    EXPECT_EQ(orvane_board_list_at(boards, 1), nullptr);
    EXPECT_EQ(orvane_board_list_malformed(boards), 0U);
    orvane_board_list_free(boards);
}

TEST_F(CInterfaceTest, CancelledCallSaysSo) {
    orvane_cancellation* cancellation = nullptr;
    ASSERT_EQ(orvane_cancellation_new(&cancellation, &failure), ORVANE_DONE);
    orvane_cancellation_cancel(cancellation);
    orvane_limits limits = orvane_default_limits();
    limits.cancellation = cancellation;
    uint32_t value = 0;
    EXPECT_EQ(orvane_phy_read(phy, kRegister, &limits, &value, &failure), ORVANE_CANCELLED);
    orvane_cancellation_reset(cancellation);
    EXPECT_EQ(orvane_phy_read(phy, kRegister, &limits, &value, &failure), ORVANE_DONE);
    orvane_cancellation_free(cancellation);
}

TEST_F(CInterfaceTest, WrongArgumentsAreRefused) {
    uint32_t value = 0;
    EXPECT_EQ(orvane_phy_read(nullptr, kRegister, nullptr, &value, &failure), ORVANE_INVALID_ARGUMENT);
    EXPECT_EQ(orvane_phy_read(phy, {9, 0, 0}, nullptr, &value, nullptr), ORVANE_INVALID_ARGUMENT);
    EXPECT_EQ(orvane_phy_read(phy, {ORVANE_CLAUSE45, 32, 0}, nullptr, &value, &failure),
              ORVANE_INVALID_ARGUMENT);
    EXPECT_EQ(orvane_rack_phy(rack, "nonsense", {ORVANE_SIMPLE, 0, 0}, 1, nullptr, &phy, &failure),
              ORVANE_INVALID_ARGUMENT);
    EXPECT_EQ(board.requests().size(), 0U);
}

TEST_F(CInterfaceTest, FreedPhyClosesItsSession) {
    orvane_phy_open(phy, nullptr, nullptr);
    EXPECT_EQ(board.sessionCount(), 1U);
    EXPECT_EQ(orvane_phy_close(phy, nullptr, nullptr), ORVANE_DONE);
    EXPECT_EQ(board.sessionCount(), 0U);
    orvane_phy_open(phy, nullptr, nullptr);
    orvane_phy_free(std::exchange(phy, nullptr));
    EXPECT_EQ(board.sessionCount(), 0U);
}

} // namespace
} // namespace OrvaneTest
