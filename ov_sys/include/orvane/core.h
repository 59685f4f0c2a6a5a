/* Life cycle, devices, defaults and error state of the flat interface. */
#ifndef ORVANE_CORE_H
#define ORVANE_CORE_H

#include <orvane/api.h>
#ifndef __cplusplus
#include <stdbool.h>
#endif

#ifdef __cplusplus
extern "C" {
#endif

/* PHY id of the functions whose names end in _Default_PHY_ID; 0 at load. */
extern ORVANE_C_API unsigned int Default_PHY_ID;

/* ---- Life cycle ---- */

/* Sets the delegation and Clause 22 tables and the default adapter to their initial values, once until
 * HW_Close(). Always returns 1. Does not block. */
ORVANE_C_API int HW_Initialize(void);

/* Finds the device of that name (board serial number, colon, port, in any letter case), discovering boards
 * when it is not known yet, opens its adapter and makes it the default adapter. Returns 1 when the adapter
 * was opened; 0 otherwise, after a second discovery, with adapter 0 as the default, and reports. A null name
 * is that of no device, without a discovery; so it is for the functions below. */
ORVANE_C_API int HW_Open(const char *name);

/* Closes every open adapter and its sessions; blocks for their keep-alive threads (200 ms each) and close
 * requests. The device list stays. Reports. */
ORVANE_C_API void HW_Close(void);

/* Opens an adapter; its sessions are opened by the first accesses. 1 opened, 0 no such adapter. Reports. */
ORVANE_C_API int HW_OpenAdapter(unsigned int adapter);

/* Closes an adapter and its sessions. 0 closed or not open, 1 no such adapter. Blocks as HW_Close(). Reports.
 */
ORVANE_C_API unsigned int HW_CloseAdapter(unsigned int adapter);

/* ---- Devices ---- */

/* Discovers boards and returns the number of devices known; 0 on failure. Blocks for 1 s. */
ORVANE_C_API unsigned int HW_NumberOfDevices(void);

/* Discovers boards and returns the device names, with a null pointer behind the last; null when there are
 * none or on failure. The caller frees each name and the array. Blocks for 1 s. */
ORVANE_C_API char **HW_DeviceList(void);

/* Name of the device at `index`; null, and a line on the standard error stream, when there is none. The
 * caller frees it. HW_Device_FullName() is the same. */
ORVANE_C_API char *HW_Device(unsigned int index);
ORVANE_C_API char *HW_Device_FullName(unsigned int index);

/* Always 0. */
ORVANE_C_API unsigned int HW_Device_Revision(void);

/* Adapter number of the named device, which is discovered when it is not known yet (5 s at most). A device
 * that is not found gives 0, like the first adapter does, and reports; see HW_Fail(). */
ORVANE_C_API int HW_DeviceNumber(const char *name);

/* Board serial number of the first device at `ip`, dotted IPv4 text, which is asked first (some 100 ms, or
 * until the board closes the connection); null when there is none. The caller frees it. */
ORVANE_C_API char *HW_DeviceByIp(const char *ip);

/* SMBus protocol of an adapter for 32-bit registers: 0 paged 16-bit commands, 1 direct (set by any value but
 * 0). `parameter` is ignored. Without such an adapter nothing is set, the result is 0, and the call reports.
 */
ORVANE_C_API void HW_SetDeviceParameters(unsigned int adapter, unsigned int parameter, unsigned int value);
ORVANE_C_API unsigned int HW_GetDeviceParameters(unsigned int adapter, unsigned int parameter);

/* ---- Defaults ---- */

/* Adapter of the functions that name none. Not checked; returns 1. */
ORVANE_C_API int HW_SetDefaultAdapter(unsigned int adapter);
ORVANE_C_API unsigned int HW_GetDefaultAdapter(void);

/* Set and get Default_PHY_ID. Not checked. */
ORVANE_C_API void HW_SetDefault_PHY_ID(unsigned int phyId);
ORVANE_C_API unsigned int HW_GetDefault_PHY_ID(void);

/* ---- Errors ---- */

/* 1 once any error has been recorded in this process, by any thread; never cleared. */
ORVANE_C_API unsigned char HW_Fail(void);

/* Text of the last error recorded by any thread; null when there is none or it could not be stored. The text
 * is the library's and never changes: it stays valid until 256 errors with other texts have been recorded, or
 * the library is unloaded, whatever thread fetched it and whether that has ended. */
ORVANE_C_API const char *HW_Error(void);

/* Records the exception that is being handled, and with `print` reports it when it is a standard exception.
 * For C++ callers, inside a catch block only. */
ORVANE_C_API void HW_CallException(bool print);

#ifdef __cplusplus
}
#endif

#endif
