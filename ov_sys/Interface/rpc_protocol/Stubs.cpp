// Each stub is the one call of its procedure.
#include "ov_sys/Interface/rpc_protocol/Stubs.h"

#include "ov_sys/Interface/rpc_protocol/Codec.h"
#include "ov_sys/Interface/rpc_protocol/Programs.h"

using Orvane::Programs::ADCProcedure;
using Orvane::Programs::GPIOProcedure;
using Orvane::Programs::I2CProcedure;
using Orvane::Programs::JTAGProcedure;
using Orvane::Programs::KeepAliveProcedure;
using Orvane::Programs::MDIOProcedure;
using Orvane::Programs::SetupProcedure;
using Orvane::Programs::ThermalProcedure;

namespace {

// Holds while the handle has no time-out of its own.
constexpr timeval kCallTimeout{2, 0};

template <class Procedure, class Param, class Result>
clnt_stat call(CLIENT* client, Procedure procedure, Param& param, Result* result) {
    return clnt_call(client, static_cast<rpcproc_t>(procedure), Orvane::xdrProcedure<Param>, &param,
                     Orvane::xdrProcedure<Result>, result, kCallTimeout);
}

} // namespace

clnt_stat open_connection_1(Open_Param param, Open_Result* result, CLIENT* client) {
    return call(client, SetupProcedure::OpenConnection, param, result);
}

clnt_stat close_connection_1(Close_Param param, Simple_Result* result, CLIENT* client) {
    return call(client, SetupProcedure::CloseConnection, param, result);
}

clnt_stat get_error_msg_1(Simple_Param param, Get_Error_Result* result, CLIENT* client) {
    return call(client, SetupProcedure::GetErrorMessage, param, result);
}

clnt_stat ping_1(int param, int* result, CLIENT* client) {
    return call(client, SetupProcedure::Ping, param, result);
}

clnt_stat pingclient_1(ID_Param param, Simple_Result* result, CLIENT* client) {
    return call(client, SetupProcedure::PingClient, param, result);
}

clnt_stat execute_command_1(Command_Param param, Command_Result* result, CLIENT* client) {
    return call(client, SetupProcedure::ExecuteCommand, param, result);
}

clnt_stat mdio_read_1(MDIO_Read_Param param, MDIO_Read_Result* result, CLIENT* client) {
    return call(client, MDIOProcedure::Read, param, result);
}

clnt_stat mdio_write_1(MDIO_Write_Param param, MDIO_Result* result, CLIENT* client) {
    return call(client, MDIOProcedure::Write, param, result);
}

clnt_stat mdio_interruptrequest_1(MDIO_InterruptRequest_Param param, MDIO_Result* result, CLIENT* client) {
    return call(client, MDIOProcedure::InterruptRequest, param, result);
}

clnt_stat mdio_interruptwait_1(Simple_Param param, MDIO_Result* result, CLIENT* client) {
    return call(client, MDIOProcedure::InterruptWait, param, result);
}

clnt_stat mdio_interruptprocessed_1(MDIO_InterruptProcessed_Param param, MDIO_Result* result,
                                    CLIENT* client) {
    return call(client, MDIOProcedure::InterruptProcessed, param, result);
}

clnt_stat mdio_interrutprelease_1(Simple_Param param, MDIO_Result* result, CLIENT* client) {
    return call(client, MDIOProcedure::InterruptRelease, param, result);
}

clnt_stat mdio_flushport_1(MDIO_FlushPort_Param param, MDIO_Result* result, CLIENT* client) {
    return call(client, MDIOProcedure::FlushPort, param, result);
}

clnt_stat mdio_singlewire_1(Simple_Param param, MDIO_Result* result, CLIENT* client) {
    return call(client, MDIOProcedure::SingleWire, param, result);
}

clnt_stat mdio_mixedblock_1(MDIO_Mixed_Param param, MDIO_Read_Result* result, CLIENT* client) {
    return call(client, MDIOProcedure::MixedBlock, param, result);
}

clnt_stat mdio_setpreamblecount_1(Simple_Param param, Simple_Result* result, CLIENT* client) {
    return call(client, MDIOProcedure::SetPreambleCount, param, result);
}

clnt_stat mdio_read_c22_1(MDIO_Read_Param param, MDIO_Read_Result* result, CLIENT* client) {
    return call(client, MDIOProcedure::ReadC22, param, result);
}

