/* Queued accesses of the flat interface. */
#ifndef ORVANE_BLOCKS_H
#define ORVANE_BLOCKS_H

#include <orvane/api.h>

#ifdef __cplusplus
extern "C" {
#endif

/* A queued access is added to the block of its PHY's session, and the block is executed in one call to the
 * board; fill and execute a block from one thread, with ZR_API_MDIO_MaxBlockOperations() accesses at most. On
 * an SMBus port the accesses are carried out at once. 64-bit accesses do nothing. All report.
 *
 * The logged Clause 45 forms do nothing at all for MMD 10 and 28. HW_BlockWrite() and HW_BlockWriteAdapter()
 * write MMD 11 and 27 at once, through their indirect paths. */

/* ---- Queue on the default adapter ---- */

/* Queue an access on the default adapter: Clause 45, 32 bits or 64 bits. The forms without _Abstracted log
 * it; those that name no PHY take the default PHY id. */
ORVANE_C_API void HW_BlockRead_Abstracted(unsigned int phy, unsigned int mmd, unsigned int reg);
ORVANE_C_API void HW_BlockWrite_Abstracted(unsigned int phy, unsigned int mmd, unsigned int reg,
                                           unsigned int data);
ORVANE_C_API void HW_BlockRead(unsigned int phy, unsigned int mmd, unsigned int reg);
ORVANE_C_API void HW_BlockWrite(unsigned int phy, unsigned int mmd, unsigned int reg, unsigned int data);
ORVANE_C_API void HW_BlockRead32_Abstracted(unsigned int phy, unsigned int address);
ORVANE_C_API void HW_BlockWrite32_Abstracted(unsigned int phy, unsigned int address, unsigned int data);
ORVANE_C_API void HW_BlockRead32(unsigned int phy, unsigned int address);
ORVANE_C_API void HW_BlockWrite32(unsigned int phy, unsigned int address, unsigned int data);
ORVANE_C_API void HW_BlockRead64_Abstracted(unsigned int phy, unsigned int address);
ORVANE_C_API void HW_BlockWrite64_Abstracted(unsigned int phy, unsigned int address, unsigned long long data);
ORVANE_C_API void HW_BlockRead64(unsigned int phy, unsigned int address);
ORVANE_C_API void HW_BlockWrite64(unsigned int phy, unsigned int address, unsigned long long data);
ORVANE_C_API void HW_BlockRead_Default_PHY_ID(unsigned int mmd, unsigned int reg);
ORVANE_C_API void HW_BlockWrite_Default_PHY_ID(unsigned int mmd, unsigned int reg, unsigned int data);

/* ---- Queue on an explicit adapter ---- */

/* Queue an access on an adapter: Clause 45, 32 bits or 64 bits. The forms without _Abstracted log it. */
ORVANE_C_API void HW_BlockReadAdapter_Abstracted(unsigned int adapter, unsigned int phy, unsigned int mmd,
                                                 unsigned int reg);
ORVANE_C_API void HW_BlockWriteAdapter_Abstracted(unsigned int adapter, unsigned int phy, unsigned int mmd,
                                                  unsigned int reg, unsigned int data);
ORVANE_C_API void HW_BlockReadAdapter(unsigned int adapter, unsigned int phy, unsigned int mmd,
                                      unsigned int reg);
ORVANE_C_API void HW_BlockWriteAdapter(unsigned int adapter, unsigned int phy, unsigned int mmd,
                                       unsigned int reg, unsigned int data);
ORVANE_C_API void HW_BlockRead32Adapter_Abstracted(unsigned int adapter, unsigned int phy,
                                                   unsigned int address);
ORVANE_C_API void HW_BlockWrite32Adapter_Abstracted(unsigned int adapter, unsigned int phy,
                                                    unsigned int address, unsigned int data);
ORVANE_C_API void HW_BlockRead32Adapter(unsigned int adapter, unsigned int phy, unsigned int address);
ORVANE_C_API void HW_BlockWrite32Adapter(unsigned int adapter, unsigned int phy, unsigned int address,
                                         unsigned int data);
ORVANE_C_API void HW_BlockRead64Adapter_Abstracted(unsigned int adapter, unsigned int phy,
                                                   unsigned int address);
ORVANE_C_API void HW_BlockWrite64Adapter_Abstracted(unsigned int adapter, unsigned int phy,
                                                    unsigned int address, unsigned long long data);
ORVANE_C_API void HW_BlockRead64Adapter(unsigned int adapter, unsigned int phy, unsigned int address);
ORVANE_C_API void HW_BlockWrite64Adapter(unsigned int adapter, unsigned int phy, unsigned int address,
                                         unsigned long long data);

/* ---- Queue by PHY argument; logged with the default adapter and the argument as it is ---- */

/* Queue an access by PHY argument: Clause 45, 32 bits or 64 bits. The forms without _Abstracted log it; those
 * that name no PHY take the default PHY id. */
ORVANE_C_API void ZR_API_MDIO_BlockRead_Abstracted(int phyArg, unsigned int mmd, unsigned int reg);
ORVANE_C_API void ZR_API_MDIO_BlockWrite_Abstracted(int phyArg, unsigned int mmd, unsigned int reg,
                                                    unsigned int data);
ORVANE_C_API void ZR_API_MDIO_BlockRead(int phyArg, unsigned int mmd, unsigned int reg);
ORVANE_C_API void ZR_API_MDIO_BlockWrite(int phyArg, unsigned int mmd, unsigned int reg, unsigned int data);
ORVANE_C_API void ZR_API_MDIO_BlockRead_Default_PHY_ID(unsigned int mmd, unsigned int reg);
ORVANE_C_API void ZR_API_MDIO_BlockWrite_Default_PHY_ID(unsigned int mmd, unsigned int reg,
                                                        unsigned int data);
ORVANE_C_API void ZR_API_BlockRead32_Abstracted(int phyArg, unsigned int address);
ORVANE_C_API void ZR_API_BlockWrite32_Abstracted(int phyArg, unsigned int address, unsigned int data);
ORVANE_C_API void ZR_API_BlockRead32(int phyArg, unsigned int address);
ORVANE_C_API void ZR_API_BlockWrite32(int phyArg, unsigned int address, unsigned int data);
ORVANE_C_API void ZR_API_BlockRead64_Abstracted(int phyArg, unsigned int address);
ORVANE_C_API void ZR_API_BlockWrite64_Abstracted(int phyArg, unsigned int address, unsigned long long data);
ORVANE_C_API void ZR_API_BlockRead64(int phyArg, unsigned int address);
ORVANE_C_API void ZR_API_BlockWrite64(int phyArg, unsigned int address, unsigned long long data);

/* ---- Execute ----
 *
 * As Clause 45, Clause 22 (_C22) or 32-bit extension (_C22_ZrExt32) frames. Return the values of the queued
 * reads in order, null when there are none or on failure; a failed block stays queued. The values belong to
 * the session and last until its next block. Each value is logged, but not by the forms that take an argument
 * with an adapter. */

ORVANE_C_API unsigned int *HW_BlockOperationExecute(unsigned int phy);
ORVANE_C_API unsigned int *HW_BlockOperationExecute_C22(unsigned int phy);
ORVANE_C_API unsigned int *HW_BlockOperationExecute_C22_ZrExt32(unsigned int phy);
ORVANE_C_API unsigned int *HW_BlockOperationExecuteAdapter(unsigned int adapter, unsigned int phy);
ORVANE_C_API unsigned int *HW_BlockOperationExecuteAdapter_C22(unsigned int adapter, unsigned int phy);
ORVANE_C_API unsigned int *HW_BlockOperationExecuteAdapter_C22_ZrExt32(unsigned int adapter,
                                                                       unsigned int phy);
ORVANE_C_API unsigned int *ZR_API_MDIO_BlockOperationExecute_Abstarcted(int phyArg);
ORVANE_C_API unsigned int *ZR_API_MDIO_BlockOperationExecute_C22_Abstarcted(int phyArg);
ORVANE_C_API unsigned int *ZR_API_MDIO_BlockOperationExecute_C22_ZrExt32_Abstarcted(int phyArg);

/* Clause 22 frames when the default adapter's Clause 22 switch is on, otherwise Clause 45. */
ORVANE_C_API unsigned int *ZR_API_MDIO_BlockOperationExecute(int phyArg);

/* Number of values of the last execution, whichever thread made it. */
ORVANE_C_API unsigned int HW_BlockReadQueueSize(void);

/* 1. */
ORVANE_C_API int ZR_API_MDIO_SupportsBlockOperations(void);

/* 873, the most accesses that one block should hold. */
ORVANE_C_API unsigned int ZR_API_MDIO_MaxBlockOperations(void);

/* Single-wire mode of the MDIO port of a PHY on the default adapter, on for any value but 0. 1 done, 0
 * failed. */
ORVANE_C_API int HW_BroadcastEnable(unsigned int phy, unsigned int on);

#ifdef __cplusplus
}
#endif

#endif
