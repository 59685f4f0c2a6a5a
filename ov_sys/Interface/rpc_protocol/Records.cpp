// The XDR routine of every wire record: its members in wire order, up to the first that fails.
#include "ov_sys/Interface/rpc_protocol/Records.h"

#include "ov_sys/Interface/rpc_protocol/XdrHelpers.h"

#include <arpa/inet.h>

using Orvane::Xdr::array;
using Orvane::Xdr::opaque;
using Orvane::Xdr::string;

namespace {

constexpr u_int kOpenResultBytes = 16;

int32_t hostToWire(u_int word) {
    return static_cast<int32_t>(htonl(word));
}

u_int wireToHost(int32_t word) {
    return ntohl(static_cast<u_int>(word));
}

} // namespace

bool_t xdr_StringArrayEntry(XDR* stream, StringArrayEntry* record) {
    return string(stream, record->text) && xdr_u_int(stream, &record->length);
}

bool_t xdr_Simple_Param(XDR* stream, Simple_Param* record) {
    return xdr_u_int(stream, &record->value) && xdr_u_int(stream, &record->handle);
}

bool_t xdr_ID_Param(XDR* stream, ID_Param* record) {
    return xdr_u_int(stream, &record->handle);
}

bool_t xdr_Simple_Result(XDR* stream, Simple_Result* record) {
    return xdr_int(stream, &record->value) && xdr_int(stream, &record->error);
}

bool_t xdr_JTAG_ShiftMulti_Param(XDR* stream, JTAG_ShiftMulti_Param* record) {
    return xdr_u_int(stream, &record->handle) && array(stream, record->list1) &&
           array(stream, record->list2) && array(stream, record->list3);
}

bool_t xdr_JTAG_ShiftMulti_Result(XDR* stream, JTAG_ShiftMulti_Result* record) {
    return array(stream, record->entries) && xdr_int(stream, &record->error);
}

bool_t xdr_GPIO_Indexes_Param(XDR* stream, GPIO_Indexes_Param* record) {
    return xdr_u_int(stream, &record->handle) && opaque(stream, record->indexes);
}

bool_t xdr_GPIO_Read_Result(XDR* stream, GPIO_Read_Result* record) {
    return xdr_int(stream, &record->error) && opaque(stream, record->states);
}

bool_t xdr_GPIO_States_Param(XDR* stream, GPIO_States_Param* record) {
    return xdr_u_int(stream, &record->handle) && opaque(stream, record->indexes) &&
           opaque(stream, record->states);
}

bool_t xdr_GPIO_BitBang_Param(XDR* stream, GPIO_BitBang_Param* record) {
    return xdr_u_int(stream, &record->handle) && opaque(stream, record->bytes1) &&
           opaque(stream, record->bytes2) && opaque(stream, record->bytes3);
}

bool_t xdr_I2C_Read_Param(XDR* stream, I2C_Read_Param* record) {
    return xdr_u_int(stream, &record->handle) && xdr_u_char(stream, &record->byte1) &&
           xdr_u_int(stream, &record->word1) && xdr_u_char(stream, &record->byte2) &&
           xdr_u_char(stream, &record->byte3);
}

bool_t xdr_I2C_Read_Reg_Param(XDR* stream, I2C_Read_Reg_Param* record) {
    return xdr_u_int(stream, &record->handle) && xdr_u_char(stream, &record->byte1) &&
           xdr_u_int(stream, &record->word1) && xdr_u_int(stream, &record->word2) &&
           xdr_u_char(stream, &record->byte2) && xdr_u_char(stream, &record->byte3);
}

bool_t xdr_I2C_Read_Result(XDR* stream, I2C_Read_Result* record) {
    return xdr_int(stream, &record->error) && array(stream, record->data);
}

bool_t xdr_I2C_Write_Param(XDR* stream, I2C_Write_Param* record) {
    return xdr_u_int(stream, &record->handle) && xdr_u_char(stream, &record->byte1) &&
           xdr_u_int(stream, &record->word1) && array(stream, record->data);
}

bool_t xdr_I2C_Block_Trans_Param(XDR* stream, I2C_Block_Trans_Param* record) {
    return array(stream, record->bytes) && array(stream, record->words1) && array(stream, record->words2) &&
           array(stream, record->words3) && array(stream, record->words4);
}

