// Register accesses of a simulated board.
#include "tests/support/simulator/Client.h"

#include <cerrno>
#include <thread>

namespace OrvaneSim {
namespace {

using Words = std::vector<u_int>;

// The address word of a 16-bit access.
u_int at(unsigned device, unsigned phy, unsigned rest) {
    return (device << 29) | (phy << 24) | rest;
}

class MdioProgram : public BoardWithClient {
protected:
    Client mdio{board, SIM_MDIO, "udp"};
    Decoded<sim_MDIO_Read_Result> answer{xdr_sim_MDIO_Read_Result};

    using ReadStub = clnt_stat (*)(sim_MDIO_Read_Param*, sim_MDIO_Read_Result*, CLIENT*);
    using WriteStub = clnt_stat (*)(sim_MDIO_Write_Param*, sim_MDIO_Result*, CLIENT*);
    using MixedStub = clnt_stat (*)(sim_MDIO_Mixed_Param*, sim_MDIO_Read_Result*, CLIENT*);

    std::vector<unsigned> read(ReadStub stub, Words addresses, unsigned session) {
        sim_MDIO_Read_Param argument{session, {static_cast<u_int>(addresses.size()), addresses.data()}};
        EXPECT_EQ(stub(&argument, &answer.fresh(), mdio.handle()), RPC_SUCCESS);
        return numbers(answer->data.data_val, answer->data.data_len);
    }
    std::vector<unsigned> read(ReadStub stub, Words addresses) {
        return read(stub, std::move(addresses), identity);
    }

    int write(WriteStub stub, Words addresses, Words values) {
        sim_MDIO_Write_Param argument{identity,
                                      0,
                                      {static_cast<u_int>(addresses.size()), addresses.data()},
                                      {static_cast<u_int>(values.size()), values.data()}};
        sim_MDIO_Result result{};
        EXPECT_EQ(stub(&argument, &result, mdio.handle()), RPC_SUCCESS);
        return result.error;
    }

