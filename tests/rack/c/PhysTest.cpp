// Racks, PHYs and registers, as a C program uses them.
#include "tests/support/rack/CRackOnBoard.h"

namespace OrvaneTest {
namespace {

class CPhys : public testing::Test, protected CRackOnBoard {};

TEST_F(CPhys, RegistersAreReadWrittenAndModified) {
    uint32_t value = 0;
    EXPECT_EQ(orvane_phy_write(phy, kRegister, 0xF0F0, nullptr, &failure), ORVANE_DONE);
    EXPECT_EQ(orvane_phy_modify(phy, kRegister, 0x00F0, 0x0040, nullptr, &value, &failure), ORVANE_DONE);
    EXPECT_EQ(value, 0xF040U);
    EXPECT_EQ(orvane_phy_read(phy, kRegister, nullptr, &value, &failure), ORVANE_DONE);
    EXPECT_EQ(value, 0xF040U);
    EXPECT_EQ(board.registerValue(Space::C45, 1, 3, 0x1EC010), 0xF040U);
}

TEST_F(CPhys, ListsOfAnyLengthAreRead) {
    std::vector<uint32_t> values(1000);
    board.setRegister(Space::C45, 1, 3, 0x1EC010 + 999, 0x77);
    EXPECT_EQ(orvane_phy_read_list(phy, kRegister, values.size(), nullptr, values.data(), &failure),
              ORVANE_DONE);
    EXPECT_EQ(values[999], 0x77U);
}

TEST_F(CPhys, FailureIsInTheStructOfTheCaller) {
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
    EXPECT_STREQ(failure.code_name, "EREMOTEIO");
    EXPECT_STREQ(failure.advice, "The board answered; look up its code.");
    EXPECT_EQ(
        std::string(failure.message).find("BOARD7:1 PHY 3: read 30.0xC010: board error, EREMOTEIO (-121)"),
        0U);
}

TEST_F(CPhys, LimitsAreObeyed) {
    orvane_phy_open(phy, nullptr, nullptr);
    inject(Fault::Kind::LoseReply, "mdio", "mdio_read", -1);
    const orvane_limits limits = orvane_once(orvane_within(0.2));
    uint32_t value = 0;
    EXPECT_EQ(orvane_phy_read(phy, kRegister, &limits, &value, &failure), ORVANE_TIMED_OUT);
    EXPECT_EQ(count("mdio_read"), 1U);
}

TEST_F(CPhys, BatchTellsWhatBecameOfEachOperation) {
    orvane_operation operations[3] = {
        {kRegister, 1, 5, 0, 0}, {{ORVANE_CLAUSE22, 0, 4}, 0, 0, 0, 0}, {kRegister, 1, 0, 0, 0}};
    inject(Fault::Kind::ResultCode, "mdio", "mdio_mixedblock_c22", 1, -5);
    EXPECT_EQ(orvane_phy_run(phy, operations, 3, nullptr, &failure), ORVANE_BOARD_ERROR);
    EXPECT_EQ(operations[0].state, ORVANE_OPERATION_DONE);
    EXPECT_EQ(operations[1].state, ORVANE_OPERATION_REFUSED);
    EXPECT_EQ(operations[1].code, -5);
    EXPECT_EQ(operations[2].state, ORVANE_OPERATION_NOT_SENT);
}

TEST_F(CPhys, DiscoveryListsBoardsWithTheirPorts) {
    orvane_board_list* boards = nullptr;
    board.setDiscoveryReplies(std::vector<std::string>{"|host BOARD7:0 BOARD7:1", "no bar"});
    ASSERT_EQ(orvane_rack_discover(rack, nullptr, &boards, &failure), ORVANE_DONE);
    ASSERT_EQ(orvane_board_list_size(boards), 1U);
    const orvane_board* const found = orvane_board_list_at(boards, 0);
    EXPECT_STREQ(found->serial, "BOARD7");
    EXPECT_EQ(found->address, board.address());
    EXPECT_EQ(std::vector<unsigned>(found->ports, found->ports + found->port_count),
              (std::vector<unsigned>{0, 1}));
    EXPECT_EQ(orvane_board_list_at(boards, 1), nullptr);
    EXPECT_EQ(orvane_board_list_malformed(boards), 1U);
    orvane_board_list_free(boards);
    EXPECT_EQ(orvane_board_list_malformed(nullptr), 0U);
}

TEST_F(CPhys, CancelledCallSaysSo) {
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

TEST_F(CPhys, WrongArgumentsAreRefused) {
    uint32_t value = 0;
    EXPECT_EQ(orvane_phy_read(nullptr, kRegister, nullptr, &value, &failure), ORVANE_INVALID_ARGUMENT);
    EXPECT_EQ(orvane_phy_read(phy, {9, 0, 0}, nullptr, &value, nullptr), ORVANE_INVALID_ARGUMENT);
    EXPECT_EQ(orvane_phy_read(phy, {ORVANE_CLAUSE45, 32, 0}, nullptr, &value, &failure),
              ORVANE_INVALID_ARGUMENT);
    EXPECT_EQ(orvane_rack_phy(rack, "nonsense", {ORVANE_SIMPLE, 0, 0}, 1, nullptr, &phy, &failure),
              ORVANE_INVALID_ARGUMENT);
    EXPECT_EQ(board.requests().size(), 0U);
}

TEST_F(CPhys, FreedPhyClosesItsSession) {
    orvane_phy_open(phy, nullptr, nullptr);
    EXPECT_EQ(board.sessionCount(), 1U);
    EXPECT_EQ(orvane_phy_close(phy, nullptr, nullptr), ORVANE_DONE);
    EXPECT_EQ(board.sessionCount(), 0U);
    orvane_phy_open(phy, nullptr, nullptr);
    orvane_phy_free(std::exchange(phy, nullptr));
    EXPECT_EQ(board.sessionCount(), 0U);
}

TEST_F(CPhys, SessionTellsItsKeyWhileItIsOpen) {
    int open = -1;
    uint16_t key = 1;
    unsigned id = 0;
    EXPECT_EQ(orvane_phy_is_open(phy, &open, &failure), ORVANE_DONE);
    EXPECT_EQ(open, 0);
    EXPECT_EQ(orvane_phy_key(phy, &key, &failure), ORVANE_DONE);
    EXPECT_EQ(key, 0U);
    orvane_phy_open(phy, nullptr, nullptr);
    orvane_phy_is_open(phy, &open, nullptr);
    orvane_phy_key(phy, &key, nullptr);
    orvane_phy_id(phy, &id, nullptr);
    EXPECT_EQ(open, 1);
    EXPECT_EQ(key, 7U);
    EXPECT_EQ(id, 3U);
}

// A hook's context.
struct Restoring {
    orvane_phy* phy;
    int status;
    int calls;

    static int hook(void* context, orvane_failure* failure) {
        auto* const self = static_cast<Restoring*>(context);
        ++self->calls;
        if (self->status != ORVANE_DONE)
            return self->status;
        return orvane_phy_write(self->phy, {ORVANE_CLAUSE45, 1, 7}, 0x77, nullptr, failure);
    }
};

TEST_F(CPhys, HookRestoresWhatTheBoardForgot) {
    Restoring restoring{phy, ORVANE_DONE, 0};
    EXPECT_EQ(orvane_phy_on_reopen(phy, &Restoring::hook, &restoring, &failure), ORVANE_DONE);
    orvane_phy_open(phy, nullptr, nullptr);
    board.forgetSessions();
    board.forgetRequests();
    uint32_t value = 0;
    EXPECT_EQ(orvane_phy_read(phy, kRegister, nullptr, &value, &failure), ORVANE_DONE);
    EXPECT_EQ(procedures(),
              (std::vector<std::string>{"mdio_read", "open_connection", "mdio_write", "mdio_read"}));
    EXPECT_EQ(restoring.calls, 1);
}

TEST_F(CPhys, FailureOfAHookIsThatOfTheCall) {
    Restoring restoring{phy, ORVANE_DONE, 0};
    orvane_phy_on_reopen(phy, &Restoring::hook, &restoring, nullptr);
    orvane_phy_open(phy, nullptr, nullptr);
    board.forgetSessions();
    inject(Fault::Kind::ResultCode, "mdio", "mdio_write", 1, -5);
    uint32_t value = 0;
    EXPECT_EQ(orvane_phy_read(phy, kRegister, nullptr, &value, &failure), ORVANE_BOARD_ERROR);
    EXPECT_STREQ(failure.location, "1.0x0007");
    EXPECT_STREQ(failure.code_name, "EIO");
    restoring.status = ORVANE_REFUSED;
    EXPECT_EQ(orvane_phy_read(phy, kRegister, nullptr, &value, &failure), ORVANE_REFUSED);
    EXPECT_STREQ(failure.operation, "reopen hook");
    restoring.status = 99;
    EXPECT_EQ(orvane_phy_read(phy, kRegister, nullptr, &value, &failure), ORVANE_OUT_OF_RESOURCES);
    EXPECT_EQ(restoring.calls, 3);
    orvane_phy_on_reopen(phy, nullptr, nullptr, nullptr);
    EXPECT_EQ(orvane_phy_read(phy, kRegister, nullptr, &value, &failure), ORVANE_DONE);
    EXPECT_EQ(restoring.calls, 3);
}

TEST_F(CPhys, BatchThatAHookEndsHasUnknownOutcomes) {
    Restoring restoring{phy, 99, 0};
    orvane_phy_on_reopen(phy, &Restoring::hook, &restoring, nullptr);
    orvane_phy_open(phy, nullptr, nullptr);
    board.forgetSessions();
    orvane_operation operations[2] = {{kRegister, 1, 5, ORVANE_OPERATION_DONE, 0},
                                      {kRegister, 0, 0, ORVANE_OPERATION_DONE, 0}};
    EXPECT_EQ(orvane_phy_run(phy, operations, 2, nullptr, &failure), ORVANE_OUT_OF_RESOURCES);
    for (const orvane_operation& one : operations)
        EXPECT_EQ(one.state, ORVANE_OPERATION_UNKNOWN);
}

TEST_F(CPhys, SmbusProtocolIsChosen) {
    orvane_phy* smbus = nullptr;
    ASSERT_EQ(orvane_rack_phy(rack, "board7:11", {ORVANE_SIMPLE, 0, 0}, 3, nullptr, &smbus, &failure),
              ORVANE_DONE);
    board.setRegister(Space::Ext32, 1, 3, 0x80004000, 0x12345678);
    for (const int protocol : {ORVANE_SMBUS_DIRECT32, ORVANE_SMBUS_PAGED16}) {
        EXPECT_EQ(orvane_phy_set_smbus_protocol(smbus, protocol, &failure), ORVANE_DONE);
        uint32_t value = 0;
        board.forgetRequests();
        EXPECT_EQ(orvane_phy_read(smbus, {ORVANE_EXT32, 0, 0x80004000}, nullptr, &value, &failure),
                  ORVANE_DONE);
        EXPECT_EQ(value, 0x12345678U);
        EXPECT_EQ(board.requests("i2c").size() > 1, protocol == ORVANE_SMBUS_PAGED16);
    }
    EXPECT_EQ(orvane_phy_set_smbus_protocol(smbus, 2, &failure), ORVANE_INVALID_ARGUMENT);
    orvane_phy_free(smbus);
}

TEST_F(CPhys, AccessModesThatDoNotExistAreRefused) {
    orvane_phy* other = nullptr;
    EXPECT_EQ(orvane_rack_phy(rack, "board7:1", {3, 0, 0}, 3, nullptr, &other, &failure),
              ORVANE_INVALID_ARGUMENT);
    EXPECT_EQ(other, nullptr);
}

TEST(CTexts, NameEveryStatusAndState) {
    EXPECT_STREQ(orvane_status_text(ORVANE_DONE), "done");
    EXPECT_STREQ(orvane_status_text(ORVANE_INVALID_ARGUMENT), "invalid argument");
    EXPECT_STREQ(orvane_status_text(ORVANE_CANCELLED), "cancelled");
    EXPECT_STREQ(orvane_status_text(ORVANE_OUT_OF_RESOURCES), "out of resources");
    EXPECT_STREQ(orvane_status_text(12), "unknown status");
    EXPECT_STREQ(orvane_status_text(-1), "unknown status");
    EXPECT_STREQ(orvane_operation_state_text(ORVANE_OPERATION_UNKNOWN), "unknown");
    EXPECT_STREQ(orvane_operation_state_text(4), "unknown state");
}

} // namespace
} // namespace OrvaneTest
