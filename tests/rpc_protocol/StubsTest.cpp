// What each client stub sends and returns.
#include "ov_sys/Interface/rpc_protocol/Stubs.h"

#include "ov_sys/Interface/rpc_protocol/Programs.h"
#include "tests/support/RecordSamples.h"
#include "tests/support/rpc_protocol/LoopbackServer.h"

#include <chrono>
#include <gtest/gtest.h>

namespace {

// One stub with what it must put on the wire; call() calls it with its argument's sample.
struct StubCase {
    const char* name;
    unsigned long program;
    unsigned procedure;
    const RecordSample* param;
    const RecordSample* result;
    std::function<clnt_stat(void* result, CLIENT* client)> call;
};

template <class Param, class Result>
StubCase stub(const char* name, clnt_stat (*function)(Param, Result*, CLIENT*), unsigned long program,
              unsigned procedure) {
    return {name,
            program,
            procedure,
            &sampleOf<Param>(),
            &sampleOf<Result>(),
            [function](void* result, CLIENT* client) {
                return function(filled<Param>(), static_cast<Result*>(result), client);
            }};
}

std::vector<StubCase> setupStubs() {
    return {
        stub<Open_Param, Open_Result>("open_connection_1", open_connection_1, 0x2FFFFFF0, 1),
        stub<Close_Param, Simple_Result>("close_connection_1", close_connection_1, 0x2FFFFFF0, 2),
        stub<Simple_Param, Get_Error_Result>("get_error_msg_1", get_error_msg_1, 0x2FFFFFF0, 3),
        stub<ID_Param, Simple_Result>("pingclient_1", pingclient_1, 0x2FFFFFF0, 5),
        stub<Command_Param, Command_Result>("execute_command_1", execute_command_1, 0x2FFFFFF0, 6),
    };
}

std::vector<StubCase> mdioStubs() {
    return {
        stub<MDIO_Read_Param, MDIO_Read_Result>("mdio_read_1", mdio_read_1, 0x2FFFFFF2, 1),
        stub<MDIO_Write_Param, MDIO_Result>("mdio_write_1", mdio_write_1, 0x2FFFFFF2, 2),
        stub<MDIO_InterruptRequest_Param, MDIO_Result>("mdio_interruptrequest_1", mdio_interruptrequest_1,
                                                       0x2FFFFFF2, 3),
        stub<Simple_Param, MDIO_Result>("mdio_interruptwait_1", mdio_interruptwait_1, 0x2FFFFFF2, 4),
        stub<MDIO_InterruptProcessed_Param, MDIO_Result>("mdio_interruptprocessed_1",
                                                         mdio_interruptprocessed_1, 0x2FFFFFF2, 5),
        stub<Simple_Param, MDIO_Result>("mdio_interrutprelease_1", mdio_interrutprelease_1, 0x2FFFFFF2, 6),
        stub<MDIO_FlushPort_Param, MDIO_Result>("mdio_flushport_1", mdio_flushport_1, 0x2FFFFFF2, 7),
        stub<Simple_Param, MDIO_Result>("mdio_singlewire_1", mdio_singlewire_1, 0x2FFFFFF2, 8),
        stub<MDIO_Mixed_Param, MDIO_Read_Result>("mdio_mixedblock_1", mdio_mixedblock_1, 0x2FFFFFF2, 9),
        stub<Simple_Param, Simple_Result>("mdio_setpreamblecount_1", mdio_setpreamblecount_1, 0x2FFFFFF2, 10),
        stub<MDIO_Read_Param, MDIO_Read_Result>("mdio_read_c22_1", mdio_read_c22_1, 0x2FFFFFF2, 11),
        stub<MDIO_Write_Param, MDIO_Result>("mdio_write_c22_1", mdio_write_c22_1, 0x2FFFFFF2, 12),
        stub<MDIO_Mixed_Param, MDIO_Read_Result>("mdio_mixedblock_c22_1", mdio_mixedblock_c22_1, 0x2FFFFFF2,
                                                 13),
        stub<MDIO_Read_Param, MDIO_Read_Result>("mdio_read_c22_zrext32_1", mdio_read_c22_zrext32_1,
                                                0x2FFFFFF2, 14),
        stub<MDIO_Write_Param, MDIO_Result>("mdio_write_c22_zrext32_1", mdio_write_c22_zrext32_1, 0x2FFFFFF2,
                                            15),
        stub<MDIO_Read_Param_No_Addr, MDIO_Read_Result_Single>(
            "mdio_read_preinc_c22_zrext32_1", mdio_read_preinc_c22_zrext32_1, 0x2FFFFFF2, 16),
        stub<MDIO_Write_Param_No_Addr, MDIO_Result>("mdio_write_preinc_c22_zrext32_1",
                                                    mdio_write_preinc_c22_zrext32_1, 0x2FFFFFF2, 17),
        stub<MDIO_Read_Param_No_Addr, MDIO_Read_Result_Single>(
            "mdio_read_curraddr_c22_zrext32_1", mdio_read_curraddr_c22_zrext32_1, 0x2FFFFFF2, 18),
        stub<MDIO_Write_Param_No_Addr, MDIO_Result>("mdio_write_curraddr_c22_zrext32_1",
                                                    mdio_write_curraddr_c22_zrext32_1, 0x2FFFFFF2, 19),
        stub<MDIO_Mixed_Param, MDIO_Read_Result>("mdio_mixedblock_c22_zrext32_1",
                                                 mdio_mixedblock_c22_zrext32_1, 0x2FFFFFF2, 20),
    };
}

std::vector<StubCase> i2cStubs() {
    return {
        stub<I2C_Read_Param, I2C_Read_Result>("i2c_read_1", i2c_read_1, 0x2FFFFFF1, 1),
        stub<I2C_Write_Param, Simple_Result>("i2c_write_1", i2c_write_1, 0x2FFFFFF1, 2),
        stub<I2C_Read_Reg_Param, I2C_Read_Result>("i2c_read_reg_1", i2c_read_reg_1, 0x2FFFFFF1, 3),
        stub<I2C_Block_Reg_Write_Param, Simple_Result>("i2c_block_write_register_1",
                                                       i2c_block_write_register_1, 0x2FFFFFF1, 4),
        stub<I2C_Block_Reg_Read_Param, I2C_Read_Result>("i2c_block_read_register_1",
                                                        i2c_block_read_register_1, 0x2FFFFFF1, 5),
        stub<I2C_Block_Mask_Write_Param, Simple_Result>("i2c_block_write_mask_1", i2c_block_write_mask_1,
                                                        0x2FFFFFF1, 6),
    };
}

std::vector<StubCase> gpioStubs() {
    return {
        stub<GPIO_Indexes_Param, GPIO_Read_Result>("gpio_read_1", gpio_read_1, 0x2FFFFFF4, 1),
        stub<GPIO_States_Param, Simple_Result>("gpio_write_1", gpio_write_1, 0x2FFFFFF4, 2),
        stub<GPIO_Indexes_Param, Simple_Result>("gpio_setdefault_1", gpio_setdefault_1, 0x2FFFFFF4, 3),
        stub<Simple_Param, Simple_Result>("gpio_reset_1", gpio_reset_1, 0x2FFFFFF4, 4),
        stub<GPIO_States_Param, Simple_Result>("gpio_enableoutput_1", gpio_enableoutput_1, 0x2FFFFFF4, 5),
        stub<GPIO_BitBang_Param, GPIO_Read_Result>("gpio_bitbang_1", gpio_bitbang_1, 0x2FFFFFF4, 6),
        stub<GPIO_Indexes_Param, GPIO_Read_Result>("gpio_readoutputenable_1", gpio_readoutputenable_1,
                                                   0x2FFFFFF4, 7),
    };
}

std::vector<StubCase> jtagStubs() {
    return {
        stub<Simple_Param, Simple_Result>("jtag_maxbytes_1", jtag_maxbytes_1, 0x2FFFFFF3, 1),
        stub<JTAG_ShiftMulti_Param, JTAG_ShiftMulti_Result>("jtag_shiftmulti_1", jtag_shiftmulti_1,
                                                            0x2FFFFFF3, 3),
    };
}

std::vector<StubCase> keepAliveStubs() {
    return {
        stub<ID_Param, Simple_Result>("pingkeepalive_1", pingkeepalive_1, 0x2FFFFFF5, 1),
    };
}

std::vector<StubCase> adcStubs() {
    return {
        stub<Simple_Param, ADC_Result>("adc_start_1", adc_start_1, 0x2FFFFFF6, 1),
        stub<Simple_Param, ADC_Result>("adc_stop_1", adc_stop_1, 0x2FFFFFF6, 2),
        stub<Simple_Param, ADC_Result>("adc_initialize_1", adc_initialize_1, 0x2FFFFFF6, 3),
        stub<ADC_Data_Get_Param, ADC_Data>("adc_getdata_1", adc_getdata_1, 0x2FFFFFF6, 4),
        stub<ADC_Dump, ADC_Result>("adc_setdumpfile_1", adc_setdumpfile_1, 0x2FFFFFF6, 5),
        stub<ADC_ChannelMask, ADC_Result>("adc_setchannelmask_1", adc_setchannelmask_1, 0x2FFFFFF6, 6),
        stub<Simple_Param, ADC_Max_Result>("adc_maxadc_1", adc_maxadc_1, 0x2FFFFFF6, 7),
        stub<ADC_Event, ADC_Result>("adc_seteventname_1", adc_seteventname_1, 0x2FFFFFF6, 8),
        stub<Simple_Param, ADC_EventData>("adc_getevents_1", adc_getevents_1, 0x2FFFFFF6, 9),
    };
}

std::vector<StubCase> thermalStubs() {
    return {
        stub<Simple_Param, THRM_Result>("thrm_connect_1", thrm_connect_1, 0x2FFFFFF7, 1),
        stub<Simple_Param, THRM_Result>("thrm_disconnect_1", thrm_disconnect_1, 0x2FFFFFF7, 2),
        stub<Simple_Param, THRM_State>("thrm_getstate_1", thrm_getstate_1, 0x2FFFFFF7, 3),
        stub<THRM_Get_Temp_Arg, THRM_Get_Temp>("thrm_gettemperature_1", thrm_gettemperature_1, 0x2FFFFFF7, 4),
        stub<THRM_Set_Temp_Arg, THRM_Result>("thrm_settemperature_1", thrm_settemperature_1, 0x2FFFFFF7, 5),
        stub<THRM_Control_Arg, THRM_Result>("thrm_startcontrol_1", thrm_startcontrol_1, 0x2FFFFFF7, 6),
        stub<Simple_Param, THRM_Result>("thrm_stopcontrol_1", thrm_stopcontrol_1, 0x2FFFFFF7, 7),
        stub<THRM_Get_Temp_Arg, THRM_Get_Temp>("thrm_getsettledtemperature_1", thrm_getsettledtemperature_1,
                                               0x2FFFFFF7, 8),
        stub<THRM_Set_Temp_Arg, THRM_Result>("thrm_setdefaulttemperature_1", thrm_setdefaulttemperature_1,
                                             0x2FFFFFF7, 9),
    };
}

// All stubs but ping_1, which has no records.
std::vector<StubCase> stubs() {
    std::vector<StubCase> all;
    for (const auto ofProgram :
         {setupStubs, mdioStubs, i2cStubs, gpioStubs, jtagStubs, keepAliveStubs, adcStubs, thermalStubs})
        for (const StubCase& stub : ofProgram())
            all.push_back(stub);
    return all;
}

// Checks that exactly this stub's call has arrived.
void expectRequest(const StubCase& stub, LoopbackServer& server) {
    const std::vector<RecordedCall> calls = server.takeCalls();
    ASSERT_EQ(calls.size(), 1u);
    EXPECT_EQ(calls[0].program, stub.program);
    EXPECT_EQ(calls[0].version, 1u);
    EXPECT_EQ(calls[0].procedure, stub.procedure);
    EXPECT_EQ(calls[0].arguments, stub.param->bytes());
}

// Calls a stub over `client`, and checks the call that arrives and the result that comes back.
void expectOneCall(const StubCase& stub, LoopbackServer& server, CLIENT* client) {
    SCOPED_TRACE(stub.name);
    server.answerWith(stub.result->bytes());
    std::vector<unsigned long> result(stub.result->size / 8 + 1);
    EXPECT_EQ(stub.call(result.data(), client), RPC_SUCCESS);
    expectRequest(stub, server);
    EncodeStream again;
    EXPECT_TRUE(stub.result->run(again.get(), result.data()));
    EXPECT_EQ(again.bytes(), stub.result->bytes());
    stub.result->freeDecoded(result.data());
}

// What a stub handed to its client's call operation.
struct HandedOver {
    int calls = 0;
    rpcproc_t procedure = 0;
    void* result = nullptr;
    timeval timeout{};
};
HandedOver handedOver;

clnt_stat recordCall(CLIENT*, rpcproc_t procedure, xdrproc_t, void*, xdrproc_t, void* result,
                     timeval timeout) {
    handedOver = {handedOver.calls + 1, procedure, result, timeout};
    return RPC_CANTSEND;
}

} // namespace

