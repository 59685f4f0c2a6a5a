// The keep-alive service of a board.
#pragma once

#include "ov_sys/Interface/foundation/Export.h"
#include "ov_sys/Interface/sessions/PingRecord.h"
#include "ov_sys/Interface/sessions/SessionWrapper.h"

namespace Orvane::KeepAlive {

// Stateless; any number of threads. Every method throws Exceptions::InvalidSession for a null or invalid
// session before anything is sent, and otherwise does, blocks and throws as the function of the same name in
// RPCKeepAlive.h.
class ORVANE_API KeepAlive {
public:
    virtual ~KeepAlive();

    // As the functions of the same names in RPCKeepAlive.h.
    int ping(SessionWrapper session);
    PingRecord getPingRecord(SessionWrapper session);
};

} // namespace Orvane::KeepAlive