clnt_stat mdio_write_c22_1(MDIO_Write_Param param, MDIO_Result* result, CLIENT* client) {
    return call(client, MDIOProcedure::WriteC22, param, result);
}

clnt_stat mdio_mixedblock_c22_1(MDIO_Mixed_Param param, MDIO_Read_Result* result, CLIENT* client) {
    return call(client, MDIOProcedure::MixedBlockC22, param, result);
}

clnt_stat mdio_read_c22_zrext32_1(MDIO_Read_Param param, MDIO_Read_Result* result, CLIENT* client) {
    return call(client, MDIOProcedure::ReadC22ZrExt32, param, result);
}

clnt_stat mdio_write_c22_zrext32_1(MDIO_Write_Param param, MDIO_Result* result, CLIENT* client) {
    return call(client, MDIOProcedure::WriteC22ZrExt32, param, result);
}

clnt_stat mdio_read_preinc_c22_zrext32_1(MDIO_Read_Param_No_Addr param, MDIO_Read_Result_Single* result,
                                         CLIENT* client) {
    return call(client, MDIOProcedure::ReadPreincrementC22ZrExt32, param, result);
}

clnt_stat mdio_write_preinc_c22_zrext32_1(MDIO_Write_Param_No_Addr param, MDIO_Result* result,
                                          CLIENT* client) {
    return call(client, MDIOProcedure::WritePreincrementC22ZrExt32, param, result);
}

clnt_stat mdio_read_curraddr_c22_zrext32_1(MDIO_Read_Param_No_Addr param, MDIO_Read_Result_Single* result,
                                           CLIENT* client) {
    return call(client, MDIOProcedure::ReadCurrentAddressC22ZrExt32, param, result);
}

clnt_stat mdio_write_curraddr_c22_zrext32_1(MDIO_Write_Param_No_Addr param, MDIO_Result* result,
                                            CLIENT* client) {
    return call(client, MDIOProcedure::WriteCurrentAddressC22ZrExt32, param, result);
}

clnt_stat mdio_mixedblock_c22_zrext32_1(MDIO_Mixed_Param param, MDIO_Read_Result* result, CLIENT* client) {
    return call(client, MDIOProcedure::MixedBlockC22ZrExt32, param, result);
}

clnt_stat i2c_read_1(I2C_Read_Param param, I2C_Read_Result* result, CLIENT* client) {
    return call(client, I2CProcedure::Read, param, result);
}

clnt_stat i2c_write_1(I2C_Write_Param param, Simple_Result* result, CLIENT* client) {
    return call(client, I2CProcedure::Write, param, result);
}

clnt_stat i2c_read_reg_1(I2C_Read_Reg_Param param, I2C_Read_Result* result, CLIENT* client) {
    return call(client, I2CProcedure::ReadRegister, param, result);
}

clnt_stat i2c_block_write_register_1(I2C_Block_Reg_Write_Param param, Simple_Result* result, CLIENT* client) {
    return call(client, I2CProcedure::BlockWriteRegister, param, result);
}

clnt_stat i2c_block_read_register_1(I2C_Block_Reg_Read_Param param, I2C_Read_Result* result, CLIENT* client) {
    return call(client, I2CProcedure::BlockReadRegister, param, result);
}

clnt_stat i2c_block_write_mask_1(I2C_Block_Mask_Write_Param param, Simple_Result* result, CLIENT* client) {
    return call(client, I2CProcedure::BlockWriteMask, param, result);
}

clnt_stat gpio_read_1(GPIO_Indexes_Param param, GPIO_Read_Result* result, CLIENT* client) {
    return call(client, GPIOProcedure::Read, param, result);
}

clnt_stat gpio_write_1(GPIO_States_Param param, Simple_Result* result, CLIENT* client) {
    return call(client, GPIOProcedure::Write, param, result);
}

clnt_stat gpio_setdefault_1(GPIO_Indexes_Param param, Simple_Result* result, CLIENT* client) {
    return call(client, GPIOProcedure::SetDefault, param, result);
}

clnt_stat gpio_reset_1(Simple_Param param, Simple_Result* result, CLIENT* client) {
    return call(client, GPIOProcedure::Reset, param, result);
}

clnt_stat gpio_enableoutput_1(GPIO_States_Param param, Simple_Result* result, CLIENT* client) {
    return call(client, GPIOProcedure::EnableOutput, param, result);
}

