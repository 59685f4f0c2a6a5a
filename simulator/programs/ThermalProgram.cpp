// The temperature forcing unit.
#include "simulator/board/Procedure.h"
#include "simulator/programs/Programs.h"

namespace OrvaneSim {
namespace {

// The status of an access to a channel: the unit must be connected and the channel exist.
int channelStatus(const ProcedureCall& call, u_int channel) {
    if (channel >= ThermalPlant::kChannels)
        return -EINVAL;
    return call.board.thermal.connected() ? 0 : -ENOTCONN;
}

int targetStatus(const ProcedureCall& call, const sim_THRM_Set_Temp_Arg& argument) {
    const bool possible =
        argument.temperature >= ThermalPlant::kLowest && argument.temperature <= ThermalPlant::kHighest;
    return possible ? channelStatus(call, argument.channel) : -ERANGE;
}

void connect(ProcedureCall& call, const sim_Simple_Param&, sim_THRM_Result&) {
    call.board.thermal.connect();
}
void disconnect(ProcedureCall& call, const sim_Simple_Param&, sim_THRM_Result&) {
    call.board.thermal.disconnect();
}

void getState(ProcedureCall& call, const sim_Simple_Param&, sim_THRM_State& result) {
    result.state = call.board.thermal.state();
}

void getTemperature(ProcedureCall& call, const sim_THRM_Get_Temp_Arg& argument, sim_THRM_Get_Temp& result) {
    result.error = channelStatus(call, argument.channel);
    if (result.error == 0)
        result.temperature = static_cast<float>(call.board.thermal.query(argument.channel));
}

void getSettledTemperature(ProcedureCall& call, const sim_THRM_Get_Temp_Arg& argument,
                           sim_THRM_Get_Temp& result) {
    result.error = channelStatus(call, argument.channel);
    if (result.error == 0)
        result.temperature = static_cast<float>(call.board.thermal.settle(argument.channel));
}

// A flag other than 0 starts control at once.
void setTemperature(ProcedureCall& call, const sim_THRM_Set_Temp_Arg& argument, sim_THRM_Result& result) {
    result.error = targetStatus(call, argument);
    if (result.error != 0)
        return;
    call.board.thermal.setTarget(argument.channel, argument.temperature);
    if (argument.startControl != 0)
        call.board.thermal.startControl(argument.channel);
}

void setDefaultTemperature(ProcedureCall& call, const sim_THRM_Set_Temp_Arg& argument,
                           sim_THRM_Result& result) {
    result.error = targetStatus(call, argument);
    if (result.error == 0)
        call.board.thermal.setDefaultTarget(argument.channel, argument.temperature);
}

void startControl(ProcedureCall& call, const sim_THRM_Control_Arg& argument, sim_THRM_Result& result) {
    result.error = channelStatus(call, argument.channel);
    if (result.error == 0)
        call.board.thermal.startControl(argument.channel);
}

void stopControl(ProcedureCall& call, const sim_Simple_Param&, sim_THRM_Result&) {
    call.board.thermal.stopControl();
}

constexpr Procedure kProcedures[] = {
    {SIM_THRM_CONNECT, "thrm_connect", handler<connect>},
    {SIM_THRM_DISCONNECT, "thrm_disconnect", handler<disconnect>},
    {SIM_THRM_GETSTATE, "thrm_getstate", handler<getState>},
    {SIM_THRM_GETTEMPERATURE, "thrm_gettemperature", handler<getTemperature>},
    {SIM_THRM_SETTEMPERATURE, "thrm_settemperature", handler<setTemperature>},
    {SIM_THRM_STARTCONTROL, "thrm_startcontrol", handler<startControl>},
    {SIM_THRM_STOPCONTROL, "thrm_stopcontrol", handler<stopControl>},
    {SIM_THRM_GETSETTLEDTEMPERATURE, "thrm_getsettledtemperature", handler<getSettledTemperature>},
    {SIM_THRM_SETDEFAULTTEMPERATURE, "thrm_setdefaulttemperature", handler<setDefaultTemperature>},
};

} // namespace

const Program kThermalProgram{"thermal", SIM_THERMAL, SIM_THERMAL_VERSION, kProcedures};

} // namespace OrvaneSim
