// Every record that crosses the wire between this library and a board's RPC server, with its XDR routine.
#pragma once

#include "ov_sys/Interface/foundation/Export.h"

#include <rpc/rpc.h>

extern "C" {

// A counted array (in the GPIO records: opaque data) is a pair: the number of elements, which has no maximum,
// and a pointer to them, reached as name.name_len and name.name_val.
#define ORVANE_COUNTED(Element, name)                                                                        \
    struct {                                                                                                 \
        u_int name##_len;                                                                                    \
        Element* name##_val;                                                                                 \
    } name

// Members stand in wire order. `handle` is the session word: (call sequence << 8) | session id. `error` is
// the board's status for the call: 0, or a negative errno value.

// One string of a list.
struct StringArrayEntry {
    char* text;
    u_int length;
};

// One value for the session; the session word comes second.
struct Simple_Param {
    u_int value;
    u_int handle;
};

struct ID_Param {
    u_int handle;
};

// A value and, second, the status.
struct Simple_Result {
    int value;
    int error;
};

// The data list and the two TMS lists.
struct JTAG_ShiftMulti_Param {
    u_int handle;
    ORVANE_COUNTED(StringArrayEntry, list1);
    ORVANE_COUNTED(StringArrayEntry, list2);
    ORVANE_COUNTED(StringArrayEntry, list3);
};

// The status comes after the data.
struct JTAG_ShiftMulti_Result {
    ORVANE_COUNTED(StringArrayEntry, entries);
    int error;
};

struct GPIO_Indexes_Param {
    u_int handle;
    ORVANE_COUNTED(char, indexes);
};

struct GPIO_Read_Result {
    int error;
    ORVANE_COUNTED(char, states);
};

struct GPIO_States_Param {
    u_int handle;
    ORVANE_COUNTED(char, indexes);
    ORVANE_COUNTED(char, states);
};

// The bit-bang operation's three byte lists, in its order.
struct GPIO_BitBang_Param {
    u_int handle;
    ORVANE_COUNTED(char, bytes1);
    ORVANE_COUNTED(char, bytes2);
    ORVANE_COUNTED(char, bytes3);
};

struct I2C_Read_Param {
    u_int handle;
    u_char byte1;
    u_int word1;
    u_char byte2;
    u_char byte3;
};

struct I2C_Read_Reg_Param {
    u_int handle;
    u_char byte1;
    u_int word1;
    u_int word2;
    u_char byte2;
    u_char byte3;
};

struct I2C_Read_Result {
    int error;
    ORVANE_COUNTED(u_char, data);
};

struct I2C_Write_Param {
    u_int handle;
    u_char byte1;
    u_int word1;
    ORVANE_COUNTED(u_char, data);
};

// The block operations' byte list and four word lists; only ever embedded in another record.
struct I2C_Block_Trans_Param {
    ORVANE_COUNTED(u_char, bytes);
    ORVANE_COUNTED(u_int, words1);
    ORVANE_COUNTED(u_int, words2);
    ORVANE_COUNTED(u_int, words3);
    ORVANE_COUNTED(u_int, words4);
};

struct I2C_Block_Reg_Read_Param {
    u_int handle;
    I2C_Block_Trans_Param trans;
};

struct I2C_Block_Reg_Write_Param {
    u_int handle;
    I2C_Block_Trans_Param trans;
    ORVANE_COUNTED(u_char, data);
};

struct I2C_Block_Mask_Write_Param {
    u_int handle;
    I2C_Block_Trans_Param trans;
    ORVANE_COUNTED(u_char, data);
    u_char mask;
};

// words1: write data, words2: write addresses, words3: read addresses, words4: run lengths.
struct MDIO_Mixed_Param {
    u_int handle;
    ORVANE_COUNTED(u_int, words1);
    ORVANE_COUNTED(u_int, words2);
    ORVANE_COUNTED(u_int, words3);
    ORVANE_COUNTED(u_int, words4);
};

struct MDIO_Read_Param {
    u_int handle;
    ORVANE_COUNTED(u_int, addresses);
};

struct MDIO_Read_Param_No_Addr {
    u_int handle;
};

struct MDIO_Read_Result_Single {
    int error;
    u_int value;
};

struct MDIO_Read_Result {
    int error;
    ORVANE_COUNTED(u_int, data);
};

// int1 is 0.
struct MDIO_Write_Param {
    u_int handle;
    int int1;
    ORVANE_COUNTED(u_int, addresses);
    ORVANE_COUNTED(u_int, values);
};

struct MDIO_Write_Param_No_Addr {
    u_int handle;
    u_int value;
};

// No caller in this library.
struct MDIO_InterruptRequest_Param {
    u_int handle;
    u_char byte1;
    u_char byte2;
    int int1;
    int int2;
};

// No caller in this library.
struct MDIO_InterruptProcessed_Param {
    u_int handle;
    u_int word1;
};

// A value and, second, the status.
struct MDIO_Result {
    int value;
    int error;
};

struct MDIO_FlushPort_Param {
    u_int handle;
    u_char byte1;
    u_char byte2;
};

// The four bytes and two numbers describe the mode in which the session is asked for.
struct Open_Param {
    u_int sessionId;
    u_char byte1;
    u_char byte2;
    u_char byte3;
    u_char byte4;
    int int1;
    int int2;
};

// word1: session id, sessionId: key, word3: first call sequence.
struct Open_Result {
    u_int word1;
    u_int sessionId;
    u_int word3;
    int error;
};

struct Close_Param {
    u_int handle;
    int int1;
};

// No procedure sends it.
struct Get_UID_Result {
    u_char byte1;
    u_int word1;
    int error;
};

// The command text is a counted byte array; word1: the command's own time-out in seconds.
struct Command_Param {
    u_int handle;
    ORVANE_COUNTED(char, command);
    u_int word1;
};

// status: exit status; output1, output2: standard and error output, counted, not terminated.
struct Command_Result {
    int error;
    int status;
    ORVANE_COUNTED(char, output1);
    ORVANE_COUNTED(char, output2);
};

struct Get_Error_Result {
    int error;
    u_char byte1;
    int int1;
};

struct ADC_Result {
    int error;
};

// count: number of bytes wanted.
struct ADC_Data_Get_Param {
    u_int handle;
    u_int count;
};

struct ADC_Max_Result {
    int error;
    ORVANE_COUNTED(u_char, data);
};

struct ADC_Data {
    int error;
    ORVANE_COUNTED(u_char, data);
};

// name: dump file name, counted, not terminated.
struct ADC_Dump {
    u_int handle;
    ORVANE_COUNTED(char, name);
};

// name: event name, counted, not terminated.
struct ADC_Event {
    u_int handle;
    ORVANE_COUNTED(char, name);
};

struct ADC_EventData {
    int error;
    ORVANE_COUNTED(u_char, data);
};

struct ADC_ChannelMask {
    u_int handle;
    u_int mask;
};

struct THRM_Result {
    int error;
};

struct THRM_State {
    int error;
    int state;
};

// temperature: degrees Celsius.
struct THRM_Get_Temp {
    int error;
    float temperature;
};

struct THRM_Get_Temp_Arg {
    int handle;
    u_int channel;
};

// temperature: degrees Celsius.
struct THRM_Set_Temp_Arg {
    int handle;
    float temperature;
    u_char byte1;
    u_int channel;
};

struct THRM_Control_Arg {
    int handle;
    u_int channel;
};

#undef ORVANE_COUNTED

} // extern "C"