    std::vector<unsigned> mixed(MixedStub stub, Words data, Words writes, Words reads, Words runs) {
        sim_MDIO_Mixed_Param argument{identity,
                                      {static_cast<u_int>(data.size()), data.data()},
                                      {static_cast<u_int>(writes.size()), writes.data()},
                                      {static_cast<u_int>(reads.size()), reads.data()},
                                      {static_cast<u_int>(runs.size()), runs.data()}};
        EXPECT_EQ(stub(&argument, &answer.fresh(), mdio.handle()), RPC_SUCCESS);
        return numbers(answer->data.data_val, answer->data.data_len);
    }
};

TEST_F(MdioProgram, GivesBackWhatWasWrittenOverClause45) {
    ASSERT_EQ(write(sim_mdio_write_1, {at(1, 5, 0x1E0001)}, {0xBEEF}), 0);
    EXPECT_EQ(read(sim_mdio_read_1, {at(1, 5, 0x1E0001)}), Words{0xBEEF});
    EXPECT_EQ(board.registerValue(Space::C45, 1, 5, 0x1E0001), 0xBEEFU);
}

TEST_F(MdioProgram, KeepsOnly16BitsOutsideOfTheExtension) {
    ASSERT_EQ(write(sim_mdio_write_1, {at(0, 0, 0x10010)}, {0x12345678}), 0);
    ASSERT_EQ(write(sim_mdio_write_c22_1, {at(0, 0, 0x10)}, {0x12345678}), 0);
    EXPECT_EQ(read(sim_mdio_read_1, {at(0, 0, 0x10010)}), Words{0x5678});
    EXPECT_EQ(read(sim_mdio_read_c22_1, {at(0, 0, 0x10)}), Words{0x5678});
}

TEST_F(MdioProgram, ReadsAListAsItReadsEachOfItsRegisters) {
    board.setRegister(Space::C45, 0, 1, 0x10400, 0x11);
    board.setRegister(Space::C45, 0, 2, 0x10400, 0x22);
    board.setRegister(Space::C45, 0, 1, 0x1E0400, 0x33);
    Words list;
    Words single;
    for (const unsigned phy : {1U, 2U, 1U})
        for (const unsigned rest : {0x10002U, 0x10003U, 0x10400U, 0x10401U, 0x40002U, 0x1E0003U, 0x1E0400U}) {
            list.push_back(at(0, phy, rest));
            single.push_back(read(sim_mdio_read_1, {list.back()}).at(0));
        }
    EXPECT_EQ(read(sim_mdio_read_1, list), single);
    EXPECT_EQ(Words(single.begin(), single.begin() + 7),
              (Words{0x0A5C, 0x1E83, 0x11, 0, 0x0A5C, 0x1E83, 0x33}));
}

TEST_F(MdioProgram, KeepsPortsPhysAndSpacesApart) {
    board.setRegister(Space::C45, 0, 1, 0x10001, 1);
    board.setRegister(Space::C45, 1, 0, 0x10001, 2);
    board.setRegister(Space::C22, 0, 1, 1, 3);
    board.setRegister(Space::Ext32, 0, 1, 0x10001, 4);
    EXPECT_EQ(read(sim_mdio_read_1, {at(0, 1, 0x10001), at(1, 0, 0x10001), at(0, 0, 0x10001)}),
              (Words{1, 2, 0}));
    EXPECT_EQ(read(sim_mdio_read_c22_1, {at(0, 1, 1)}), Words{3});
}

TEST_F(MdioProgram, ReachesPorts8And9ThroughTheirSessions) {
    board.setRegister(Space::C45, 1, 2, 0x10001, 0x11);
    board.setRegister(Space::C45, 9, 2, 0x10001, 0x99);
    const unsigned port9 = openSession(setup, 9, 2);
    EXPECT_EQ(read(sim_mdio_read_1, {at(1, 2, 0x10001)}, port9), Words{0x99});
    EXPECT_EQ(read(sim_mdio_read_1, {at(1, 2, 0x10001)}), Words{0x11});
}

TEST_F(MdioProgram, ShowsAnIdentifierInEveryMmd) {
    const auto identifier = read(sim_mdio_read_1, {at(0, 0, 0x10002), at(0, 0, 0x10003), at(0, 7, 0x1E0002)});
    EXPECT_NE(identifier[0], 0U);
    EXPECT_NE(identifier[1], 0U);
    EXPECT_EQ(identifier[2], identifier[0]);
}

TEST_F(MdioProgram, RefusesAWriteWhoseListsDiffer) {
    EXPECT_EQ(write(sim_mdio_write_1, {1, 2, 3}, {1, 2}), -EINVAL);
    EXPECT_EQ(board.registerValue(Space::C45, 0, 0, 1), 0U);
}

TEST_F(MdioProgram, RefusesASessionThatItDoesNotKnow) {
    EXPECT_TRUE(read(sim_mdio_read_1, {1}, 0xFF).empty());
    EXPECT_EQ(answer->error, -EBADRQC);
}

TEST_F(MdioProgram, TakesTheExtensionsPhyFromTheSession) {
    const unsigned session = openSession(setup, 3, 4);
    board.setRegister(Space::Ext32, 3, 4, 0xFFFF0001, 0xCAFEF00D);
    EXPECT_EQ(read(sim_mdio_read_c22_zrext32_1, {0xFFFF0001}, session), Words{0xCAFEF00D});
    EXPECT_EQ(read(sim_mdio_read_c22_zrext32_1, {0xFFFF0001}), Words{0});
}

TEST_F(MdioProgram, StepsTheCurrentAddressByOneWordBeforeAnAccess) {
    ASSERT_EQ(write(sim_mdio_write_c22_zrext32_1, {0x1000}, {10}), 0);
    sim_MDIO_Result written{};
    ASSERT_EQ(
        mdio.call(sim_mdio_write_preinc_c22_zrext32_1, sim_MDIO_Write_Param_No_Addr{identity, 20}, written),
        RPC_SUCCESS);
    ASSERT_EQ(
        mdio.call(sim_mdio_write_curraddr_c22_zrext32_1, sim_MDIO_Write_Param_No_Addr{identity, 30}, written),
        RPC_SUCCESS);
    EXPECT_EQ(board.registerValue(Space::Ext32, 0, 0, 0x1000), 10U);
    EXPECT_EQ(board.registerValue(Space::Ext32, 0, 0, 0x1004), 30U);
    board.setRegister(Space::Ext32, 0, 0, 0x1008, 40);
    sim_MDIO_Read_Result_Single single{};
    ASSERT_EQ(mdio.call(sim_mdio_read_preinc_c22_zrext32_1, sim_MDIO_Read_Param_No_Addr{identity}, single),
              RPC_SUCCESS);
    EXPECT_EQ(single.value, 40U);
    ASSERT_EQ(mdio.call(sim_mdio_read_curraddr_c22_zrext32_1, sim_MDIO_Read_Param_No_Addr{identity}, single),
              RPC_SUCCESS);
    EXPECT_EQ(single.value, 40U);
}

TEST_F(MdioProgram, MixedBlockAlternatesItsRunsBeginningWithWrites) {
    EXPECT_EQ(mixed(sim_mdio_mixedblock_1, {1, 2}, {0x10010, 0x10010}, {0x10010, 0x10010}, {1, 1, 1, 1}),
              (Words{1, 2}));
}

TEST_F(MdioProgram, MixedBlockWithAnEmptyFirstRunBeginsWithReads) {
    board.setRegister(Space::C22, 0, 0, 20, 7);
    EXPECT_EQ(mixed(sim_mdio_mixedblock_c22_1, {9}, {20}, {20, 20}, {0, 1, 1, 1}), (Words{7, 9}));
}

TEST_F(MdioProgram, MixedBlockLeavesOutWhatItsRunsDoNotCover) {
    EXPECT_EQ(mixed(sim_mdio_mixedblock_c22_zrext32_1, {5, 6}, {0x40, 0x44}, {0x40, 0x40, 0x40}, {1, 2}),
              (Words{5, 5, 0}));
    EXPECT_EQ(board.registerValue(Space::Ext32, 0, 0, 0x44), 0U);
}

TEST_F(MdioProgram, MixedBlockEndsWithItsListsWhenRunsAreLonger) {
    EXPECT_EQ(mixed(sim_mdio_mixedblock_1, {5}, {0x10040}, {0x10040}, {4000000000, 4000000000}), Words{5});
}

TEST_F(MdioProgram, MixedBlockWithUnequalWriteListsIsRefused) {
    mixed(sim_mdio_mixedblock_1, {5, 6}, {0x10040}, {0x10040}, {1, 1});
    EXPECT_EQ(answer->error, -EINVAL);
}

TEST_F(MdioProgram, Registers13And14OfClause22ReachClause45) {
    board.setRegister(Space::C45, 0, 0, 0x1E0102, 0xABCD);
    ASSERT_EQ(write(sim_mdio_write_c22_1, {13, 14, 13}, {0x001E, 0x0102, 0x401E}), 0);
    EXPECT_EQ(read(sim_mdio_read_c22_1, {14, 14}), (Words{0xABCD, 0xABCD}));
    ASSERT_EQ(write(sim_mdio_write_c22_1, {14}, {0x1234}), 0);
    EXPECT_EQ(board.registerValue(Space::C45, 0, 0, 0x1E0102), 0x1234U);
}

TEST_F(MdioProgram, IndirectAccessStepsWhereItsFunctionSaysSo) {
    ASSERT_EQ(write(sim_mdio_write_c22_1, {13, 14, 13, 14, 14}, {3, 0x10, 0xC003, 100, 101}), 0);
    EXPECT_EQ(board.registerValue(Space::C45, 0, 0, 0x30010), 100U);
    EXPECT_EQ(board.registerValue(Space::C45, 0, 0, 0x30011), 101U);
    ASSERT_EQ(write(sim_mdio_write_c22_1, {13, 14, 13}, {3, 0x10, 0x8003}), 0);
    EXPECT_EQ(read(sim_mdio_read_c22_1, {14, 14}), (Words{100, 101}));
}

TEST_F(MdioProgram, EchoesPreambleCountAndSingleWire) {
    sim_Simple_Result simple{};
    ASSERT_EQ(mdio.call(sim_mdio_setpreamblecount_1, sim_Simple_Param{32, identity}, simple), RPC_SUCCESS);
    EXPECT_EQ(simple.value, 32);
    sim_MDIO_Result result{};
    ASSERT_EQ(mdio.call(sim_mdio_singlewire_1, sim_Simple_Param{1, identity}, result), RPC_SUCCESS);
    EXPECT_EQ(result.value, 1);
    ASSERT_EQ(mdio.call(sim_mdio_flushport_1, sim_MDIO_FlushPort_Param{identity, 0, 0}, result), RPC_SUCCESS);
    EXPECT_EQ(result.error, 0);
}

TEST_F(MdioProgram, AcceptsTheInterruptProcedures) {
    sim_MDIO_Result result{};
    EXPECT_EQ(mdio.call(sim_mdio_interruptrequest_1, sim_MDIO_InterruptRequest_Param{identity, 1, 2, 3, -4},
                        result),
              RPC_SUCCESS);
    EXPECT_EQ(mdio.call(sim_mdio_interruptwait_1, sim_Simple_Param{1, identity}, result), RPC_SUCCESS);
    EXPECT_EQ(
        mdio.call(sim_mdio_interruptprocessed_1, sim_MDIO_InterruptProcessed_Param{identity, 1}, result),
        RPC_SUCCESS);
    EXPECT_EQ(mdio.call(sim_mdio_interrutprelease_1, sim_Simple_Param{1, identity}, result), RPC_SUCCESS);
    EXPECT_EQ(result.error, 0);
    EXPECT_EQ(argumentsOf(board.requestsOf("mdio_interruptrequest").at(0))["int2"], -4);
}

class MdioInterrupt : public MdioProgram {
protected:
    static constexpr u_int kLong = 60000; // milliseconds

