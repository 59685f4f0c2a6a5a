// SerDes control registers (MMD 27), reached through a bridge in MMD 30.
#include "ov_sys/Interface/foundation/Diagnostics.h"

#include <orvane/orvane.h>

namespace {

constexpr unsigned kMmd = 30;

// Error code of the bridge's last access, 0 for none.
unsigned bridgeError(unsigned adapter, unsigned phy) {
    constexpr unsigned kStatus = 0xA111;
    constexpr unsigned kFailed = 0x1000;
    const unsigned status = HW_Read(adapter, phy, kMmd, kStatus);
    return (status & kFailed) != 0 ? status & 0xFU : 0;
}

void reportBridgeError(unsigned code, const char* action, unsigned address) {
    using Orvane::Diagnostics::Hex;
    Orvane::Diagnostics::error("Error: SERDES control register bridge error (code 0x", Hex{code}, ") ",
                               action, " address 0x", Hex{address});
}

} // namespace

extern "C" {

void synSdControlRegWrite(unsigned int adapter, unsigned int phy, unsigned int address, unsigned int value) {
    HW_Write(adapter, phy, kMmd, 0xA110, 1);
    HW_Write(adapter, phy, kMmd, 0xA104, address);
    HW_Write(adapter, phy, kMmd, 0xA105, value);
    if (const unsigned code = bridgeError(adapter, phy))
        reportBridgeError(code, "writing", address);
}

unsigned int synSdControlRegRead(unsigned int adapter, unsigned int phy, unsigned int address) {
    HW_Write(adapter, phy, kMmd, 0xA10B, 0);
    HW_Write(adapter, phy, kMmd, 0xA110, 1);
    HW_Write(adapter, phy, kMmd, 0xA108, address);
    const unsigned data = HW_Read(adapter, phy, kMmd, 0xA109);
    const unsigned code = bridgeError(adapter, phy);
    if (code == 0)
        return data;
    reportBridgeError(code, "reading", address);
    return 0;
}
}
