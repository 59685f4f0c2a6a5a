// Register accesses that the PHY's firmware makes, asked for through its mailbox in MMD 30.
#pragma once

#include "ov_sys/routing/Access.h"

namespace Orvane::Routing {

// The low byte of `mmd` counts. Each makes 5 accesses, and as many more as the status is busy, 5000 at most.
// A read gives the mailbox's data register, whatever the status was, if the access goes on after trouble.
bool writeByMailbox(Access& phy, unsigned mmd, unsigned address, unsigned value);
Value readByMailbox(Access& phy, unsigned mmd, unsigned address);

} // namespace Orvane::Routing
