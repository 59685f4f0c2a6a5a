// The two shapes of a flat function that only guards an access and hands it on.
#pragma once

#include "ov_sys/capi/ErrorState.h"
#include "ov_sys/capi/Globals.h"
#include "ov_sys/capi/PhyArgument.h"

namespace Orvane {

// Calls a member of the one interface object; a failure is reported and gives zero, null or nothing.
template <class Method, class... Arguments>
auto forwarded(Method method, Arguments... arguments) noexcept {
    return guarded(kReported, [&] { return (theInterface().*method)(arguments...); });
}

// The same for a member that takes adapter and PHY id first, which a PHY argument names.
template <class Method, class... Arguments>
auto forwardedTo(int phyArg, Method method, Arguments... arguments) noexcept {
    return guarded(kReported, [&] {
        const PhyTarget target = phyTarget(phyArg);
        return (theInterface().*method)(target.adapter, target.phy, arguments...);
    });
}

} // namespace Orvane
