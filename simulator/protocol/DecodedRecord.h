// Records off the wire, by the routines that rpcgen made.
#pragma once

#include "simulator/protocol/Records.h"

#include <string_view>
#include <tuple>

namespace OrvaneSim {

// What a procedure without argument is given.
struct Nothing {};
inline bool_t xdrNothing(XDR*, Nothing*) {
    return TRUE;
}
template <class V>
void members(V&, Nothing&) {}

// The routine of every type that is an argument or a result; found by that type.
inline constexpr auto kRoutines = std::make_tuple(
    xdrNothing, xdr_int, xdr_u_int, xdr_sim_Simple_Param, xdr_sim_ID_Param, xdr_sim_Simple_Result,
    // setup
    xdr_sim_Open_Param, xdr_sim_Open_Result, xdr_sim_Close_Param, xdr_sim_Get_Error_Result,
    xdr_sim_Command_Param, xdr_sim_Command_Result,
    // i2c
    xdr_sim_I2C_Read_Param, xdr_sim_I2C_Read_Reg_Param, xdr_sim_I2C_Read_Result, xdr_sim_I2C_Write_Param,
    xdr_sim_I2C_Block_Reg_Read_Param, xdr_sim_I2C_Block_Reg_Write_Param, xdr_sim_I2C_Block_Mask_Write_Param,
    // mdio
    xdr_sim_MDIO_Read_Param, xdr_sim_MDIO_Read_Param_No_Addr, xdr_sim_MDIO_Read_Result_Single,
    xdr_sim_MDIO_Read_Result, xdr_sim_MDIO_Write_Param, xdr_sim_MDIO_Write_Param_No_Addr,
    xdr_sim_MDIO_Mixed_Param, xdr_sim_MDIO_InterruptRequest_Param, xdr_sim_MDIO_InterruptProcessed_Param,
    xdr_sim_MDIO_FlushPort_Param, xdr_sim_MDIO_Result,
    // jtag, gpio
    xdr_sim_JTAG_ShiftMulti_Param, xdr_sim_JTAG_ShiftMulti_Result, xdr_sim_GPIO_Indexes_Param,
    xdr_sim_GPIO_Read_Result, xdr_sim_GPIO_States_Param, xdr_sim_GPIO_BitBang_Param,
    // adc
    xdr_sim_ADC_Result, xdr_sim_ADC_Data_Get_Param, xdr_sim_ADC_Data, xdr_sim_ADC_Dump,
    xdr_sim_ADC_ChannelMask, xdr_sim_ADC_Max_Result, xdr_sim_ADC_Event, xdr_sim_ADC_EventData,
    // thermal
    xdr_sim_THRM_Result, xdr_sim_THRM_State, xdr_sim_THRM_Get_Temp, xdr_sim_THRM_Get_Temp_Arg,
    xdr_sim_THRM_Set_Temp_Arg, xdr_sim_THRM_Control_Arg,
    // port mapper
    xdr_sim_Port_Mapping, xdr_sim_Port_Dump);

template <class Record>
inline constexpr auto kRoutine = std::get<bool_t (*)(XDR*, Record*)>(kRoutines);

// The same, as libtirpc takes it: its routine type leaves the parameters open.
template <class Record>
xdrproc_t openRoutine() {
    return reinterpret_cast<xdrproc_t>(kRoutine<Record>);
}

// A decoded record with all that XDR allocated for it.
template <class Record>
class DecodedRecord {
public:
    explicit DecodedRecord(std::string_view bytes) {
        XDR xdr{};
        // NOLINTNEXTLINE(cppcoreguidelines-pro-type-const-cast): only read
        xdrmem_create(&xdr, const_cast<char*>(bytes.data()), static_cast<u_int>(bytes.size()), XDR_DECODE);
        whole_ = kRoutine<Record>(&xdr, &record_) != 0;
    }
    ~DecodedRecord() {
        XDR xdr{};
        xdr.x_op = XDR_FREE;
        kRoutine<Record>(&xdr, &record_);
    }
    DecodedRecord(const DecodedRecord&) = delete;
    DecodedRecord& operator=(const DecodedRecord&) = delete;

    // False when the bytes were not such a record; it then holds what came before the place where they fail.
    explicit operator bool() const { return whole_; }
    Record& operator*() { return record_; }

private:
    Record record_{};
    bool whole_ = false;
};

} // namespace OrvaneSim
