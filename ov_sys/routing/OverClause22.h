// Clause 45 registers carried over Clause 22, through registers 13 and 14.
#pragma once

#include "ov_sys/routing/Access.h"

namespace Orvane::Routing {

// The low 5 bits of `mmd` count.
bool writeOverClause22(Access& phy, unsigned mmd, unsigned address, unsigned value);
Value readOverClause22(Access& phy, unsigned mmd, unsigned address);

} // namespace Orvane::Routing
