// Register accesses by the path that the register, the adapter's flags and its Clause 22 switch ask for.
#include "ov_sys/capi/AdapterTables.h"
#include "ov_sys/capi/LoggedAccess.h"
#include "ov_sys/routing/Route.h"

namespace {

using namespace Orvane;
using Routing::Route;

// Mailbox, TGE and SerDes paths take the number as that of a PHY on the default adapter, even when it is a
// PHY argument that names another.
LoggedAccess accessFor(Route route, unsigned adapter, unsigned phy) {
    const bool onAdapter = route == Route::Mailbox || route == Route::Tge || route == Route::Serdes;
    return {adapter, phy, onAdapter ? LoggedAccess::Phy::OnAdapter : LoggedAccess::Phy::Argument};
}

// The functions that name their adapter know neither register classes nor Clause 22.
Route routeOnAdapter(unsigned adapter, unsigned mmd) {
    return Routing::routeOfWrite(delegationsOf(adapter), mmd);
}

} // namespace

extern "C" {

void ZR_API_MDIO_Write(unsigned int phy, unsigned int mmd, unsigned int address, unsigned int value) {
    const unsigned adapter = theInterface().defaultAdapter_;
    const Route route =
        overClause22(adapter) ? Route::OverClause22 : Routing::routeOfWrite(delegationsOf(adapter), mmd);
    LoggedAccess access = accessFor(route, adapter, phy);
    Routing::write(access, route, mmd, address, value);
}

unsigned int ZR_API_MDIO_Read(unsigned int phy, unsigned int mmd, unsigned int address) {
    const unsigned adapter = theInterface().defaultAdapter_;
    const Route route = overClause22(adapter) ? Route::OverClause22
                                              : Routing::routeOfRead(delegationsOf(adapter), mmd, address);
    LoggedAccess access = accessFor(route, adapter, phy);
    return Routing::read(access, route, mmd, address).value_or(0);
}

void HW_Write(unsigned int adapter, unsigned int phy, unsigned int mmd, unsigned int address,
              unsigned int value) {
    if (reachedByDefaultAdapterOnly(mmd))
        return;
    LoggedAccess access(adapter, phy, LoggedAccess::Phy::OnAdapter);
    Routing::write(access, routeOnAdapter(adapter, mmd), mmd, address, value);
}

unsigned int HW_Read(unsigned int adapter, unsigned int phy, unsigned int mmd, unsigned int address) {
    if (reachedByDefaultAdapterOnly(mmd))
        return 0;
    LoggedAccess access(adapter, phy, LoggedAccess::Phy::OnAdapter);
    return Routing::read(access, routeOnAdapter(adapter, mmd), mmd, address).value_or(0);
}

void ZR_API_MDIO_Write_Default_PHY_ID(unsigned int mmd, unsigned int address, unsigned int value) {
    ZR_API_MDIO_Write(HW_GetDefault_PHY_ID(), mmd, address, value);
}

unsigned int ZR_API_MDIO_Read_Default_PHY_ID(unsigned int mmd, unsigned int address) {
    return ZR_API_MDIO_Read(HW_GetDefault_PHY_ID(), mmd, address);
}

void HW_Write_Default_PHY_ID(unsigned int mmd, unsigned int address, unsigned int value) {
    ZR_API_MDIO_Write_Default_PHY_ID(mmd, address, value);
}

unsigned int HW_Read_Default_PHY_ID(unsigned int mmd, unsigned int address) {
    return ZR_API_MDIO_Read_Default_PHY_ID(mmd, address);
}

void ZR_API_MDIO_Write_Multi(const unsigned int* phys, int count, unsigned int mmd, unsigned int address,
                             unsigned int value) {
    // The first two PHYs are on adapters 0 and 1, the others from 4 on: docs/limits.md, "Odd on purpose".
    for (int i = 0; i < count; ++i) {
        HW_SetDefaultAdapter(static_cast<unsigned>(i < 2 ? i : i + 2));
        ZR_API_MDIO_Write(phys[i], mmd, address, value);
    }
}
}
