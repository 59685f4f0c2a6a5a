// The temperature forcing unit.
#include "simulator/board/Procedure.h"

using namespace OrvaneSim;

namespace {

/// The status of an access to a channel: the unit must be connected and the channel exist.
int channelStatus(const Service& service, u_int channel) {
    if (channel >= ThermalPlant::kChannels)
        return -EINVAL;
    return service.board.thermal.connected() ? 0 : -ENOTCONN;
}

int targetStatus(const Service& service, const sim_THRM_Set_Temp_Arg& argument) {
    const bool possible =
        argument.temperature >= ThermalPlant::kLowest && argument.temperature <= ThermalPlant::kHighest;
    return possible ? channelStatus(service, argument.channel) : -ERANGE;
}

void connect(Service& service, const sim_Simple_Param&, sim_THRM_Result&) {
    service.board.thermal.connect();
}
void disconnect(Service& service, const sim_Simple_Param&, sim_THRM_Result&) {
    service.board.thermal.disconnect();
}

void getState(Service& service, const sim_Simple_Param&, sim_THRM_State& result) {
    result.state = service.board.thermal.state();
}

void getTemperature(Service& service, const sim_THRM_Get_Temp_Arg& argument, sim_THRM_Get_Temp& result) {
    result.error = channelStatus(service, argument.channel);
    if (result.error == 0)
        result.temperature = static_cast<float>(service.board.thermal.query(argument.channel));
}

void getSettledTemperature(Service& service, const sim_THRM_Get_Temp_Arg& argument,
                           sim_THRM_Get_Temp& result) {
    result.error = channelStatus(service, argument.channel);
    if (result.error == 0)
        result.temperature = static_cast<float>(service.board.thermal.settle(argument.channel));
}

/// A flag other than 0 starts control at once.
void setTemperature(Service& service, const sim_THRM_Set_Temp_Arg& argument, sim_THRM_Result& result) {
    result.error = targetStatus(service, argument);
    if (result.error != 0)
        return;
    service.board.thermal.setTarget(argument.channel, argument.temperature);
    if (argument.startControl != 0)
        service.board.thermal.startControl(argument.channel);
}

void setDefaultTemperature(Service& service, const sim_THRM_Set_Temp_Arg& argument, sim_THRM_Result& result) {
    result.error = targetStatus(service, argument);
    if (result.error == 0)
        service.board.thermal.setDefaultTarget(argument.channel, argument.temperature);
}

void startControl(Service& service, const sim_THRM_Control_Arg& argument, sim_THRM_Result& result) {
    result.error = channelStatus(service, argument.channel);
    if (result.error == 0)
        service.board.thermal.startControl(argument.channel);
}

void stopControl(Service& service, const sim_Simple_Param&, sim_THRM_Result&) {
    service.board.thermal.stopControl();
}

} // namespace

#define THERMAL_SIMPLE(stub, Result, function)                                                               \
    ORVANE_SIM_PROCEDURE("thermal", 1, stub, sim_Simple_Param, xdr_sim_Simple_Param, Result, function)
#define THERMAL_GET(stub, function)                                                                          \
    ORVANE_SIM_PROCEDURE("thermal", 1, stub, sim_THRM_Get_Temp_Arg, xdr_sim_THRM_Get_Temp_Arg,               \
                         sim_THRM_Get_Temp, function)
#define THERMAL_SET(stub, function)                                                                          \
    ORVANE_SIM_PROCEDURE("thermal", 1, stub, sim_THRM_Set_Temp_Arg, xdr_sim_THRM_Set_Temp_Arg,               \
                         sim_THRM_Result, function)

THERMAL_SIMPLE(thrm_connect, sim_THRM_Result, connect)
THERMAL_SIMPLE(thrm_disconnect, sim_THRM_Result, disconnect)
THERMAL_SIMPLE(thrm_getstate, sim_THRM_State, getState)
THERMAL_SIMPLE(thrm_stopcontrol, sim_THRM_Result, stopControl)
THERMAL_GET(thrm_gettemperature, getTemperature)
THERMAL_GET(thrm_getsettledtemperature, getSettledTemperature)
THERMAL_SET(thrm_settemperature, setTemperature)
THERMAL_SET(thrm_setdefaulttemperature, setDefaultTemperature)
ORVANE_SIM_PROCEDURE("thermal", 1, thrm_startcontrol, sim_THRM_Control_Arg, xdr_sim_THRM_Control_Arg,
                     sim_THRM_Result, startControl)
ORVANE_SIM_RESULTS(thermal, 1)