    sim_MDIO_Result request(u_char device, u_char phy) {
        return done(sim_mdio_interruptrequest_1,
                    sim_MDIO_InterruptRequest_Param{identity, device, phy, 0, 0});
    }
    sim_MDIO_Result wait(u_int milliseconds) {
        return done(sim_mdio_interruptwait_1, sim_Simple_Param{milliseconds, identity});
    }
    sim_MDIO_Result processed(u_int count) {
        return done(sim_mdio_interruptprocessed_1, sim_MDIO_InterruptProcessed_Param{identity, count});
    }
    sim_MDIO_Result release() { return done(sim_mdio_interrutprelease_1, sim_Simple_Param{0, identity}); }

    // Waits long, and has `work` done meanwhile.
    template <class Work>
    sim_MDIO_Result waitDuring(Work work) {
        mdio.setTimeout(kLong);
        std::thread other([&] {
            board.waitFor([](const Request& each) { return each.procedure == "mdio_interruptwait"; });
            work();
        });
        const sim_MDIO_Result result = wait(kLong);
        other.join();
        return result;
    }

private:
    template <class Argument>
    sim_MDIO_Result done(clnt_stat (*stub)(Argument*, sim_MDIO_Result*, CLIENT*), Argument argument) {
        sim_MDIO_Result result{};
        EXPECT_EQ(mdio.call(stub, argument, result), RPC_SUCCESS);
        return result;
    }
};

TEST_F(MdioInterrupt, EndsTheWaitOfTheSessionThatAskedForIt) {
    request(1, 5);
    const sim_MDIO_Result result = waitDuring([&] {
        board.apply(RaiseInterrupt{1, 4}); // of another PHY
        board.apply(RaiseInterrupt{1, 5});
    });
    EXPECT_EQ(result.value, 1);
    EXPECT_EQ(result.error, 0);
}

TEST_F(MdioInterrupt, IsCountedUntilItIsDealtWith) {
    request(0, 3);
    board.raiseInterrupt(0, 3);
    board.raiseInterrupt(0, 3);
    EXPECT_EQ(wait(kLong).value, 2);
    EXPECT_EQ(processed(1).error, 0);
    EXPECT_EQ(wait(kLong).value, 1);
    EXPECT_EQ(processed(7).error, 0);
    EXPECT_EQ(wait(1).value, 0);
}

TEST_F(MdioInterrupt, IsNotLostWhenTheRequestForItComesTwice) {
    request(0, 3);
    board.raiseInterrupt(0, 3);
    request(0, 3);
    EXPECT_EQ(wait(1).value, 1);
    request(0, 4);
    EXPECT_EQ(wait(1).value, 0) << "another PHY has raised none";
}

TEST_F(MdioInterrupt, IsAwaitedNoLongerByASessionThatCloses) {
    request(0, 3);
    const auto close = [&] {
        sim_Simple_Result closed{};
        EXPECT_EQ(setup.call(sim_close_connection_1, sim_Close_Param{identity, 0}, closed), RPC_SUCCESS);
    };
    EXPECT_EQ(waitDuring(close).error, -ECANCELED);
}

TEST_F(MdioInterrupt, IsAwaitedNoLongerByASessionThatTheBoardForgot) {
    request(0, 3);
    EXPECT_EQ(waitDuring([&] { board.forgetSessions(); }).error, -ECANCELED);
}

TEST_F(MdioInterrupt, IsOfNoConcernToASessionThatLetGo) {
    EXPECT_EQ(wait(1).error, -EINVAL);
    request(0, 3);
    EXPECT_EQ(release().error, 0);
    board.raiseInterrupt(0, 3);
    EXPECT_EQ(wait(1).error, -EINVAL);
    EXPECT_EQ(processed(1).error, -EINVAL);
    EXPECT_EQ(release().error, -EINVAL);
}

TEST_F(MdioProgram, IsServedOverTcpToo) {
    Client stream(board, SIM_MDIO, "tcp");
    Words addresses(5000, 0x10002);
    sim_MDIO_Read_Param argument{identity, {static_cast<u_int>(addresses.size()), addresses.data()}};
    ASSERT_EQ(sim_mdio_read_1(&argument, &answer.fresh(), stream.handle()), RPC_SUCCESS);
    EXPECT_EQ(answer->data.data_len, 5000U);
    EXPECT_EQ(board.requestsOf("mdio_read").at(0).transport, "tcp");
}

TEST_F(MdioProgram, RecordsEveryMemberInWireOrder) {
    write(sim_mdio_write_1, {0x251E0001}, {7});
    const Request request = board.requestsOf("mdio_write").at(0);
    EXPECT_EQ(request.program, "mdio");
    EXPECT_EQ(request.programNumber, 0x2FFFFFF2U);
    EXPECT_EQ(request.version, 1U);
    EXPECT_EQ(request.procedureNumber, 2U);
    EXPECT_EQ(request.transport, "udp");
    EXPECT_EQ(request.arguments(), R"({"handle":)" + std::to_string(identity) +
                                       R"(,"int1":0,"addresses":[622723073],"values":[7]})");
}

} // namespace
} // namespace OrvaneSim
