// Refuses a session that is missing or dead.
#include "ov_sys/Interface/sessions/SessionWrapper.h"

#include "ov_sys/Interface/foundation/Exceptions.h"
#include "ov_sys/Interface/sessions/PhySession.h"

namespace Orvane {

PhySession& SessionWrapper::usable() const {
    if (session == nullptr || !session->isValid())
        throw Exceptions::InvalidSession();
    return *session;
}

} // namespace Orvane
