// Captures of a simulated board's analogue inputs.
#include "tests/support/simulator/Client.h"

#include <cerrno>

namespace OrvaneSim {
namespace {

using Numbers = std::vector<unsigned>;

class AdcProgram : public BoardWithClient {
protected:
    Client adc{board, SIM_ADC, "tcp"};
    Decoded<sim_ADC_Data> data{xdr_sim_ADC_Data};

    using SimpleStub = clnt_stat (*)(sim_Simple_Param*, sim_ADC_Result*, CLIENT*);
    void doSimple(SimpleStub stub) {
        sim_ADC_Result result{};
        ASSERT_EQ(adc.call(stub, sim_Simple_Param{0, identity}, result), RPC_SUCCESS);
        EXPECT_EQ(result.error, 0);
    }
    Numbers take(u_int count) {
        sim_ADC_Data_Get_Param argument{identity, count};
        EXPECT_EQ(sim_adc_getdata_1(&argument, &data.fresh(), adc.handle()), RPC_SUCCESS);
        return numbers(data->data.data_val, data->data.data_len);
    }
    void setMask(u_int mask) {
        sim_ADC_Result result{};
        ASSERT_EQ(adc.call(sim_adc_setchannelmask_1, sim_ADC_ChannelMask{identity, mask}, result),
                  RPC_SUCCESS);
    }
    Numbers maxima() {
        Decoded<sim_ADC_Max_Result> result{xdr_sim_ADC_Max_Result};
        EXPECT_EQ(adc.call(sim_adc_maxadc_1, sim_Simple_Param{0, identity}, result.fresh()), RPC_SUCCESS);
        return numbers(result->data.data_val, result->data.data_len);
    }
};

TEST_F(AdcProgram, GivesTheSamplesOfEachEnabledChannelInTurn) {
    board.setWaveform(0, {Waveform::Shape::Ramp, 10, 4, 4});
    board.setWaveform(2, {Waveform::Shape::Constant, 200, 0, 1});
    setMask(0b101);
    doSimple(sim_adc_start_1);
    EXPECT_EQ(take(3), (Numbers{10, 200, 11}));
    EXPECT_EQ(take(5), (Numbers{200, 12, 200, 13, 200}));
    EXPECT_EQ(maxima(), (Numbers{13, 200}));
}

TEST_F(AdcProgram, GivesASineThatStaysInItsRange) {
    board.setWaveform(0, {Waveform::Shape::Sine, 128, 300, 4});
    doSimple(sim_adc_start_1);
    EXPECT_EQ(take(4), (Numbers{128, 255, 128, 0}));
}

TEST_F(AdcProgram, GivesNothingUnlessItRuns) {
    EXPECT_EQ(take(10), Numbers{});
    doSimple(sim_adc_start_1);
    EXPECT_EQ(take(10).size(), 10U);
    setMask(0);
    EXPECT_EQ(take(10), Numbers{});
    doSimple(sim_adc_stop_1);
    EXPECT_EQ(take(10), Numbers{});
    take(100000);
    EXPECT_EQ(data->error, -EINVAL);
}

TEST_F(AdcProgram, RemembersEventsAndTheDumpFile) {
    std::string name = "overload";
    std::string file = "/tmp/capture.bin";
    sim_ADC_Result result{};
    doSimple(sim_adc_start_1);
    take(7);
    sim_ADC_Event event{identity, {static_cast<u_int>(name.size()), name.data()}};
    ASSERT_EQ(sim_adc_seteventname_1(&event, &result, adc.handle()), RPC_SUCCESS);
    sim_ADC_Dump dump{identity, {static_cast<u_int>(file.size()), file.data()}};
    ASSERT_EQ(sim_adc_setdumpfile_1(&dump, &result, adc.handle()), RPC_SUCCESS);
    EXPECT_EQ(board.adcDumpFile(), file);
    EXPECT_EQ(argumentsOf(board.requestsOf("adc_setdumpfile").at(0))["name"], file);
    Decoded<sim_ADC_EventData> events{xdr_sim_ADC_EventData};
    ASSERT_EQ(adc.call(sim_adc_getevents_1, sim_Simple_Param{0, identity}, events.fresh()), RPC_SUCCESS);
    EXPECT_EQ(std::string(events->data.data_val, events->data.data_val + events->data.data_len),
              "6 overload\n");
    doSimple(sim_adc_initialize_1);
    EXPECT_EQ(board.adcDumpFile(), "");
}

} // namespace
} // namespace OrvaneSim
