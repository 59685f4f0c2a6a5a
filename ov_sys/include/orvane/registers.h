/* 16-bit registers of the flat interface: plain and routed accesses, and the switches of the routing. */
#ifndef ORVANE_REGISTERS_H
#define ORVANE_REGISTERS_H

#include <orvane/api.h>

#ifdef __cplusplus
extern "C" {
#endif

/* ---- Plain 16-bit accesses, not logged ---- */

/* Clause 45: MMD `mmd` (low 8 bits), register `reg` (low 16 bits). A read gives the board's word, 0 on
 * failure. Report. */
ORVANE_C_API unsigned int HW_Read_Abstracted(unsigned int adapter, unsigned int phyId, unsigned int mmd,
                                             unsigned int reg);
ORVANE_C_API void HW_Write_Abstracted(unsigned int adapter, unsigned int phyId, unsigned int mmd,
                                      unsigned int reg, unsigned int data);

/* Clause 22: register `reg`, 0 to 31. A read gives the board's word, 0 on failure. Report. Not possible on an
 * SMBus port. The names without _Abstracted are the same. */
ORVANE_C_API unsigned int HW_Read_C22_Abstracted(unsigned int adapter, unsigned int phyId, unsigned int reg);
ORVANE_C_API void HW_Write_C22_Abstracted(unsigned int adapter, unsigned int phyId, unsigned int reg,
                                          unsigned int data);
ORVANE_C_API unsigned int HW_Read_C22(unsigned int adapter, unsigned int phyId, unsigned int reg);
ORVANE_C_API void HW_Write_C22(unsigned int adapter, unsigned int phyId, unsigned int reg, unsigned int data);

/* The same by PHY argument. Report. */
ORVANE_C_API unsigned int ZR_API_MDIO_Read_Abstracted(int phyArg, unsigned int mmd, unsigned int address);
ORVANE_C_API void ZR_API_MDIO_Write_Abstracted(int phyArg, unsigned int mmd, unsigned int address,
                                               unsigned int value);
ORVANE_C_API unsigned int ZR_API_MDIO_Read_C22_Abstracted(int phyArg, unsigned int reg);
ORVANE_C_API void ZR_API_MDIO_Write_C22_Abstracted(int phyArg, unsigned int reg, unsigned int data);
ORVANE_C_API unsigned int ZR_API_MDIO_Read_C22(int phyArg, unsigned int reg);
ORVANE_C_API void ZR_API_MDIO_Write_C22(int phyArg, unsigned int reg, unsigned int data);

/* ---- Routed 16-bit accesses ----
 *
 * MMD 11 and 27, and on the forms without an adapter also MMD 10 and 28 and the NEC and DEC registers of MMD
 * 31, are reached through other registers or through the PHY's firmware, as delegationStatus says; everything
 * else is one plain access, logged. A routed access is several plain ones: callers that share a PHY serialise
 * themselves. A firmware that does not answer is waited for with up to 5001 status reads. */

/* On the default adapter; over Clause 22 when clause22Enable says so. */
ORVANE_C_API unsigned int ZR_API_MDIO_Read(unsigned int phy, unsigned int mmd, unsigned int address);
ORVANE_C_API void ZR_API_MDIO_Write(unsigned int phy, unsigned int mmd, unsigned int address,
                                    unsigned int value);

/* On an explicit adapter. MMD 10 and 28 are not reached: nothing happens, and a read gives 0. */
ORVANE_C_API unsigned int HW_Read(unsigned int adapter, unsigned int phy, unsigned int mmd,
                                  unsigned int address);
ORVANE_C_API void HW_Write(unsigned int adapter, unsigned int phy, unsigned int mmd, unsigned int address,
                           unsigned int value);

/* ZR_API_MDIO_Read() and ZR_API_MDIO_Write() with the default PHY id, under two names each. */
ORVANE_C_API unsigned int ZR_API_MDIO_Read_Default_PHY_ID(unsigned int mmd, unsigned int address);
ORVANE_C_API void ZR_API_MDIO_Write_Default_PHY_ID(unsigned int mmd, unsigned int address,
                                                   unsigned int value);
ORVANE_C_API unsigned int HW_Read_Default_PHY_ID(unsigned int mmd, unsigned int address);
ORVANE_C_API void HW_Write_Default_PHY_ID(unsigned int mmd, unsigned int address, unsigned int value);

/* The same write to `count` PHYs, `phys[i]` on adapter i for the first two and i + 2 for the others. The last
 * of these adapters stays the default adapter. The array stays the caller's. */
ORVANE_C_API void ZR_API_MDIO_Write_Multi(const unsigned int *phys, int count, unsigned int mmd,
                                          unsigned int address, unsigned int value);

/* ---- Delegation and Clause 22 switches ---- */

/* One row for each adapter of five flags, each 0 or 1: which register classes are handed to the PHY's
 * firmware. 0 at load, 1 after HW_Initialize(). */
extern ORVANE_C_API unsigned int delegationStatus[ORVANE_TABLE_ROWS][5];

/* For each adapter 1 when its Clause 45 accesses are carried over Clause 22; 0 at load. */
extern ORVANE_C_API unsigned int clause22Enable[ORVANE_TABLE_ROWS];

/* Sets every flag of delegationStatus to 1. */
ORVANE_C_API void HW_InitializeDelegations(void);

/* Sets all of clause22Enable to 0. */
ORVANE_C_API void HW_InitializeClause22(void);

/* Set and get one flag of delegationStatus. `type`: 0 reads of NEC and DEC registers, 1 writes of MMD 28, 2
 * reads of MMD 28, 3 MMD 11, 4 MMD 27; `state` 0 or 1. 100 for an adapter above 3000 or a state above 1 (each
 * with a line on the standard output stream) or an unknown type; setting gives 0 otherwise. */
ORVANE_C_API unsigned int HW_SetDelegationType(int type, unsigned int adapter, unsigned int state);
ORVANE_C_API unsigned int HW_GetDelegationType(int type, unsigned int adapter);

/* Set and get the adapter's Clause 22 switch. An adapter without a row has none: 0. */
ORVANE_C_API void HW_EnableClause45OverClause22(int adapter);
ORVANE_C_API void HW_DisableClause45OverClause22(int adapter);
ORVANE_C_API unsigned int HW_GetClause45OverClause22State(int adapter);

/* Whether a register is in one of the two classes of MMD 31; 1 or 0. */
ORVANE_C_API int isNECRegister(unsigned int mmd, unsigned int address);
ORVANE_C_API int isDECRegister(unsigned int mmd, unsigned int address);

/* Whether the adapter's flags hand an access to the firmware: writes of MMD 28; reads of MMD 28 and of NEC
 * and DEC registers. 1 or 0. */
ORVANE_C_API int shouldDelegateWrite(unsigned int adapter, unsigned int mmd, unsigned int address);
ORVANE_C_API int shouldDelegateRead(unsigned int adapter, unsigned int mmd, unsigned int address);

/* ---- The indirect paths themselves ----
 *
 * Each is a sequence of HW_Read() and HW_Write() on MMD 30 or 29, which are logged. Their own failures are
 * lines on the standard error stream. */

/* Through the firmware's mailbox: any MMD (low 8 bits). A read gives the mailbox's data whatever its status.
 */
ORVANE_C_API void writeRegisterViaPifMailbox(unsigned int adapter, unsigned int phy, unsigned int mmd,
                                             unsigned int address, unsigned int value);
ORVANE_C_API unsigned int readRegisterViaPifMailbox(unsigned int adapter, unsigned int phy, unsigned int mmd,
                                                    unsigned int address);

/* SerDes control registers through their bridge; a failed read gives 0. */
ORVANE_C_API void synSdControlRegWrite(unsigned int adapter, unsigned int phy, unsigned int address,
                                       unsigned int value);
ORVANE_C_API unsigned int synSdControlRegRead(unsigned int adapter, unsigned int phy, unsigned int address);

/* TGE registers: bits 12 to 15 of the address are the block, 0 to 3; others are refused, a read giving 0. */
ORVANE_C_API void tgeIndirectRegisterWrite(unsigned int adapter, unsigned int phy, unsigned int address,
                                           unsigned int value);
ORVANE_C_API unsigned int tgeIndirectRegisterRead(unsigned int adapter, unsigned int phy,
                                                  unsigned int address);

/* GFE registers: SMI registers (5 bits), and indirect ones (7 bits) in banks (3 bits). */
ORVANE_C_API void gfeSmiRegisterSet(unsigned int adapter, unsigned int phy, unsigned int reg,
                                    unsigned int value);
ORVANE_C_API unsigned int gfeSmiRegisterGet(unsigned int adapter, unsigned int phy, unsigned int reg);
ORVANE_C_API void gfeIndirectRegisterSet(unsigned int adapter, unsigned int phy, unsigned int address,
                                         unsigned int bank, unsigned int value);
ORVANE_C_API unsigned int gfeIndirectRegisterGet(unsigned int adapter, unsigned int phy, unsigned int address,
                                                 unsigned int bank);

#ifdef __cplusplus
}
#endif

#endif
