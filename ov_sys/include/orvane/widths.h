/* 8-, 16-, 32- and 64-bit accesses of the flat interface. */
#ifndef ORVANE_WIDTHS_H
#define ORVANE_WIDTHS_H

#include <orvane/api.h>

#ifdef __cplusplus
extern "C" {
#endif

/* Addresses are those of the PHY's 32-bit register space. 8- and 16-bit accesses work on the 32-bit word that
 * holds the address (its two low bits cleared) and have these results: a read gives the word shifted right by
 * the address's low 2 bits (8-bit) or its bit 1 taken as 2 (16-bit), in bits, unmasked; an 8-bit write
 * replaces byte (address and 3) and writes the word back; a 16-bit write writes the word back unchanged, HW_
 * forms to the address as given and ZR_API_ forms to the aligned one. 64-bit registers have no transport:
 * reads give all ones, writes do nothing. Failed reads give 0. All report.
 *
 * A logged form writes the data, or the value read, cut to its width. */

/* ---- By adapter and PHY id; not logged ---- */

/* Access a register of the width in the name, on an adapter; not logged. Report. */
ORVANE_C_API unsigned int HW_Read8_Abstracted(unsigned int adapter, unsigned int phy, unsigned int address);
ORVANE_C_API void HW_Write8_Abstracted(unsigned int adapter, unsigned int phy, unsigned int address,
                                       unsigned int data);
ORVANE_C_API unsigned int HW_Read16_Abstracted(unsigned int adapter, unsigned int phy, unsigned int address);
ORVANE_C_API void HW_Write16_Abstracted(unsigned int adapter, unsigned int phy, unsigned int address,
                                        unsigned int data);
ORVANE_C_API unsigned int HW_Read32_Abstracted(unsigned int adapter, unsigned int phy, unsigned int address);
ORVANE_C_API void HW_Write32_Abstracted(unsigned int adapter, unsigned int phy, unsigned int address,
                                        unsigned int data);
ORVANE_C_API unsigned long long HW_Read64_Abstracted(unsigned int adapter, unsigned int phy,
                                                     unsigned int address);
ORVANE_C_API void HW_Write64_Abstracted(unsigned int adapter, unsigned int phy, unsigned int address,
                                        unsigned long long data);

/* ---- The same, logged ---- */

/* Access a register of the width in the name, on an adapter, and log it. Report. */
ORVANE_C_API unsigned int HW_Read8(unsigned int adapter, unsigned int phy, unsigned int address);
ORVANE_C_API void HW_Write8(unsigned int adapter, unsigned int phy, unsigned int address, unsigned int data);
ORVANE_C_API unsigned int HW_Read16(unsigned int adapter, unsigned int phy, unsigned int address);
ORVANE_C_API void HW_Write16(unsigned int adapter, unsigned int phy, unsigned int address, unsigned int data);
ORVANE_C_API unsigned int HW_Read32(unsigned int adapter, unsigned int phy, unsigned int address);
ORVANE_C_API void HW_Write32(unsigned int adapter, unsigned int phy, unsigned int address, unsigned int data);
ORVANE_C_API unsigned long long HW_Read64(unsigned int adapter, unsigned int phy, unsigned int address);
ORVANE_C_API void HW_Write64(unsigned int adapter, unsigned int phy, unsigned int address,
                             unsigned long long data);

/* ---- At the PHY's address register, incremented first or as it stands; never logged; not on SMBus ports
 * ---- */

/* Access the 32-bit register at the address that the PHY holds, or at the next one; never logged, with or
 * without _Abstracted. Report. */
ORVANE_C_API unsigned int HW_Read32PreIncrementAddress_Abstracted(unsigned int adapter, unsigned int phy);
ORVANE_C_API void HW_Write32PreIncrementAddress_Abstracted(unsigned int adapter, unsigned int phy,
                                                           unsigned int data);
ORVANE_C_API unsigned int HW_Read32PreIncrementAddress(unsigned int adapter, unsigned int phy);
ORVANE_C_API void HW_Write32PreIncrementAddress(unsigned int adapter, unsigned int phy, unsigned int data);
ORVANE_C_API unsigned int HW_Read32CurrentAddress_Abstracted(unsigned int adapter, unsigned int phy);
ORVANE_C_API void HW_Write32CurrentAddress_Abstracted(unsigned int adapter, unsigned int phy,
                                                      unsigned int data);
ORVANE_C_API unsigned int HW_Read32CurrentAddress(unsigned int adapter, unsigned int phy);
ORVANE_C_API void HW_Write32CurrentAddress(unsigned int adapter, unsigned int phy, unsigned int data);

/* ---- By PHY argument; not logged ---- */

/* Access a register of the width in the name, by PHY argument; not logged. Report. */
ORVANE_C_API unsigned int ZR_API_Read8_Abstracted(int phyArg, unsigned int address);
ORVANE_C_API void ZR_API_Write8_Abstracted(int phyArg, unsigned int address, unsigned int data);
ORVANE_C_API unsigned int ZR_API_Read16_Abstracted(int phyArg, unsigned int address);
ORVANE_C_API void ZR_API_Write16_Abstracted(int phyArg, unsigned int address, unsigned int data);
ORVANE_C_API unsigned int ZR_API_Read32_Abstracted(int phyArg, unsigned int address);
ORVANE_C_API void ZR_API_Write32_Abstracted(int phyArg, unsigned int address, unsigned int data);
ORVANE_C_API unsigned long long ZR_API_Read64_Abstracted(int phyArg, unsigned int address);
ORVANE_C_API void ZR_API_Write64_Abstracted(int phyArg, unsigned int address, unsigned long long data);

/* ---- The same, logged with the default adapter and the PHY argument as it is ---- */

/* Access a register of the width in the name, by PHY argument, and log it. Report. */
ORVANE_C_API unsigned int HW_API_Read8(int phyArg, unsigned int address);
ORVANE_C_API void HW_API_Write8(int phyArg, unsigned int address, unsigned int data);
ORVANE_C_API unsigned int HW_API_Read16(int phyArg, unsigned int address);
ORVANE_C_API void HW_API_Write16(int phyArg, unsigned int address, unsigned int data);
ORVANE_C_API unsigned int HW_API_Read32(int phyArg, unsigned int address);
ORVANE_C_API void HW_API_Write32(int phyArg, unsigned int address, unsigned int data);
ORVANE_C_API unsigned long long HW_API_Read64(int phyArg, unsigned int address);
ORVANE_C_API void HW_API_Write64(int phyArg, unsigned int address, unsigned long long data);

/* ---- Raw accesses to the board's own registers: always refused, reported with "Interface Error.", 0 ---- */

/* Refused: report "Interface Error."; a read gives 0. */
ORVANE_C_API unsigned int Board_Read(unsigned int address);
ORVANE_C_API void Board_Write(unsigned int address, unsigned int data);
ORVANE_C_API unsigned int Board_ReadAdapter(unsigned int adapter, unsigned int address);
ORVANE_C_API void Board_WriteAdapter(unsigned int adapter, unsigned int address, unsigned int data);
ORVANE_C_API unsigned int Board_Read32(unsigned int address);
ORVANE_C_API void Board_Write32(unsigned int address, unsigned int data);
ORVANE_C_API unsigned int Board_Read32Adapter(unsigned int adapter, unsigned int address);
ORVANE_C_API void Board_Write32Adapter(unsigned int adapter, unsigned int address, unsigned int data);
ORVANE_C_API unsigned long long Board_Read64(unsigned int address);
ORVANE_C_API void Board_Write64(unsigned int address, unsigned long long data);
ORVANE_C_API unsigned long long Board_Read64Adapter(unsigned int adapter, unsigned int address);
ORVANE_C_API void Board_Write64Adapter(unsigned int adapter, unsigned int address, unsigned long long data);

#ifdef __cplusplus
}
#endif

#endif
