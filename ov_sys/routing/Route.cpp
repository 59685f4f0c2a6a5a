// The table of paths, and the call of each.
#include "ov_sys/routing/Route.h"

#include "ov_sys/routing/Mailbox.h"
#include "ov_sys/routing/OverClause22.h"
#include "ov_sys/routing/Pages.h"
#include "ov_sys/routing/RegisterClasses.h"
#include "ov_sys/routing/SerdesBridge.h"
#include "ov_sys/routing/TgeRegisters.h"
#include "ov_sys/routing/Window.h"

namespace Orvane::Routing {
namespace {

Route routeOf(const Delegations& delegations, unsigned mmd, bool pagedByFirmware) {
    switch (mmd) {
    case kWindowMmd:
        return Route::Window;
    case kTgeMmd:
        return delegations.tge ? Route::Mailbox : Route::Tge;
    case kSerdesMmd:
        return delegations.serdes ? Route::Mailbox : Route::Serdes;
    case kPagedMmd:
        return pagedByFirmware ? Route::Mailbox : Route::Paged;
    default:
        return Route::Plain;
    }
}

} // namespace

Route routeOfWrite(const Delegations& delegations, unsigned mmd) {
    return routeOf(delegations, mmd, delegations.writePaged);
}

Route routeOfRead(const Delegations& delegations, unsigned mmd, unsigned address) {
    if (mmd == kClassMmd && delegations.readClasses && (isNec(mmd, address) || isDec(mmd, address)))
        return Route::Mailbox;
    return routeOf(delegations, mmd, delegations.readPaged);
}

bool write(Access& phy, Route route, unsigned mmd, unsigned address, unsigned value) {
    switch (route) {
    case Route::OverClause22:
        return writeOverClause22(phy, mmd, address, value);
    case Route::Mailbox:
        return writeByMailbox(phy, mmd, address, value);
    case Route::Tge:
        return writeTge(phy, address, value);
    case Route::Window:
        return writeByWindow(phy, address, value);
    case Route::Serdes:
        return writeSerdes(phy, address, value);
    case Route::Paged:
        return writePaged(phy, address);
    case Route::Plain:
        break;
    }
    return phy.write(mmd, address, value);
}

Value read(Access& phy, Route route, unsigned mmd, unsigned address) {
    switch (route) {
    case Route::OverClause22:
        return readOverClause22(phy, mmd, address);
    case Route::Mailbox:
        return readByMailbox(phy, mmd, address);
    case Route::Tge:
        return readTge(phy, address);
    case Route::Window:
        return readByWindow(phy, address);
    case Route::Serdes:
        return readSerdes(phy, address);
    case Route::Paged:
        return readPaged(phy, address);
    case Route::Plain:
        break;
    }
    return phy.read(mmd, address);
}

} // namespace Orvane::Routing
