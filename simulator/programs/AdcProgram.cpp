// Captures of the analogue inputs.
#include "simulator/board/Procedure.h"
#include "simulator/programs/Programs.h"

#include <string>

namespace OrvaneSim {
namespace {

void start(ProcedureCall& call, const sim_Simple_Param&, sim_ADC_Result&) {
    call.board.adc.start();
}
void stop(ProcedureCall& call, const sim_Simple_Param&, sim_ADC_Result&) {
    call.board.adc.stop();
}
void initialize(ProcedureCall& call, const sim_Simple_Param&, sim_ADC_Result&) {
    call.board.adc.initialize();
}

void getData(ProcedureCall& call, const sim_ADC_Data_Get_Param& argument, sim_ADC_Data& result) {
    if (argument.count > SIM_LIST_LIMIT)
        result.error = -EINVAL;
    else
        call.fill(result.data.data_len, result.data.data_val, call.board.adc.take(argument.count));
}

void setDumpFile(ProcedureCall& call, const sim_ADC_Dump& argument, sim_ADC_Result&) {
    call.board.adc.setDumpFile({argument.name.name_val, argument.name.name_len});
}

void setChannelMask(ProcedureCall& call, const sim_ADC_ChannelMask& argument, sim_ADC_Result&) {
    call.board.adc.setChannelMask(argument.mask);
}

void maxAdc(ProcedureCall& call, const sim_Simple_Param&, sim_ADC_Max_Result& result) {
    call.fill(result.data.data_len, result.data.data_val, call.board.adc.maxima());
}

void setEventName(ProcedureCall& call, const sim_ADC_Event& argument, sim_ADC_Result&) {
    call.board.adc.addEvent({argument.name.name_val, argument.name.name_len});
}

void getEvents(ProcedureCall& call, const sim_Simple_Param&, sim_ADC_EventData& result) {
    call.fill(result.data.data_len, result.data.data_val, call.board.adc.events());
}

constexpr Procedure kProcedures[] = {
    {SIM_ADC_START, "adc_start", handler<start>},
    {SIM_ADC_STOP, "adc_stop", handler<stop>},
    {SIM_ADC_INITIALIZE, "adc_initialize", handler<initialize>},
    {SIM_ADC_GETDATA, "adc_getdata", handler<getData>},
    {SIM_ADC_SETDUMPFILE, "adc_setdumpfile", handler<setDumpFile>},
    {SIM_ADC_SETCHANNELMASK, "adc_setchannelmask", handler<setChannelMask>},
    {SIM_ADC_MAXADC, "adc_maxadc", handler<maxAdc>},
    {SIM_ADC_SETEVENTNAME, "adc_seteventname", handler<setEventName>},
    {SIM_ADC_GETEVENTS, "adc_getevents", handler<getEvents>},
};

} // namespace

const Program kAdcProgram{"adc", SIM_ADC, SIM_ADC_VERSION, kProcedures};

} // namespace OrvaneSim
