// The four accesses that carry one.
#include "ov_sys/routing/OverClause22.h"

namespace Orvane::Routing {
namespace {

constexpr unsigned kControl = 13;
constexpr unsigned kWindow = 14;

// Points the PHY's window at a register.
bool select(Access& phy, unsigned mmd, unsigned address) {
    constexpr unsigned kData = 0x4000;
    return phy.writeClause22(kControl, mmd & 31U) && phy.writeClause22(kWindow, address) &&
           phy.writeClause22(kControl, (mmd & 31U) | kData);
}

} // namespace

bool writeOverClause22(Access& phy, unsigned mmd, unsigned address, unsigned value) {
    return select(phy, mmd, address) && phy.writeClause22(kWindow, value);
}

Value readOverClause22(Access& phy, unsigned mmd, unsigned address) {
    if (!select(phy, mmd, address))
        return std::nullopt;
    return phy.readClause22(kWindow);
}

} // namespace Orvane::Routing
