// MMD 10, reached through an address, command and data window in MMD 30.
#pragma once

#include "ov_sys/routing/Access.h"

namespace Orvane::Routing {

// A window that stays busy for 41 reads is trouble; nothing is written then.
bool writeByWindow(Access& phy, unsigned address, unsigned value);
Value readByWindow(Access& phy, unsigned address);

} // namespace Orvane::Routing
