/* Transaction log of the flat interface. */
#ifndef ORVANE_LOGGING_H
#define ORVANE_LOGGING_H

#include <orvane/api.h>
#include <stdio.h> /* NOLINT(modernize-deprecated-headers): C includes this header too */

#ifdef __cplusplus
extern "C" {
#endif

/* Every logged access writes one record to the log stream while there is one: adapter, PHY, operation, MMD,
 * address and value, separated by commas. Operations: MW write, MR read, AW queued write, AR queued read, AF
 * value of a queued read, CW, CR, ACW and ACR configuration space. MDIO records end their line; the others do
 * not and run together. Nothing is buffered or flushed beyond the stream's own ways but by HW_LogMsg(); write
 * errors are ignored. Records of several threads stay whole. Do not switch the log while other threads log.
 */

/* The stream, null while logging is off; whether it is a file of the caller's (1) or a standard stream (0); a
 * byte that nothing sets. */
extern ORVANE_C_API FILE *HW_log;
extern ORVANE_C_API int loggingToFile;
extern ORVANE_C_API unsigned char isLoggingInitialized;

/* Log to a stream, from its column headers on. A file that was the log before is let go, not closed. A null
 * stream leaves logging off. The stream stays the caller's, unless HW_DisableLogging() is asked to close it.
 */
ORVANE_C_API void HW_EnableLogging(FILE *stream);
ORVANE_C_API void HW_EnableLoggingStdout(void);
ORVANE_C_API void HW_EnableLoggingStderr(void);

/* Ends logging; closes the log if `closeStream` is not 0 and it is a file of the caller's. */
ORVANE_C_API void HW_DisableLogging(int closeStream);

/* Writes the line of column headers to the log; nothing while logging is off. */
ORVANE_C_API void HW_Logging_WriteColumnHeaders(void);

/* Does nothing. */
ORVANE_C_API void HW_Logging_Initialize(void);

/* Writes text of the caller's to the log, as fprintf() does; the first two arguments are ignored. */
ORVANE_C_API void HW_Log(int level, int category, const char *format, ...)
    __attribute__((format(printf, 3, 4)));

/* Writes a line to the log and flushes it. */
ORVANE_C_API void HW_LogMsg(const char *text);

/* ---- Records ---- */

/* Write a record of a 16-bit access to the log, with its line end; nothing while logging is off. A fetch is
 * the value of a queued read. */
ORVANE_C_API void HW_Logging_MDIOWrite(unsigned int adapter, unsigned int phy, unsigned int mmd,
                                       unsigned int address, unsigned int value);
ORVANE_C_API void HW_Logging_MDIORead(unsigned int adapter, unsigned int phy, unsigned int mmd,
                                      unsigned int address, unsigned int value);
ORVANE_C_API void HW_Logging_BlockMDIOWrite(unsigned int adapter, unsigned int phy, unsigned int mmd,
                                            unsigned int address, unsigned int value);
ORVANE_C_API void HW_Logging_BlockMDIORead(unsigned int adapter, unsigned int phy, unsigned int mmd,
                                           unsigned int address);
ORVANE_C_API void HW_Logging_BlockMDIOFetch(unsigned int adapter, unsigned int phy, unsigned int unused1,
                                            unsigned int unused2, unsigned int unused3, unsigned int value);

/* Write a record of a 32-bit or 64-bit access to the log, without a line end; nothing while logging is off.
 */
ORVANE_C_API void HW_Logging_Write32(unsigned int adapter, unsigned int phy, unsigned int address,
                                     unsigned int value);
ORVANE_C_API void HW_Logging_Read32(unsigned int adapter, unsigned int phy, unsigned int address,
                                    unsigned int value);
ORVANE_C_API void HW_Logging_BlockWrite32(unsigned int adapter, unsigned int phy, unsigned int address,
                                          unsigned int value);
ORVANE_C_API void HW_Logging_BlockRead32(unsigned int adapter, unsigned int phy, unsigned int address);
ORVANE_C_API void HW_Logging_BlockFetch32(unsigned int adapter, unsigned int phy, unsigned int unused1,
                                          unsigned int unused2, unsigned int value);
ORVANE_C_API void HW_Logging_Write64(unsigned int adapter, unsigned int phy, unsigned int address,
                                     unsigned long long value);
ORVANE_C_API void HW_Logging_Read64(unsigned int adapter, unsigned int phy, unsigned int address,
                                    unsigned long long value);
ORVANE_C_API void HW_Logging_BlockWrite64(unsigned int adapter, unsigned int phy, unsigned int address,
                                          unsigned long long value);
ORVANE_C_API void HW_Logging_BlockRead64(unsigned int adapter, unsigned int phy, unsigned int address);
ORVANE_C_API void HW_Logging_BlockFetch64(unsigned int adapter, unsigned int phy, unsigned int unused1,
                                          unsigned int unused2, unsigned long long value);

/* Write a record of a configuration-space access to the log, without a line end; nothing while logging is
 * off. The values are written as they are. */
ORVANE_C_API void HW_Logging_MacConfigSpaceWrite(unsigned int adapter, unsigned int value1,
                                                 unsigned int value2, unsigned int value3);
ORVANE_C_API void HW_Logging_MacConfigSpaceRead(unsigned int adapter, unsigned int value1,
                                                unsigned int value2);
ORVANE_C_API void HW_Logging_BlockMacConfigSpaceRead(unsigned int adapter, unsigned int value1);
ORVANE_C_API void HW_Logging_BlockMacConfigSpaceWrite(unsigned int adapter, unsigned int value1,
                                                      unsigned int value2, unsigned int value3);

#ifdef __cplusplus
}
#endif

#endif