TEST(Programs, HaveTheBoardsNumbers) {
    namespace Programs = Orvane::Programs;
    EXPECT_EQ(Programs::Setup, 0x2FFFFFF0u);
    EXPECT_EQ(Programs::I2C, 0x2FFFFFF1u);
    EXPECT_EQ(Programs::MDIO, 0x2FFFFFF2u);
    EXPECT_EQ(Programs::JTAG, 0x2FFFFFF3u);
    EXPECT_EQ(Programs::GPIO, 0x2FFFFFF4u);
    EXPECT_EQ(Programs::KeepAlive, 0x2FFFFFF5u);
    EXPECT_EQ(Programs::ADC, 0x2FFFFFF6u);
    EXPECT_EQ(Programs::Thermal, 0x2FFFFFF7u);
    EXPECT_EQ(Programs::Version, 1u);
}

TEST(Stubs, EachMakesOneCallOfItsProcedureAndDecodesTheResultOverUdp) {
    LoopbackServer server;
    EXPECT_EQ(stubs().size(), 59u);
    for (const StubCase& stub : stubs())
        expectOneCall(stub, server, server.udpClient(stub.program).get());
}

TEST(Stubs, EachMakesOneCallOfItsProcedureAndDecodesTheResultOverTcp) {
    LoopbackServer server;
    for (const StubCase& stub : stubs())
        expectOneCall(stub, server, server.tcpClient(stub.program).get());
}

