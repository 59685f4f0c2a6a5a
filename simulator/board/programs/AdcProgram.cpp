// Captures of the analogue inputs.
#include "simulator/board/Procedure.h"

#include <string>

using namespace OrvaneSim;

namespace {

void start(Service& service, const sim_Simple_Param&, sim_ADC_Result&) {
    service.board.adc.start();
}
void stop(Service& service, const sim_Simple_Param&, sim_ADC_Result&) {
    service.board.adc.stop();
}
void initialize(Service& service, const sim_Simple_Param&, sim_ADC_Result&) {
    service.board.adc.initialize();
}

void getData(Service& service, const sim_ADC_Data_Get_Param& argument, sim_ADC_Data& result) {
    if (argument.count > SIM_LIST_LIMIT)
        result.error = -EINVAL;
    else
        service.fill(result.data.data_len, result.data.data_val, service.board.adc.take(argument.count));
}

void setDumpFile(Service& service, const sim_ADC_Dump& argument, sim_ADC_Result&) {
    service.board.adc.setDumpFile({argument.name.name_val, argument.name.name_len});
}

void setChannelMask(Service& service, const sim_ADC_ChannelMask& argument, sim_ADC_Result&) {
    service.board.adc.setChannelMask(argument.mask);
}

void maxAdc(Service& service, const sim_Simple_Param&, sim_ADC_Max_Result& result) {
    service.fill(result.data.data_len, result.data.data_val, service.board.adc.maxima());
}

void setEventName(Service& service, const sim_ADC_Event& argument, sim_ADC_Result&) {
    service.board.adc.addEvent({argument.name.name_val, argument.name.name_len});
}

void getEvents(Service& service, const sim_Simple_Param&, sim_ADC_EventData& result) {
    service.fill(result.data.data_len, result.data.data_val, service.board.adc.events());
}

} // namespace

#define ADC_SIMPLE(stub, Result, function)                                                                   \
    ORVANE_SIM_PROCEDURE("adc", 1, stub, sim_Simple_Param, xdr_sim_Simple_Param, Result, function)

ADC_SIMPLE(adc_start, sim_ADC_Result, start)
ADC_SIMPLE(adc_stop, sim_ADC_Result, stop)
ADC_SIMPLE(adc_initialize, sim_ADC_Result, initialize)
ADC_SIMPLE(adc_maxadc, sim_ADC_Max_Result, maxAdc)
ADC_SIMPLE(adc_getevents, sim_ADC_EventData, getEvents)
ORVANE_SIM_PROCEDURE("adc", 1, adc_getdata, sim_ADC_Data_Get_Param, xdr_sim_ADC_Data_Get_Param, sim_ADC_Data,
                     getData)
ORVANE_SIM_PROCEDURE("adc", 1, adc_setdumpfile, sim_ADC_Dump, xdr_sim_ADC_Dump, sim_ADC_Result, setDumpFile)
ORVANE_SIM_PROCEDURE("adc", 1, adc_setchannelmask, sim_ADC_ChannelMask, xdr_sim_ADC_ChannelMask,
                     sim_ADC_Result, setChannelMask)
ORVANE_SIM_PROCEDURE("adc", 1, adc_seteventname, sim_ADC_Event, xdr_sim_ADC_Event, sim_ADC_Result,
                     setEventName)
ORVANE_SIM_RESULTS(adc, 1)