bool_t xdr_I2C_Block_Reg_Read_Param(XDR* stream, I2C_Block_Reg_Read_Param* record) {
    return xdr_u_int(stream, &record->handle) && xdr_I2C_Block_Trans_Param(stream, &record->trans);
}

bool_t xdr_I2C_Block_Reg_Write_Param(XDR* stream, I2C_Block_Reg_Write_Param* record) {
    return xdr_u_int(stream, &record->handle) && xdr_I2C_Block_Trans_Param(stream, &record->trans) &&
           array(stream, record->data);
}

bool_t xdr_I2C_Block_Mask_Write_Param(XDR* stream, I2C_Block_Mask_Write_Param* record) {
    return xdr_u_int(stream, &record->handle) && xdr_I2C_Block_Trans_Param(stream, &record->trans) &&
           array(stream, record->data) && xdr_u_char(stream, &record->mask);
}

bool_t xdr_MDIO_Mixed_Param(XDR* stream, MDIO_Mixed_Param* record) {
    return xdr_u_int(stream, &record->handle) && array(stream, record->words1) &&
           array(stream, record->words2) && array(stream, record->words3) && array(stream, record->words4);
}

bool_t xdr_MDIO_Read_Param(XDR* stream, MDIO_Read_Param* record) {
    return xdr_u_int(stream, &record->handle) && array(stream, record->addresses);
}

bool_t xdr_MDIO_Read_Param_No_Addr(XDR* stream, MDIO_Read_Param_No_Addr* record) {
    return xdr_u_int(stream, &record->handle);
}

bool_t xdr_MDIO_Read_Result_Single(XDR* stream, MDIO_Read_Result_Single* record) {
    return xdr_int(stream, &record->error) && xdr_u_int(stream, &record->value);
}

bool_t xdr_MDIO_Read_Result(XDR* stream, MDIO_Read_Result* record) {
    return xdr_int(stream, &record->error) && array(stream, record->data);
}

bool_t xdr_MDIO_Write_Param(XDR* stream, MDIO_Write_Param* record) {
    return xdr_u_int(stream, &record->handle) && xdr_int(stream, &record->int1) &&
           array(stream, record->addresses) && array(stream, record->values);
}

bool_t xdr_MDIO_Write_Param_No_Addr(XDR* stream, MDIO_Write_Param_No_Addr* record) {
    return xdr_u_int(stream, &record->handle) && xdr_u_int(stream, &record->value);
}

bool_t xdr_MDIO_InterruptRequest_Param(XDR* stream, MDIO_InterruptRequest_Param* record) {
    return xdr_u_int(stream, &record->handle) && xdr_u_char(stream, &record->byte1) &&
           xdr_u_char(stream, &record->byte2) && xdr_int(stream, &record->int1) &&
           xdr_int(stream, &record->int2);
}

bool_t xdr_MDIO_InterruptProcessed_Param(XDR* stream, MDIO_InterruptProcessed_Param* record) {
    return xdr_u_int(stream, &record->handle) && xdr_u_int(stream, &record->word1);
}

bool_t xdr_MDIO_Result(XDR* stream, MDIO_Result* record) {
    return xdr_int(stream, &record->value) && xdr_int(stream, &record->error);
}

bool_t xdr_MDIO_FlushPort_Param(XDR* stream, MDIO_FlushPort_Param* record) {
    return xdr_u_int(stream, &record->handle) && xdr_u_char(stream, &record->byte1) &&
           xdr_u_char(stream, &record->byte2);
}

bool_t xdr_Open_Param(XDR* stream, Open_Param* record) {
    return xdr_u_int(stream, &record->sessionId) && xdr_u_char(stream, &record->byte1) &&
           xdr_u_char(stream, &record->byte2) && xdr_u_char(stream, &record->byte3) &&
           xdr_u_char(stream, &record->byte4) && xdr_int(stream, &record->int1) &&
           xdr_int(stream, &record->int2);
}

