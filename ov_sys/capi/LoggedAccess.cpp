// An access goes to the device, and into the log; no failure ends a path.
#include "ov_sys/capi/LoggedAccess.h"

#include "ov_sys/Interface/foundation/Diagnostics.h"

#include <orvane/orvane.h>

namespace Orvane {
namespace {

using Routing::Trouble;

void reportBridgeError(const Trouble& trouble, const char* action) {
    using Diagnostics::Hex;
    Diagnostics::error("Error: SERDES control register bridge error (code 0x", Hex{trouble.code}, ") ",
                       action, " address 0x", Hex{trouble.address});
}

} // namespace

Routing::Value LoggedAccess::read(unsigned mmd, unsigned reg) {
    const unsigned value = kind_ == Phy::OnAdapter
                               ? HW_Read_Abstracted(adapter_, phy_, mmd, reg)
                               : ZR_API_MDIO_Read_Abstracted(static_cast<int>(phy_), mmd, reg);
    HW_Logging_MDIORead(adapter_, phy_, mmd, reg, value);
    return value;
}

bool LoggedAccess::write(unsigned mmd, unsigned reg, unsigned value) {
    if (kind_ == Phy::OnAdapter)
        HW_Write_Abstracted(adapter_, phy_, mmd, reg, value);
    else
        ZR_API_MDIO_Write_Abstracted(static_cast<int>(phy_), mmd, reg, value);
    HW_Logging_MDIOWrite(adapter_, phy_, mmd, reg, value);
    return true;
}

Routing::Value LoggedAccess::readClause22(unsigned reg) {
    return ZR_API_MDIO_Read_C22(static_cast<int>(phy_), reg);
}

bool LoggedAccess::writeClause22(unsigned reg, unsigned value) {
    ZR_API_MDIO_Write_C22(static_cast<int>(phy_), reg, value);
    return true;
}

bool LoggedAccess::goesOnAfter(const Trouble& trouble) {
    switch (trouble.kind) {
    case Trouble::FirmwareBusy:
        Diagnostics::warning("Warning: PIF Mailbox commandStatus polling limit exceeded, retrying.");
        break;
    case Trouble::FirmwareError:
        Diagnostics::warning("Warning: PIF Mailbox reported an error, retrying.");
        break;
    case Trouble::FirmwareGivenUp:
        Diagnostics::error("Error: PIF Mailbox retry limit exceeded, so giving up.");
        break;
    case Trouble::BridgeReadError:
        reportBridgeError(trouble, "reading");
        break;
    case Trouble::BridgeWriteError:
        reportBridgeError(trouble, "writing");
        break;
    case Trouble::UnknownTgeBlock:
        Diagnostics::error("Error: unsupported TGE register block ID: ", trouble.code);
        break;
    case Trouble::WindowBusy:
    case Trouble::UnknownPagedAddress:
        break; // in silence
    }
    return true;
}

} // namespace Orvane