// Every wire record, once. RECORD(name) is expanded for each.
#define ORVANE_WIRE_RECORDS(RECORD)                                                                          \
    RECORD(StringArrayEntry)                                                                                 \
    RECORD(Simple_Param)                                                                                     \
    RECORD(ID_Param)                                                                                         \
    RECORD(Simple_Result)                                                                                    \
    RECORD(JTAG_ShiftMulti_Param)                                                                            \
    RECORD(JTAG_ShiftMulti_Result)                                                                           \
    RECORD(GPIO_Indexes_Param)                                                                               \
    RECORD(GPIO_Read_Result)                                                                                 \
    RECORD(GPIO_States_Param)                                                                                \
    RECORD(GPIO_BitBang_Param)                                                                               \
    RECORD(I2C_Read_Param)                                                                                   \
    RECORD(I2C_Read_Reg_Param)                                                                               \
    RECORD(I2C_Read_Result)                                                                                  \
    RECORD(I2C_Write_Param)                                                                                  \
    RECORD(I2C_Block_Trans_Param)                                                                            \
    RECORD(I2C_Block_Reg_Read_Param)                                                                         \
    RECORD(I2C_Block_Reg_Write_Param)                                                                        \
    RECORD(I2C_Block_Mask_Write_Param)                                                                       \
    RECORD(MDIO_Mixed_Param)                                                                                 \
    RECORD(MDIO_Read_Param)                                                                                  \
    RECORD(MDIO_Read_Param_No_Addr)                                                                          \
    RECORD(MDIO_Read_Result_Single)                                                                          \
    RECORD(MDIO_Read_Result)                                                                                 \
    RECORD(MDIO_Write_Param)                                                                                 \
    RECORD(MDIO_Write_Param_No_Addr)                                                                         \
    RECORD(MDIO_InterruptRequest_Param)                                                                      \
    RECORD(MDIO_InterruptProcessed_Param)                                                                    \
    RECORD(MDIO_Result)                                                                                      \
    RECORD(MDIO_FlushPort_Param)                                                                             \
    RECORD(Open_Param)                                                                                       \
    RECORD(Open_Result)                                                                                      \
    RECORD(Close_Param)                                                                                      \
    RECORD(Get_UID_Result)                                                                                   \
    RECORD(Command_Param)                                                                                    \
    RECORD(Command_Result)                                                                                   \
    RECORD(Get_Error_Result)                                                                                 \
    RECORD(ADC_Result)                                                                                       \
    RECORD(ADC_Data_Get_Param)                                                                               \
    RECORD(ADC_Max_Result)                                                                                   \
    RECORD(ADC_Data)                                                                                         \
    RECORD(ADC_Dump)                                                                                         \
    RECORD(ADC_Event)                                                                                        \
    RECORD(ADC_EventData)                                                                                    \
    RECORD(ADC_ChannelMask)                                                                                  \
    RECORD(THRM_Result)                                                                                      \
    RECORD(THRM_State)                                                                                       \
    RECORD(THRM_Get_Temp)                                                                                    \
    RECORD(THRM_Get_Temp_Arg)                                                                                \
    RECORD(THRM_Set_Temp_Arg)                                                                                \
    RECORD(THRM_Control_Arg)

extern "C" {

// xdr_<Record>(stream, record): encodes, decodes or frees `record` as the stream's operation says, member by
// member. Returns true on success, and false at the first member that fails; the members after it are then
// left alone. The caller owns both; whatever a decode allocated, also one that failed, belongs to the record
// until the same routine runs on it in XDR_FREE mode. A null pointer in the record lets a decode allocate
// (never more than a small multiple of what arrived, whatever count the stream claims), a preset one is
// decoded into unbounded unless a DecodeGuard announces its capacity. Blocks only as long as the stream does;
// throws nothing; any number of threads on different streams and records.
#define ORVANE_DECLARE_XDR_ROUTINE(Record) ORVANE_API bool_t xdr_##Record(XDR* stream, Record* record);
ORVANE_WIRE_RECORDS(ORVANE_DECLARE_XDR_ROUTINE)
#undef ORVANE_DECLARE_XDR_ROUTINE

} // extern "C"