TEST(Stubs, PingSendsAndReturnsABareInt) {
    LoopbackServer server;
    server.answerWith(wire("ffffff84"));
    int result = 0;
    EXPECT_EQ(ping_1(123, &result, server.tcpClient(0x2FFFFFF0).get()), RPC_SUCCESS);
    EXPECT_EQ(result, -124);
    const std::vector<RecordedCall> calls = server.takeCalls();
    ASSERT_EQ(calls.size(), 1u);
    EXPECT_EQ(calls[0].program, 0x2FFFFFF0u);
    EXPECT_EQ(calls[0].version, 1u);
    EXPECT_EQ(calls[0].procedure, 4u);
    EXPECT_EQ(calls[0].arguments, wire("0000007b"));
}

TEST(Stubs, HandTheirResultAndTwoSecondsToASingleCallAndReturnItsStatus) {
    CLIENT::clnt_ops operations{};
    operations.cl_call = recordCall;
    CLIENT client{};
    client.cl_ops = &operations;
    handedOver = {};
    Simple_Result result{5, 6};
    EXPECT_EQ(mdio_setpreamblecount_1({32, 1}, &result, &client), RPC_CANTSEND);
    EXPECT_EQ(handedOver.calls, 1);
    EXPECT_EQ(handedOver.procedure, 10u);
    EXPECT_EQ(handedOver.result, &result);
    EXPECT_EQ(handedOver.timeout.tv_sec, 2);
    EXPECT_EQ(handedOver.timeout.tv_usec, 0);
    EXPECT_EQ(result.value, 5);
    EXPECT_EQ(result.error, 6);
}

