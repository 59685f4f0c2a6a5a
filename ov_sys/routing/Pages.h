// MMD 28, reached through pages of MMD 4.
#pragma once

#include "ov_sys/routing/Access.h"

namespace Orvane::Routing {

// Addresses up to 5FF; an address beyond is trouble, without an access. A write puts the page value, and no
// value of the caller's, into the register; a read gives the page value's low byte with its nibbles exchanged
// (docs/limits.md, "Odd on purpose"). A read with bit 8000 selects lane (bits 8 to 11, up to 4) and index
// (low byte, up to 25) instead.
bool writePaged(Access& phy, unsigned address);
Value readPaged(Access& phy, unsigned address);

} // namespace Orvane::Routing
