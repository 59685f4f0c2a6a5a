// Faults that a simulated board shows.
#include "tests/support/simulator/Client.h"

#include <cerrno>

namespace OrvaneSim {
namespace {

constexpr long kShort = 100; // milliseconds to wait for an answer that does not come

class FaultyBoard : public BoardWithClient {
protected:
    Client mdio{board, SIM_MDIO, "udp"};
    Decoded<sim_MDIO_Read_Result> answer{xdr_sim_MDIO_Read_Result};

    void inject(Fault::Kind kind, std::int64_t value = 0, int count = 1,
                const std::string& procedure = "mdio_read") {
        Fault fault;
        fault.procedure = procedure;
        fault.kind = kind;
        fault.value = value;
        fault.count = count;
        board.inject(fault);
    }

    clnt_stat read(u_int address = 0x10002) {
        sim_MDIO_Read_Param argument{identity, {1, &address}};
        return sim_mdio_read_1(&argument, &answer.fresh(), mdio.handle());
    }

    clnt_stat write(u_int value) {
        u_int address = 0x10010;
        sim_MDIO_Write_Param argument{identity, 0, {1, &address}, {1, &value}};
        sim_MDIO_Result result{};
        return sim_mdio_write_1(&argument, &result, mdio.handle());
    }
    unsigned written() { return board.registerValue(Space::C45, 0, 0, 0x10010); }
};

TEST_F(FaultyBoard, AnswersWithAResultCodeAsOftenAsAsked) {
    inject(Fault::Kind::ResultCode, -EBUSY, 2);
    for (const int expected : {-EBUSY, -EBUSY, 0}) {
        ASSERT_EQ(read(), RPC_SUCCESS);
        EXPECT_EQ(answer->error, expected);
    }
}

TEST_F(FaultyBoard, ShowsFaultsOneAfterTheOther) {
    inject(Fault::Kind::ResultCode, -EBUSY);
    inject(Fault::Kind::ResultCode, -ETIMEDOUT);
    ASSERT_EQ(read(), RPC_SUCCESS);
    EXPECT_EQ(answer->error, -EBUSY);
    ASSERT_EQ(read(), RPC_SUCCESS);
    EXPECT_EQ(answer->error, -ETIMEDOUT);
}

TEST_F(FaultyBoard, KeepsAFaultWithoutCountUntilItIsCleared) {
    inject(Fault::Kind::ResultCode, -EIO, -1);
    for (int i = 0; i < 5; ++i) {
        ASSERT_EQ(read(), RPC_SUCCESS);
        EXPECT_EQ(answer->error, -EIO);
    }
    board.clearFaults();
    ASSERT_EQ(read(), RPC_SUCCESS);
    EXPECT_EQ(answer->error, 0);
}

TEST_F(FaultyBoard, SparesOtherProcedures) {
    inject(Fault::Kind::ResultCode, -EIO, -1, "mdio_write");
    ASSERT_EQ(read(), RPC_SUCCESS);
    EXPECT_EQ(answer->error, 0);
}

TEST_F(FaultyBoard, ExecutesACallWhoseReplyIsLost) {
    inject(Fault::Kind::LoseReply, 0, 1, "mdio_write");
    mdio.setTimeout(kShort);
    EXPECT_EQ(write(5), RPC_TIMEDOUT);
    EXPECT_EQ(written(), 5U);
}

TEST_F(FaultyBoard, RecordsButDoesNotExecuteALostRequest) {
    inject(Fault::Kind::LoseRequest, 0, 1, "mdio_write");
    mdio.setTimeout(kShort);
    EXPECT_EQ(write(5), RPC_TIMEDOUT);
    EXPECT_EQ(written(), 0U);
    EXPECT_EQ(board.requestsOf("mdio_write").size(), 1U);
}

TEST_F(FaultyBoard, IsSilentForAWholeProgram) {
    Fault fault;
    fault.program = "mdio";
    fault.kind = Fault::Kind::Silent;
    fault.count = -1;
    board.inject(fault);
    mdio.setTimeout(kShort);
    EXPECT_EQ(read(), RPC_TIMEDOUT);
    int value = 0;
    EXPECT_EQ(setup.call(sim_ping_1, 1, value), RPC_SUCCESS);
}

TEST_F(FaultyBoard, CutsAndFillsTheListsOfAReply) {
    inject(Fault::Kind::ReplyCount, 3);
    ASSERT_EQ(read(), RPC_SUCCESS);
    const auto words = numbers(answer->data.data_val, answer->data.data_len);
    EXPECT_EQ(words, (std::vector<unsigned>{words[0], 0xEEEEEEEE, 0xEEEEEEEE}));
    EXPECT_NE(words[0], 0xEEEEEEEEU);
    inject(Fault::Kind::ReplyCount, 0);
    ASSERT_EQ(read(), RPC_SUCCESS);
    EXPECT_EQ(answer->data.data_len, 0U);
}

TEST_F(FaultyBoard, FillsStringsAndOpaqueBytesToo) {
    Client gpio(board, SIM_GPIO, "udp");
    Client jtag(board, SIM_JTAG, "udp");
    inject(Fault::Kind::ReplyCount, 2, 2, "");
    char line = 0;
    Decoded<sim_GPIO_Read_Result> levels(xdr_sim_GPIO_Read_Result);
    sim_GPIO_Indexes_Param lines{identity, {1, &line}};
    ASSERT_EQ(sim_gpio_read_1(&lines, &levels.fresh(), gpio.handle()), RPC_SUCCESS);
    EXPECT_EQ(numbers(levels->states.states_val, levels->states.states_len),
              (std::vector<unsigned>{0, 0xEE}));
    Decoded<sim_JTAG_ShiftMulti_Result> shifted(xdr_sim_JTAG_ShiftMulti_Result);
    sim_JTAG_ShiftMulti_Param nothing{};
    nothing.handle = identity;
    ASSERT_EQ(sim_jtag_shiftmulti_1(&nothing, &shifted.fresh(), jtag.handle()), RPC_SUCCESS);
    ASSERT_EQ(shifted->entries.entries_len, 2U);
    EXPECT_STREQ(shifted->entries.entries_val[1].text, "\xEE");
}

TEST_F(FaultyBoard, OverridesTheFirstWordBesideTheStatus) {
    inject(Fault::Kind::OverrideWord, 99, 1, "mdio_setpreamblecount");
    sim_Simple_Result result{};
    ASSERT_EQ(mdio.call(sim_mdio_setpreamblecount_1, sim_Simple_Param{32, identity}, result), RPC_SUCCESS);
    EXPECT_EQ(result.value, 99);
    EXPECT_EQ(result.error, 0);
}

TEST_F(FaultyBoard, DelaysAReplyWithoutHoldingUpOthers) {
    inject(Fault::Kind::DelayReply, 60000);
    mdio.setTimeout(kShort);
    EXPECT_EQ(read(), RPC_TIMEDOUT);
    int value = 0;
    EXPECT_EQ(setup.call(sim_ping_1, 1, value), RPC_SUCCESS);
}

TEST_F(FaultyBoard, DeliversADelayedReplyOverBothTransports) {
    inject(Fault::Kind::DelayReply, 20);
    EXPECT_EQ(read(), RPC_SUCCESS);
    inject(Fault::Kind::DelayReply, 20, 1, "ping");
    int value = 0;
    EXPECT_EQ(setup.call(sim_ping_1, 7, value), RPC_SUCCESS);
    EXPECT_EQ(value, 7);
}

TEST_F(FaultyBoard, DuplicatesAReply) {
    inject(Fault::Kind::DuplicateReply);
    EXPECT_EQ(read(), RPC_SUCCESS);
    EXPECT_EQ(answer->error, 0);
    EXPECT_EQ(board.requestsOf("mdio_read").size(), 1U);
}

TEST_F(FaultyBoard, ClosesAConnectionInsteadOfAnswering) {
    inject(Fault::Kind::CloseConnection, 0, 1, "ping");
    int value = 0;
    EXPECT_EQ(setup.call(sim_ping_1, 1, value), RPC_CANTRECV);
    Client again(board, SIM_SETUP, "tcp");
    EXPECT_EQ(again.call(sim_ping_1, 1, value), RPC_SUCCESS);
}

TEST_F(FaultyBoard, SilencesItsPortMapperOnlyWhenThatIsNamed) {
    Client mapper(board, SIM_PORTMAP, "udp", 2);
    mapper.setTimeout(kShort);
    const sim_Port_Mapping wanted{SIM_MDIO, 1, 17, 0};
    u_int port = 0;
    Fault fault;
    fault.kind = Fault::Kind::Silent;
    fault.count = -1;
    board.inject(fault);
    EXPECT_EQ(mapper.call(sim_portmap_getport_2, wanted, port), RPC_SUCCESS);
    fault.program = "portmap";
    board.inject(fault);
    EXPECT_EQ(mapper.call(sim_portmap_getport_2, wanted, port), RPC_TIMEDOUT);
}

} // namespace
} // namespace OrvaneSim
