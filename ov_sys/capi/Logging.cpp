// The transaction log: one comma-separated record for each register access.
#include "ov_sys/capi/Globals.h"

#include <cstdarg>
#include <cstdio>
#include <orvane/orvane.h>

namespace {

using Orvane::globals;

FILE* activeLog() {
    return __atomic_load_n(globals.log, __ATOMIC_RELAXED);
}

void switchLogTo(FILE* stream, bool callersFile) {
    HW_DisableLogging(0);
    *globals.loggingToFile = callersFile ? 1 : 0;
    __atomic_store_n(globals.log, stream, __ATOMIC_RELAXED);
    HW_Logging_WriteColumnHeaders();
}

} // namespace

extern "C" {

// ---- Control ----

void HW_EnableLogging(FILE* stream) {
    switchLogTo(stream, true);
}

void HW_EnableLoggingStdout(void) {
    switchLogTo(stdout, false);
}

void HW_EnableLoggingStderr(void) {
    switchLogTo(stderr, false);
}

void HW_DisableLogging(int closeStream) {
    FILE* log = activeLog();
    if (closeStream != 0 && log != nullptr && *globals.loggingToFile == 1)
        std::fclose(log);
    *globals.loggingToFile = 0;
    __atomic_store_n(globals.log, static_cast<FILE*>(nullptr), __ATOMIC_RELAXED);
}

void HW_Logging_WriteColumnHeaders(void) {
    if (FILE* log = activeLog()) {
        std::fprintf(log, "adapter,phy,op,mmd,address,value,");
        std::fprintf(log, "\n");
    }
}

void HW_Logging_Initialize(void) {}

void HW_Log(int /*level*/, int /*category*/, const char* format, ...) {
    if (FILE* log = activeLog()) {
        va_list arguments;
        va_start(arguments, format);
        std::vfprintf(log, format, arguments);
        va_end(arguments);
    }
}

void HW_LogMsg(const char* text) {
    if (FILE* log = activeLog()) {
        std::fprintf(log, "%s\n", text != nullptr ? text : "");
        std::fflush(log);
    }
}

// ---- MDIO records, a line each ----

void HW_Logging_MDIOWrite(unsigned int adapter, unsigned int phy, unsigned int mmd, unsigned int address,
                          unsigned int value) {
    if (FILE* log = activeLog())
        std::fprintf(log, "%u,%u,MW,%02X,%04X,%04X\n", adapter, phy, mmd, address, value);
}

void HW_Logging_MDIORead(unsigned int adapter, unsigned int phy, unsigned int mmd, unsigned int address,
                         unsigned int value) {
    if (FILE* log = activeLog())
        std::fprintf(log, "%u,%u,MR,%02X,%04X,%04X\n", adapter, phy, mmd, address, value);
}

void HW_Logging_BlockMDIOWrite(unsigned int adapter, unsigned int phy, unsigned int mmd, unsigned int address,
                               unsigned int value) {
    if (FILE* log = activeLog())
        std::fprintf(log, "%u,%u,AW,%02X,%04X,%04X\n", adapter, phy, mmd, address, value);
}

void HW_Logging_BlockMDIORead(unsigned int adapter, unsigned int phy, unsigned int mmd,
                              unsigned int address) {
    if (FILE* log = activeLog())
        std::fprintf(log, "%u,%u,AR,%02X,%04X,\n", adapter, phy, mmd, address);
}

void HW_Logging_BlockMDIOFetch(unsigned int adapter, unsigned int phy, unsigned int, unsigned int,
                               unsigned int, unsigned int value) {
    if (FILE* log = activeLog())
        std::fprintf(log, "%u,%u,AF,,,%04X\n", adapter, phy, value);
}

// ---- 32-bit, 64-bit and configuration-space records, which carry no line end: docs/limits.md, "Odd on
// purpose" ----

void HW_Logging_Write32(unsigned int adapter, unsigned int phy, unsigned int address, unsigned int value) {
    if (FILE* log = activeLog())
        std::fprintf(log, "%u,%u,MW,%06X,%08X", adapter, phy, address, value);
}

void HW_Logging_Read32(unsigned int adapter, unsigned int phy, unsigned int address, unsigned int value) {
    if (FILE* log = activeLog())
        std::fprintf(log, "%u,%u,MR,%06X,%08X", adapter, phy, address, value);
}

void HW_Logging_BlockWrite32(unsigned int adapter, unsigned int phy, unsigned int address,
                             unsigned int value) {
    if (FILE* log = activeLog())
        std::fprintf(log, "%u,%u,AW,%06X,%08X", adapter, phy, address, value);
}

void HW_Logging_BlockRead32(unsigned int adapter, unsigned int phy, unsigned int address) {
    if (FILE* log = activeLog())
        std::fprintf(log, "%u,%u,AR,,%02X,", adapter, phy, address);
}

void HW_Logging_BlockFetch32(unsigned int adapter, unsigned int phy, unsigned int, unsigned int,
                             unsigned int value) {
    if (FILE* log = activeLog())
        std::fprintf(log, "%u,%u,AF,,,%08X", adapter, phy, value);
}

void HW_Logging_Write64(unsigned int adapter, unsigned int phy, unsigned int address,
                        unsigned long long value) {
    if (FILE* log = activeLog())
        std::fprintf(log, "%u,%u,MW,%06X,%016llX", adapter, phy, address, value);
}

void HW_Logging_Read64(unsigned int adapter, unsigned int phy, unsigned int address,
                       unsigned long long value) {
    if (FILE* log = activeLog())
        std::fprintf(log, "%u,%u,MR,%06X,%016llX", adapter, phy, address, value);
}

void HW_Logging_BlockWrite64(unsigned int adapter, unsigned int phy, unsigned int address,
                             unsigned long long value) {
    if (FILE* log = activeLog())
        std::fprintf(log, "%u,%u,AW,%06X,%016llX", adapter, phy, address, value);
}

void HW_Logging_BlockRead64(unsigned int adapter, unsigned int phy, unsigned int address) {
    HW_Logging_BlockRead32(adapter, phy, address);
}

void HW_Logging_BlockFetch64(unsigned int adapter, unsigned int phy, unsigned int, unsigned int,
                             unsigned long long value) {
    if (FILE* log = activeLog())
        std::fprintf(log, "%u,%u,AF,,,%016llX", adapter, phy, value);
}

void HW_Logging_MacConfigSpaceWrite(unsigned int adapter, unsigned int value1, unsigned int value2,
                                    unsigned int value3) {
    if (FILE* log = activeLog())
        std::fprintf(log, "%u,CW,%08X,%08X,%08X", adapter, value1, value2, value3);
}

void HW_Logging_MacConfigSpaceRead(unsigned int adapter, unsigned int value1, unsigned int value2) {
    if (FILE* log = activeLog())
        std::fprintf(log, "%u,CR,%08X,%08X", adapter, value1, value2);
}

void HW_Logging_BlockMacConfigSpaceRead(unsigned int adapter, unsigned int value1) {
    if (FILE* log = activeLog())
        std::fprintf(log, "%u,ACR,%08X,", adapter, value1);
}

void HW_Logging_BlockMacConfigSpaceWrite(unsigned int adapter, unsigned int value1, unsigned int value2,
                                         unsigned int value3) {
    if (FILE* log = activeLog())
        std::fprintf(log, "%u,ACW,%08X,%08X,%08X", adapter, value1, value2, value3);
}
}