clnt_stat gpio_bitbang_1(GPIO_BitBang_Param param, GPIO_Read_Result* result, CLIENT* client) {
    return call(client, GPIOProcedure::BitBang, param, result);
}

clnt_stat gpio_readoutputenable_1(GPIO_Indexes_Param param, GPIO_Read_Result* result, CLIENT* client) {
    return call(client, GPIOProcedure::ReadOutputEnable, param, result);
}

clnt_stat jtag_maxbytes_1(Simple_Param param, Simple_Result* result, CLIENT* client) {
    return call(client, JTAGProcedure::MaxBytes, param, result);
}

clnt_stat jtag_shiftmulti_1(JTAG_ShiftMulti_Param param, JTAG_ShiftMulti_Result* result, CLIENT* client) {
    return call(client, JTAGProcedure::ShiftMulti, param, result);
}

clnt_stat pingkeepalive_1(ID_Param param, Simple_Result* result, CLIENT* client) {
    return call(client, KeepAliveProcedure::Ping, param, result);
}

clnt_stat adc_start_1(Simple_Param param, ADC_Result* result, CLIENT* client) {
    return call(client, ADCProcedure::Start, param, result);
}

clnt_stat adc_stop_1(Simple_Param param, ADC_Result* result, CLIENT* client) {
    return call(client, ADCProcedure::Stop, param, result);
}

clnt_stat adc_initialize_1(Simple_Param param, ADC_Result* result, CLIENT* client) {
    return call(client, ADCProcedure::Initialize, param, result);
}

clnt_stat adc_getdata_1(ADC_Data_Get_Param param, ADC_Data* result, CLIENT* client) {
    return call(client, ADCProcedure::GetData, param, result);
}

clnt_stat adc_setdumpfile_1(ADC_Dump param, ADC_Result* result, CLIENT* client) {
    return call(client, ADCProcedure::SetDumpFile, param, result);
}

clnt_stat adc_setchannelmask_1(ADC_ChannelMask param, ADC_Result* result, CLIENT* client) {
    return call(client, ADCProcedure::SetChannelMask, param, result);
}

clnt_stat adc_maxadc_1(Simple_Param param, ADC_Max_Result* result, CLIENT* client) {
    return call(client, ADCProcedure::MaxADC, param, result);
}

clnt_stat adc_seteventname_1(ADC_Event param, ADC_Result* result, CLIENT* client) {
    return call(client, ADCProcedure::SetEventName, param, result);
}

clnt_stat adc_getevents_1(Simple_Param param, ADC_EventData* result, CLIENT* client) {
    return call(client, ADCProcedure::GetEvents, param, result);
}

clnt_stat thrm_connect_1(Simple_Param param, THRM_Result* result, CLIENT* client) {
    return call(client, ThermalProcedure::Connect, param, result);
}

clnt_stat thrm_disconnect_1(Simple_Param param, THRM_Result* result, CLIENT* client) {
    return call(client, ThermalProcedure::Disconnect, param, result);
}

clnt_stat thrm_getstate_1(Simple_Param param, THRM_State* result, CLIENT* client) {
    return call(client, ThermalProcedure::GetState, param, result);
}

clnt_stat thrm_gettemperature_1(THRM_Get_Temp_Arg param, THRM_Get_Temp* result, CLIENT* client) {
    return call(client, ThermalProcedure::GetTemperature, param, result);
}

clnt_stat thrm_settemperature_1(THRM_Set_Temp_Arg param, THRM_Result* result, CLIENT* client) {
    return call(client, ThermalProcedure::SetTemperature, param, result);
}

clnt_stat thrm_startcontrol_1(THRM_Control_Arg param, THRM_Result* result, CLIENT* client) {
    return call(client, ThermalProcedure::StartControl, param, result);
}

clnt_stat thrm_stopcontrol_1(Simple_Param param, THRM_Result* result, CLIENT* client) {
    return call(client, ThermalProcedure::StopControl, param, result);
}

clnt_stat thrm_getsettledtemperature_1(THRM_Get_Temp_Arg param, THRM_Get_Temp* result, CLIENT* client) {
    return call(client, ThermalProcedure::GetSettledTemperature, param, result);
}

clnt_stat thrm_setdefaulttemperature_1(THRM_Set_Temp_Arg param, THRM_Result* result, CLIENT* client) {
    return call(client, ThermalProcedure::SetDefaultTemperature, param, result);
}