// Word by word; the stream's inline buffer saves four calls.
bool_t xdr_Open_Result(XDR* stream, Open_Result* record) {
    int32_t* const words = stream->x_op == XDR_FREE ? nullptr : XDR_INLINE(stream, kOpenResultBytes);
    if (words == nullptr)
        return xdr_u_int(stream, &record->word1) && xdr_u_int(stream, &record->sessionId) &&
               xdr_u_int(stream, &record->word3) && xdr_int(stream, &record->error);
    if (stream->x_op == XDR_ENCODE) {
        words[0] = hostToWire(record->word1);
        words[1] = hostToWire(record->sessionId);
        words[2] = hostToWire(record->word3);
        words[3] = hostToWire(static_cast<u_int>(record->error));
    } else {
        record->word1 = wireToHost(words[0]);
        record->sessionId = wireToHost(words[1]);
        record->word3 = wireToHost(words[2]);
        record->error = static_cast<int>(wireToHost(words[3]));
    }
    return TRUE;
}

bool_t xdr_Close_Param(XDR* stream, Close_Param* record) {
    return xdr_u_int(stream, &record->handle) && xdr_int(stream, &record->int1);
}

bool_t xdr_Get_UID_Result(XDR* stream, Get_UID_Result* record) {
    return xdr_u_char(stream, &record->byte1) && xdr_u_int(stream, &record->word1) &&
           xdr_int(stream, &record->error);
}

bool_t xdr_Command_Param(XDR* stream, Command_Param* record) {
    return xdr_u_int(stream, &record->handle) && array(stream, record->command) &&
           xdr_u_int(stream, &record->word1);
}

bool_t xdr_Command_Result(XDR* stream, Command_Result* record) {
    return xdr_int(stream, &record->error) && xdr_int(stream, &record->status) &&
           array(stream, record->output1) && array(stream, record->output2);
}

bool_t xdr_Get_Error_Result(XDR* stream, Get_Error_Result* record) {
    return xdr_int(stream, &record->error) && xdr_u_char(stream, &record->byte1) &&
           xdr_int(stream, &record->int1);
}

bool_t xdr_ADC_Result(XDR* stream, ADC_Result* record) {
    return xdr_int(stream, &record->error);
}

bool_t xdr_ADC_Data_Get_Param(XDR* stream, ADC_Data_Get_Param* record) {
    return xdr_u_int(stream, &record->handle) && xdr_u_int(stream, &record->count);
}

bool_t xdr_ADC_Max_Result(XDR* stream, ADC_Max_Result* record) {
    return xdr_int(stream, &record->error) && array(stream, record->data);
}

bool_t xdr_ADC_Data(XDR* stream, ADC_Data* record) {
    return xdr_int(stream, &record->error) && array(stream, record->data);
}

bool_t xdr_ADC_Dump(XDR* stream, ADC_Dump* record) {
    return xdr_u_int(stream, &record->handle) && array(stream, record->name);
}

bool_t xdr_ADC_Event(XDR* stream, ADC_Event* record) {
    return xdr_u_int(stream, &record->handle) && array(stream, record->name);
}

bool_t xdr_ADC_EventData(XDR* stream, ADC_EventData* record) {
    return xdr_int(stream, &record->error) && array(stream, record->data);
}

bool_t xdr_ADC_ChannelMask(XDR* stream, ADC_ChannelMask* record) {
    return xdr_u_int(stream, &record->handle) && xdr_u_int(stream, &record->mask);
}

bool_t xdr_THRM_Result(XDR* stream, THRM_Result* record) {
    return xdr_int(stream, &record->error);
}

bool_t xdr_THRM_State(XDR* stream, THRM_State* record) {
    return xdr_int(stream, &record->error) && xdr_int(stream, &record->state);
}

bool_t xdr_THRM_Get_Temp(XDR* stream, THRM_Get_Temp* record) {
    return xdr_int(stream, &record->error) && xdr_float(stream, &record->temperature);
}

bool_t xdr_THRM_Get_Temp_Arg(XDR* stream, THRM_Get_Temp_Arg* record) {
    return xdr_int(stream, &record->handle) && xdr_u_int(stream, &record->channel);
}

bool_t xdr_THRM_Set_Temp_Arg(XDR* stream, THRM_Set_Temp_Arg* record) {
    return xdr_int(stream, &record->handle) && xdr_float(stream, &record->temperature) &&
           xdr_u_char(stream, &record->byte1) && xdr_u_int(stream, &record->channel);
}

bool_t xdr_THRM_Control_Arg(XDR* stream, THRM_Control_Arg* record) {
    return xdr_int(stream, &record->handle) && xdr_u_int(stream, &record->channel);
}
