// The keep-alive service's calls.
#pragma once

#include "ov_sys/Interface/foundation/Export.h"
#include "ov_sys/Interface/sessions/PingRecord.h"

namespace Orvane {

class PhySession;

namespace KeepAlive::RPC {

// Validates the session with a ping on the keep-alive client; returns the elapsed whole milliseconds. Throws
// as DO_RPC_VALIDATION; a ping that recovery could not save returns like a good one.
ORVANE_API int ping(PhySession& session);

// A copy of the session's ping record.
ORVANE_API PingRecord getPingRecord(PhySession& session);

} // namespace KeepAlive::RPC
} // namespace Orvane
