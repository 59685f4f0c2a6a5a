// Numbers of the board server's eight RPC programs and of their procedures: the wire identity of each
// service.
#pragma once

namespace Orvane::Programs {

// Program numbers, consecutive in the range that ONC RPC leaves to local assignment.
constexpr unsigned long Setup = 0x2FFFFFF0;     // over TCP
constexpr unsigned long I2C = 0x2FFFFFF1;       // over UDP
constexpr unsigned long MDIO = 0x2FFFFFF2;      // over UDP
constexpr unsigned long JTAG = 0x2FFFFFF3;      // over UDP
constexpr unsigned long GPIO = 0x2FFFFFF4;      // over UDP
constexpr unsigned long KeepAlive = 0x2FFFFFF5; // over UDP
constexpr unsigned long ADC = 0x2FFFFFF6;       // over TCP
constexpr unsigned long Thermal = 0x2FFFFFF7;   // over UDP

// Every program has this version.
constexpr unsigned long Version = 1;

enum class SetupProcedure : unsigned long {
    OpenConnection = 1,
    CloseConnection = 2,
    GetErrorMessage = 3,
    Ping = 4,
    PingClient = 5,
    ExecuteCommand = 6,
};

enum class I2CProcedure : unsigned long {
    Read = 1,
    Write = 2,
    ReadRegister = 3,
    BlockWriteRegister = 4,
    BlockReadRegister = 5,
    BlockWriteMask = 6,
};

enum class MDIOProcedure : unsigned long {
    Read = 1,
    Write = 2,
    InterruptRequest = 3,
    InterruptWait = 4,
    InterruptProcessed = 5,
    InterruptRelease = 6,
    FlushPort = 7,
    SingleWire = 8,
    MixedBlock = 9,
    SetPreambleCount = 10,
    ReadC22 = 11,
    WriteC22 = 12,
    MixedBlockC22 = 13,
    ReadC22ZrExt32 = 14,
    WriteC22ZrExt32 = 15,
    ReadPreincrementC22ZrExt32 = 16,
    WritePreincrementC22ZrExt32 = 17,
    ReadCurrentAddressC22ZrExt32 = 18,
    WriteCurrentAddressC22ZrExt32 = 19,
    MixedBlockC22ZrExt32 = 20,
};

// Procedure 2 exists on the board only.
enum class JTAGProcedure : unsigned long {
    MaxBytes = 1,
    ShiftMulti = 3,
};

enum class GPIOProcedure : unsigned long {
    Read = 1,
    Write = 2,
    SetDefault = 3,
    Reset = 4,
    EnableOutput = 5,
    BitBang = 6,
    ReadOutputEnable = 7,
};

enum class KeepAliveProcedure : unsigned long {
    Ping = 1,
};

enum class ADCProcedure : unsigned long {
    Start = 1,
    Stop = 2,
    Initialize = 3,
    GetData = 4,
    SetDumpFile = 5,
    SetChannelMask = 6,
    MaxADC = 7,
    SetEventName = 8,
    GetEvents = 9,
};

enum class ThermalProcedure : unsigned long {
    Connect = 1,
    Disconnect = 2,
    GetState = 3,
    GetTemperature = 4,
    SetTemperature = 5,
    StartControl = 6,
    StopControl = 7,
    GetSettledTemperature = 8,
    SetDefaultTemperature = 9,
};

} // namespace Orvane::Programs
