// The temperature forcing unit of a simulated board.
#include "tests/support/simulator/Client.h"

#include <cerrno>
#include <cmath>

namespace OrvaneSim {
namespace {

class ThermalProgram : public BoardWithClient {
protected:
    Client thermal{board, SIM_THERMAL, "udp"};
    int handle = static_cast<int>(identity);

    using SimpleStub = clnt_stat (*)(sim_Simple_Param*, sim_THRM_Result*, CLIENT*);
    using GetStub = clnt_stat (*)(sim_THRM_Get_Temp_Arg*, sim_THRM_Get_Temp*, CLIENT*);
    void doSimple(SimpleStub stub) {
        sim_THRM_Result result{};
        ASSERT_EQ(thermal.call(stub, sim_Simple_Param{0, identity}, result), RPC_SUCCESS);
        EXPECT_EQ(result.error, 0);
    }
    int state() {
        sim_THRM_State result{};
        EXPECT_EQ(thermal.call(sim_thrm_getstate_1, sim_Simple_Param{0, identity}, result), RPC_SUCCESS);
        return result.state;
    }
    sim_THRM_Get_Temp get(GetStub stub, u_int channel = 0) {
        sim_THRM_Get_Temp result{};
        EXPECT_EQ(thermal.call(stub, sim_THRM_Get_Temp_Arg{handle, channel}, result), RPC_SUCCESS);
        return result;
    }
    int set(float celsius, u_char flag, u_int channel = 0) {
        sim_THRM_Result result{};
        EXPECT_EQ(thermal.call(sim_thrm_settemperature_1,
                               sim_THRM_Set_Temp_Arg{handle, celsius, flag, channel}, result),
                  RPC_SUCCESS);
        return result.error;
    }
};

TEST_F(ThermalProgram, ApproachesItsSetPointAQuarterOfTheWayAtEachQuery) {
    doSimple(sim_thrm_connect_1);
    EXPECT_EQ(state(), 1);
    ASSERT_EQ(set(85, 1), 0);
    EXPECT_EQ(state(), 2);
    EXPECT_FLOAT_EQ(get(sim_thrm_gettemperature_1).temperature, 40);
    EXPECT_FLOAT_EQ(get(sim_thrm_gettemperature_1).temperature, 51.25);
    EXPECT_NEAR(get(sim_thrm_getsettledtemperature_1).temperature, 85, 0.1);
    EXPECT_EQ(state(), 3);
}

TEST_F(ThermalProgram, ReturnsToTheAmbientTemperatureWhenControlEnds) {
    board.setAmbientTemperature(10);
    doSimple(sim_thrm_connect_1);
    ASSERT_EQ(set(50, 1), 0);
    get(sim_thrm_getsettledtemperature_1);
    doSimple(sim_thrm_stopcontrol_1);
    EXPECT_EQ(state(), 1);
    EXPECT_NEAR(get(sim_thrm_getsettledtemperature_1).temperature, 10, 0.1);
}

TEST_F(ThermalProgram, WithoutFlagWaitsForControlToBeStarted) {
    doSimple(sim_thrm_connect_1);
    ASSERT_EQ(set(65, 0, 2), 0);
    EXPECT_FLOAT_EQ(get(sim_thrm_gettemperature_1, 2).temperature, 25);
    sim_THRM_Result result{};
    ASSERT_EQ(thermal.call(sim_thrm_startcontrol_1, sim_THRM_Control_Arg{handle, 2}, result), RPC_SUCCESS);
    EXPECT_FLOAT_EQ(get(sim_thrm_gettemperature_1, 2).temperature, 35);
}

TEST_F(ThermalProgram, RefusesWhatCannotBe) {
    EXPECT_EQ(get(sim_thrm_gettemperature_1).error, -ENOTCONN);
    doSimple(sim_thrm_connect_1);
    EXPECT_EQ(set(1000, 1), -ERANGE);
    EXPECT_EQ(set(std::nanf(""), 1), -ERANGE);
    EXPECT_EQ(set(20, 1, 4), -EINVAL);
    doSimple(sim_thrm_disconnect_1);
    EXPECT_EQ(state(), 0);
}

TEST_F(ThermalProgram, ReturnsToTheDefaultSetPointWhenControlStartsAgain) {
    doSimple(sim_thrm_connect_1);
    sim_THRM_Result result{};
    ASSERT_EQ(thermal.call(sim_thrm_setdefaulttemperature_1, sim_THRM_Set_Temp_Arg{handle, 45, 0, 0}, result),
              RPC_SUCCESS);
    ASSERT_EQ(set(85, 1), 0);
    doSimple(sim_thrm_stopcontrol_1);
    ASSERT_EQ(thermal.call(sim_thrm_startcontrol_1, sim_THRM_Control_Arg{handle, 0}, result), RPC_SUCCESS);
    EXPECT_NEAR(get(sim_thrm_getsettledtemperature_1).temperature, 45, 0.1);
}

} // namespace
} // namespace OrvaneSim
