// The handle by which the bus services take a session.
#pragma once

#include "ov_sys/Interface/foundation/Export.h"

namespace Orvane {

class PhySession;

// A plain value that does not own the session; the session must outlive every use of it.
class ORVANE_API SessionWrapper {
public:
    PhySession* session; // may be null

    // Does not take ownership; null is allowed.
    // NOLINTNEXTLINE(google-explicit-constructor): services are called with a session's pointer
    SessionWrapper(PhySession* openSession) : session(openSession) {}

    // The session; throws Exceptions::InvalidSession when it is null or invalid. Does not block.
    PhySession& usable() const;
};

} // namespace Orvane
