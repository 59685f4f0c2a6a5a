// The generated records of every program, and their members in wire order.
#pragma once

#include "adc.h"
#include "gpio.h"
#include "i2c.h"
#include "jtag.h"
#include "keepalive.h"
#include "mdio.h"
#include "portmap.h"
#include "records.h"
#include "setup.h"
#include "thermal.h"

#include <rpc/rpc.h>
#include <type_traits>

namespace OrvaneSim {

// Each overload shows the members of one record to a visitor, in wire order:
//   visit(name, number)                 a plain word
//   visit.list(name, count, elements)   an array
//   visit.bytes(name, count, elements)  opaque bytes
//   visit.text(name, count, elements)   an array of characters
//   visit.record(name, record)          an embedded record

// A bare integer or boolean on the wire, called `value`.
template <class V, class Number, std::enable_if_t<std::is_arithmetic_v<Number>, int> = 0>
void members(V& visit, Number& number) {
    visit("value", number);
}

// Shared records.
template <class V>
void members(V& visit, sim_Simple_Param& r) {
    visit("value", r.value), visit("handle", r.handle);
}
template <class V>
void members(V& visit, sim_ID_Param& r) {
    visit("handle", r.handle);
}
template <class V>
void members(V& visit, sim_Simple_Result& r) {
    visit("value", r.value), visit("error", r.error);
}

// Setup.
template <class V>
void members(V& visit, sim_Open_Param& r) {
    visit("sessionId", r.sessionId), visit("exclusive", r.exclusive), visit("simple", r.simple),
        visit("notShared", r.notShared);
    visit("reserved", r.reserved), visit("deviceIndex", r.deviceIndex), visit("phyAddress", r.phyAddress);
}
template <class V>
void members(V& visit, sim_Open_Result& r) {
    visit("id", r.id), visit("sessionId", r.sessionId), visit("sequence", r.sequence),
        visit("error", r.error);
}
template <class V>
void members(V& visit, sim_Close_Param& r) {
    visit("handle", r.handle), visit("key", r.key);
}
template <class V>
void members(V& visit, sim_Get_Error_Result& r) {
    visit("error", r.error), visit("byte1", r.byte1), visit("int1", r.int1);
}
template <class V>
void members(V& visit, sim_Command_Param& r) {
    visit("handle", r.handle), visit.text("command", r.command.command_len, r.command.command_val);
    visit("seconds", r.seconds);
}
template <class V>
void members(V& visit, sim_Command_Result& r) {
    visit("error", r.error), visit("status", r.status);
    visit.text("output", r.output.output_len, r.output.output_val);
    visit.text("errors", r.errors.errors_len, r.errors.errors_val);
}

// I2C.
template <class V>
void members(V& visit, sim_I2C_Read_Param& r) {
    visit("handle", r.handle), visit("bus", r.bus), visit("address", r.address), visit("command", r.command);
    visit("length", r.length);
}
template <class V>
void members(V& visit, sim_I2C_Read_Reg_Param& r) {
    visit("handle", r.handle), visit("bus", r.bus), visit("address", r.address),
        visit("registerNumber", r.registerNumber);
    visit("registerLength", r.registerLength), visit("length", r.length);
}
template <class V>
void members(V& visit, sim_I2C_Read_Result& r) {
    visit("error", r.error), visit.list("data", r.data.data_len, r.data.data_val);
}
template <class V>
void members(V& visit, sim_I2C_Write_Param& r) {
    visit("handle", r.handle), visit("bus", r.bus), visit("address", r.address);
    visit.list("data", r.data.data_len, r.data.data_val);
}
template <class V>
void members(V& visit, sim_I2C_Block_Trans_Param& r) {
    visit.list("buses", r.buses.buses_len, r.buses.buses_val);
    visit.list("addresses", r.addresses.addresses_len, r.addresses.addresses_val);
    visit.list("registers", r.registers.registers_len, r.registers.registers_val);
    visit.list("lengths", r.lengths.lengths_len, r.lengths.lengths_val);
    visit.list("registerLengths", r.registerLengths.registerLengths_len,
               r.registerLengths.registerLengths_val);
}
template <class V>
void members(V& visit, sim_I2C_Block_Reg_Read_Param& r) {
    visit("handle", r.handle), visit.record("trans", r.trans);
}
template <class V>
void members(V& visit, sim_I2C_Block_Reg_Write_Param& r) {
    visit("handle", r.handle), visit.record("trans", r.trans),
        visit.list("data", r.data.data_len, r.data.data_val);
}
template <class V>
void members(V& visit, sim_I2C_Block_Mask_Write_Param& r) {
    visit("handle", r.handle), visit.record("trans", r.trans),
        visit.list("data", r.data.data_len, r.data.data_val);
    visit("mask", r.mask);
}

// MDIO.
template <class V>
void members(V& visit, sim_MDIO_Read_Param& r) {
    visit("handle", r.handle), visit.list("addresses", r.addresses.addresses_len, r.addresses.addresses_val);
}
template <class V>
void members(V& visit, sim_MDIO_Read_Param_No_Addr& r) {
    visit("handle", r.handle);
}
template <class V>
void members(V& visit, sim_MDIO_Read_Result_Single& r) {
    visit("error", r.error), visit("value", r.value);
}
template <class V>
void members(V& visit, sim_MDIO_Read_Result& r) {
    visit("error", r.error), visit.list("data", r.data.data_len, r.data.data_val);
}
template <class V>
void members(V& visit, sim_MDIO_Write_Param& r) {
    visit("handle", r.handle), visit("int1", r.int1);
    visit.list("addresses", r.addresses.addresses_len, r.addresses.addresses_val);
    visit.list("values", r.values.values_len, r.values.values_val);
}
template <class V>
void members(V& visit, sim_MDIO_Write_Param_No_Addr& r) {
    visit("handle", r.handle), visit("value", r.value);
}
template <class V>
void members(V& visit, sim_MDIO_Mixed_Param& r) {
    visit("handle", r.handle), visit.list("writeData", r.writeData.writeData_len, r.writeData.writeData_val);
    visit.list("writeAddresses", r.writeAddresses.writeAddresses_len, r.writeAddresses.writeAddresses_val);
    visit.list("readAddresses", r.readAddresses.readAddresses_len, r.readAddresses.readAddresses_val);
    visit.list("runs", r.runs.runs_len, r.runs.runs_val);
}
template <class V>
void members(V& visit, sim_MDIO_InterruptRequest_Param& r) {
    visit("handle", r.handle), visit("byte1", r.byte1), visit("byte2", r.byte2), visit("int1", r.int1);
    visit("int2", r.int2);
}
template <class V>
void members(V& visit, sim_MDIO_InterruptProcessed_Param& r) {
    visit("handle", r.handle), visit("word1", r.word1);
}
template <class V>
void members(V& visit, sim_MDIO_FlushPort_Param& r) {
    visit("handle", r.handle), visit("deviceIndex", r.deviceIndex), visit("phyAddress", r.phyAddress);
}
template <class V>
void members(V& visit, sim_MDIO_Result& r) {
    visit("value", r.value), visit("error", r.error);
}

// JTAG.
template <class V>
void members(V& visit, sim_StringArrayEntry& r) {
    visit("text", r.text), visit("length", r.length);
}
template <class V>
void members(V& visit, sim_JTAG_ShiftMulti_Param& r) {
    visit("handle", r.handle), visit.list("data", r.data.data_len, r.data.data_val);
    visit.list("tms", r.tms.tms_len, r.tms.tms_val);
    visit.list("tmsAfter", r.tmsAfter.tmsAfter_len, r.tmsAfter.tmsAfter_val);
}
template <class V>
void members(V& visit, sim_JTAG_ShiftMulti_Result& r) {
    visit.list("entries", r.entries.entries_len, r.entries.entries_val), visit("error", r.error);
}

// GPIO.
template <class V>
void members(V& visit, sim_GPIO_Indexes_Param& r) {
    visit("handle", r.handle), visit.bytes("indexes", r.indexes.indexes_len, r.indexes.indexes_val);
}
template <class V>
void members(V& visit, sim_GPIO_Read_Result& r) {
    visit("error", r.error), visit.bytes("states", r.states.states_len, r.states.states_val);
}
template <class V>
void members(V& visit, sim_GPIO_States_Param& r) {
    visit("handle", r.handle), visit.bytes("indexes", r.indexes.indexes_len, r.indexes.indexes_val);
    visit.bytes("states", r.states.states_len, r.states.states_val);
}
template <class V>
void members(V& visit, sim_GPIO_BitBang_Param& r) {
    visit("handle", r.handle), visit.bytes("indexes", r.indexes.indexes_len, r.indexes.indexes_val);
    visit.bytes("states", r.states.states_len, r.states.states_val);
    visit.bytes("modes", r.modes.modes_len, r.modes.modes_val);
}

// ADC.
template <class V>
void members(V& visit, sim_ADC_Result& r) {
    visit("error", r.error);
}
template <class V>
void members(V& visit, sim_ADC_Data_Get_Param& r) {
    visit("handle", r.handle), visit("count", r.count);
}
template <class V>
void members(V& visit, sim_ADC_Data& r) {
    visit("error", r.error), visit.list("data", r.data.data_len, r.data.data_val);
}
template <class V>
void members(V& visit, sim_ADC_Dump& r) {
    visit("handle", r.handle), visit.text("name", r.name.name_len, r.name.name_val);
}
template <class V>
void members(V& visit, sim_ADC_ChannelMask& r) {
    visit("handle", r.handle), visit("mask", r.mask);
}
template <class V>
void members(V& visit, sim_ADC_Max_Result& r) {
    visit("error", r.error), visit.list("data", r.data.data_len, r.data.data_val);
}
template <class V>
void members(V& visit, sim_ADC_Event& r) {
    visit("handle", r.handle), visit.text("name", r.name.name_len, r.name.name_val);
}
template <class V>
void members(V& visit, sim_ADC_EventData& r) {
    visit("error", r.error), visit.list("data", r.data.data_len, r.data.data_val);
}

// Thermal.
template <class V>
void members(V& visit, sim_THRM_Result& r) {
    visit("error", r.error);
}
template <class V>
void members(V& visit, sim_THRM_State& r) {
    visit("error", r.error), visit("state", r.state);
}
template <class V>
void members(V& visit, sim_THRM_Get_Temp& r) {
    visit("error", r.error), visit("temperature", r.temperature);
}
template <class V>
void members(V& visit, sim_THRM_Get_Temp_Arg& r) {
    visit("handle", r.handle), visit("channel", r.channel);
}
template <class V>
void members(V& visit, sim_THRM_Set_Temp_Arg& r) {
    visit("handle", r.handle), visit("temperature", r.temperature), visit("startControl", r.startControl);
    visit("channel", r.channel);
}
template <class V>
void members(V& visit, sim_THRM_Control_Arg& r) {
    visit("handle", r.handle), visit("channel", r.channel);
}

// Port mapper.
template <class V>
void members(V& visit, sim_Port_Mapping& r) {
    visit("prog", r.prog), visit("vers", r.vers), visit("prot", r.prot), visit("port", r.port);
}
template <class V>
void members(V&, sim_Port_Dump&) {} // requested without arguments; the reply is never altered
template <class V>
void members(V& visit, sim_Port_Call& r) {
    visit("prog", r.prog), visit("vers", r.vers), visit("proc", r.proc);
    visit.bytes("arguments", r.arguments.arguments_len, r.arguments.arguments_val);
}
template <class V>
void members(V& visit, sim_Port_Call_Result& r) {
    visit("port", r.port), visit.bytes("results", r.results.results_len, r.results.results_val);
}

} // namespace OrvaneSim
