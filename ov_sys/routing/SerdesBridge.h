// SerDes control registers (MMD 27), reached through a bridge in MMD 30.
#pragma once

#include "ov_sys/routing/Access.h"

namespace Orvane::Routing {

// A read whose access goes on after the bridge's error gives 0.
bool writeSerdes(Access& phy, unsigned address, unsigned value);
Value readSerdes(Access& phy, unsigned address);

} // namespace Orvane::Routing
