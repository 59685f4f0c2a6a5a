// The client stubs: one plain function for each procedure of the board's RPC programs.
#pragma once

#include "ov_sys/Interface/rpc_protocol/Records.h"

extern "C" {

// All stubs have one shape: <procedure>_1(argument record, result record, client handle). A stub makes
// exactly one call on `client` (of the program under which it stands below) and returns that call's status;
// the board's own verdict is in the result record. It blocks for at most 2 s, or for the handle's own
// time-out once that has been set. The argument's lists stay the caller's; the result is neither cleared
// before nor freed after the call: the caller zeroes it, or presets its pointers (see DecodeGuard.h), and
// frees what the decode allocated (see freeDecoded in Codec.h). Nothing is thrown or retried. Any thread;
// calls on one handle, which must outlive them, come one after the other.

// Program "setup".
ORVANE_API enum clnt_stat open_connection_1(Open_Param param, Open_Result* result, CLIENT* client);
ORVANE_API enum clnt_stat close_connection_1(Close_Param param, Simple_Result* result, CLIENT* client);
ORVANE_API enum clnt_stat get_error_msg_1(Simple_Param param, Get_Error_Result* result, CLIENT* client);
ORVANE_API enum clnt_stat ping_1(int param, int* result, CLIENT* client);
ORVANE_API enum clnt_stat pingclient_1(ID_Param param, Simple_Result* result, CLIENT* client);
ORVANE_API enum clnt_stat execute_command_1(Command_Param param, Command_Result* result, CLIENT* client);

// Program "MDIO".
ORVANE_API enum clnt_stat mdio_read_1(MDIO_Read_Param param, MDIO_Read_Result* result, CLIENT* client);
ORVANE_API enum clnt_stat mdio_write_1(MDIO_Write_Param param, MDIO_Result* result, CLIENT* client);
ORVANE_API enum clnt_stat mdio_interruptrequest_1(MDIO_InterruptRequest_Param param, MDIO_Result* result,
                                                  CLIENT* client);
ORVANE_API enum clnt_stat mdio_interruptwait_1(Simple_Param param, MDIO_Result* result, CLIENT* client);
ORVANE_API enum clnt_stat mdio_interruptprocessed_1(MDIO_InterruptProcessed_Param param, MDIO_Result* result,
                                                    CLIENT* client);
ORVANE_API enum clnt_stat mdio_interrutprelease_1(Simple_Param param, MDIO_Result* result, CLIENT* client);
ORVANE_API enum clnt_stat mdio_flushport_1(MDIO_FlushPort_Param param, MDIO_Result* result, CLIENT* client);
ORVANE_API enum clnt_stat mdio_singlewire_1(Simple_Param param, MDIO_Result* result, CLIENT* client);
ORVANE_API enum clnt_stat mdio_mixedblock_1(MDIO_Mixed_Param param, MDIO_Read_Result* result, CLIENT* client);
ORVANE_API enum clnt_stat mdio_setpreamblecount_1(Simple_Param param, Simple_Result* result, CLIENT* client);
ORVANE_API enum clnt_stat mdio_read_c22_1(MDIO_Read_Param param, MDIO_Read_Result* result, CLIENT* client);
ORVANE_API enum clnt_stat mdio_write_c22_1(MDIO_Write_Param param, MDIO_Result* result, CLIENT* client);
ORVANE_API enum clnt_stat mdio_mixedblock_c22_1(MDIO_Mixed_Param param, MDIO_Read_Result* result,
                                                CLIENT* client);
ORVANE_API enum clnt_stat mdio_read_c22_zrext32_1(MDIO_Read_Param param, MDIO_Read_Result* result,
                                                  CLIENT* client);
ORVANE_API enum clnt_stat mdio_write_c22_zrext32_1(MDIO_Write_Param param, MDIO_Result* result,
                                                   CLIENT* client);
ORVANE_API enum clnt_stat mdio_read_preinc_c22_zrext32_1(MDIO_Read_Param_No_Addr param,
                                                         MDIO_Read_Result_Single* result, CLIENT* client);
ORVANE_API enum clnt_stat mdio_write_preinc_c22_zrext32_1(MDIO_Write_Param_No_Addr param, MDIO_Result* result,
                                                          CLIENT* client);
ORVANE_API enum clnt_stat mdio_read_curraddr_c22_zrext32_1(MDIO_Read_Param_No_Addr param,
                                                           MDIO_Read_Result_Single* result, CLIENT* client);
ORVANE_API enum clnt_stat mdio_write_curraddr_c22_zrext32_1(MDIO_Write_Param_No_Addr param,
                                                            MDIO_Result* result, CLIENT* client);
ORVANE_API enum clnt_stat mdio_mixedblock_c22_zrext32_1(MDIO_Mixed_Param param, MDIO_Read_Result* result,
                                                        CLIENT* client);

// Program "I2C".
ORVANE_API enum clnt_stat i2c_read_1(I2C_Read_Param param, I2C_Read_Result* result, CLIENT* client);
ORVANE_API enum clnt_stat i2c_write_1(I2C_Write_Param param, Simple_Result* result, CLIENT* client);
ORVANE_API enum clnt_stat i2c_read_reg_1(I2C_Read_Reg_Param param, I2C_Read_Result* result, CLIENT* client);
ORVANE_API enum clnt_stat i2c_block_write_register_1(I2C_Block_Reg_Write_Param param, Simple_Result* result,
                                                     CLIENT* client);
ORVANE_API enum clnt_stat i2c_block_read_register_1(I2C_Block_Reg_Read_Param param, I2C_Read_Result* result,
                                                    CLIENT* client);
ORVANE_API enum clnt_stat i2c_block_write_mask_1(I2C_Block_Mask_Write_Param param, Simple_Result* result,
                                                 CLIENT* client);

// Program "GPIO".
ORVANE_API enum clnt_stat gpio_read_1(GPIO_Indexes_Param param, GPIO_Read_Result* result, CLIENT* client);
ORVANE_API enum clnt_stat gpio_write_1(GPIO_States_Param param, Simple_Result* result, CLIENT* client);
ORVANE_API enum clnt_stat gpio_setdefault_1(GPIO_Indexes_Param param, Simple_Result* result, CLIENT* client);
ORVANE_API enum clnt_stat gpio_reset_1(Simple_Param param, Simple_Result* result, CLIENT* client);
ORVANE_API enum clnt_stat gpio_enableoutput_1(GPIO_States_Param param, Simple_Result* result, CLIENT* client);
ORVANE_API enum clnt_stat gpio_bitbang_1(GPIO_BitBang_Param param, GPIO_Read_Result* result, CLIENT* client);
ORVANE_API enum clnt_stat gpio_readoutputenable_1(GPIO_Indexes_Param param, GPIO_Read_Result* result,
                                                  CLIENT* client);

// Program "JTAG".
ORVANE_API enum clnt_stat jtag_maxbytes_1(Simple_Param param, Simple_Result* result, CLIENT* client);
ORVANE_API enum clnt_stat jtag_shiftmulti_1(JTAG_ShiftMulti_Param param, JTAG_ShiftMulti_Result* result,
                                            CLIENT* client);

// Program "keep-alive".
ORVANE_API enum clnt_stat pingkeepalive_1(ID_Param param, Simple_Result* result, CLIENT* client);

// Program "ADC".
ORVANE_API enum clnt_stat adc_start_1(Simple_Param param, ADC_Result* result, CLIENT* client);
ORVANE_API enum clnt_stat adc_stop_1(Simple_Param param, ADC_Result* result, CLIENT* client);
ORVANE_API enum clnt_stat adc_initialize_1(Simple_Param param, ADC_Result* result, CLIENT* client);
ORVANE_API enum clnt_stat adc_getdata_1(ADC_Data_Get_Param param, ADC_Data* result, CLIENT* client);
ORVANE_API enum clnt_stat adc_setdumpfile_1(ADC_Dump param, ADC_Result* result, CLIENT* client);
ORVANE_API enum clnt_stat adc_setchannelmask_1(ADC_ChannelMask param, ADC_Result* result, CLIENT* client);
ORVANE_API enum clnt_stat adc_maxadc_1(Simple_Param param, ADC_Max_Result* result, CLIENT* client);
ORVANE_API enum clnt_stat adc_seteventname_1(ADC_Event param, ADC_Result* result, CLIENT* client);
ORVANE_API enum clnt_stat adc_getevents_1(Simple_Param param, ADC_EventData* result, CLIENT* client);

// Program "thermal".
ORVANE_API enum clnt_stat thrm_connect_1(Simple_Param param, THRM_Result* result, CLIENT* client);
ORVANE_API enum clnt_stat thrm_disconnect_1(Simple_Param param, THRM_Result* result, CLIENT* client);
ORVANE_API enum clnt_stat thrm_getstate_1(Simple_Param param, THRM_State* result, CLIENT* client);
ORVANE_API enum clnt_stat thrm_gettemperature_1(THRM_Get_Temp_Arg param, THRM_Get_Temp* result,
                                                CLIENT* client);
ORVANE_API enum clnt_stat thrm_settemperature_1(THRM_Set_Temp_Arg param, THRM_Result* result, CLIENT* client);
ORVANE_API enum clnt_stat thrm_startcontrol_1(THRM_Control_Arg param, THRM_Result* result, CLIENT* client);
ORVANE_API enum clnt_stat thrm_stopcontrol_1(Simple_Param param, THRM_Result* result, CLIENT* client);
ORVANE_API enum clnt_stat thrm_getsettledtemperature_1(THRM_Get_Temp_Arg param, THRM_Get_Temp* result,
                                                       CLIENT* client);
ORVANE_API enum clnt_stat thrm_setdefaulttemperature_1(THRM_Set_Temp_Arg param, THRM_Result* result,
                                                       CLIENT* client);

} // extern "C"
