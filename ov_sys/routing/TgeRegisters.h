// TGE registers (MMD 11), reached through the GFE's registers in MMD 29.
#pragma once

#include "ov_sys/routing/Access.h"

namespace Orvane::Routing {

// Bits 12 to 15 of the address are the block: 0 the GFE's SMI registers, 1 to 3 a bank of its indirect ones.
// Another block is trouble, without an access.
bool writeTge(Access& phy, unsigned address, unsigned value);
Value readTge(Access& phy, unsigned address);

// SMI registers of the GFE; the low 5 bits of `reg` count.
bool writeSmi(Access& phy, unsigned reg, unsigned value);
Value readSmi(Access& phy, unsigned reg);

// Indirect registers of the GFE; the low 7 bits of the address and the low 3 of the bank count.
bool writeGfe(Access& phy, unsigned address, unsigned bank, unsigned value);
Value readGfe(Access& phy, unsigned address, unsigned bank);

} // namespace Orvane::Routing