TEST(Stubs, WithoutAReplyTimeOutAfterTwoSeconds) {
    LoopbackServer server;
    server.stayQuiet();
    const ClientHandle client = server.udpClient(0x2FFFFFF5);
    Simple_Result result{5, 6};
    const auto start = std::chrono::steady_clock::now();
    EXPECT_EQ(pingkeepalive_1({7}, &result, client.get()), RPC_TIMEDOUT);
    const auto waited = std::chrono::steady_clock::now() - start;
    EXPECT_GE(waited, std::chrono::milliseconds(1900));
    EXPECT_LT(waited, std::chrono::seconds(30));
    EXPECT_EQ(result.value, 5);
    EXPECT_EQ(result.error, 6);
}

TEST(Stubs, ReturnTheServersRefusalAndLeaveTheResultAlone) {
    LoopbackServer server;
    server.answerProgramUnavailable();
    Simple_Result result{5, 6};
    EXPECT_EQ(i2c_write_1(filled<I2C_Write_Param>(), &result, server.udpClient(0x2FFFFFF1).get()),
              RPC_PROGUNAVAIL);
    EXPECT_EQ(result.value, 5);
    EXPECT_EQ(result.error, 6);
}

TEST(Stubs, ReportAResultThatIsCutShortAndKeepWhatWasDecoded) {
    LoopbackServer server;
    server.answerWith(wire("00000009"));
    Simple_Result result{5, 6};
    EXPECT_EQ(pingkeepalive_1({7}, &result, server.udpClient(0x2FFFFFF5).get()), RPC_CANTDECODERES);
    EXPECT_EQ(result.value, 9);
    EXPECT_EQ(result.error, 6);
}

TEST(Stubs, DoNotFreeTheResultThatTheyDecoded) {
    LoopbackServer server;
    server.answerWith(wire("00000000 00000001 00000042"));
    MDIO_Read_Result result{};
    EXPECT_EQ(mdio_read_1(filled<MDIO_Read_Param>(), &result, server.udpClient(0x2FFFFFF2).get()),
              RPC_SUCCESS);
    ASSERT_EQ(result.data.data_len, 1u);
    EXPECT_EQ(result.data.data_val[0], 0x42u);
    Orvane::freeDecoded(result);
}
