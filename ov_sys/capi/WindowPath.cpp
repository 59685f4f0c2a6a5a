// MMD 10, reached through an address, command and data window in MMD 30.
#include "ov_sys/capi/IndirectPaths.h"

namespace Orvane {
namespace {

constexpr unsigned kMmd = 30;
constexpr unsigned kCommand = 0x200;
constexpr unsigned kAddressHigh = 0x202;
constexpr unsigned kAddressLow = 0x203;
constexpr unsigned kOddData = 0x204;
constexpr unsigned kEvenData = 0x205;
constexpr unsigned kBusy = 0x100;
constexpr int kMostReads = 41;

unsigned dataRegister(unsigned address) {
    return address % 2 != 0 ? kOddData : kEvenData;
}

void writeTarget(const PlainAccess& phy, unsigned address) {
    const unsigned target = 0x3FFE0480U + 2U * address;
    phy.write(kMmd, kAddressHigh, target >> 16U);
    phy.write(kMmd, kAddressLow, target & 0xFFFFU);
}

// Points the window at a register and waits until it is there.
bool openWindow(const PlainAccess& phy, unsigned address) {
    constexpr unsigned kFetch = 0x8000;
    writeTarget(phy, address);
    phy.write(kMmd, kCommand, kFetch);
    for (int reads = 0; reads < kMostReads; ++reads)
        if ((phy.read(kMmd, kCommand) & kBusy) == 0)
            return true;
    return false;
}

} // namespace

void windowWrite(const PlainAccess& phy, unsigned address, unsigned value) {
    constexpr unsigned kStore = 0xC000;
    if (!openWindow(phy, address))
        return;
    writeTarget(phy, address);
    phy.write(kMmd, dataRegister(address), value);
    phy.write(kMmd, kCommand, kStore);
}

unsigned windowRead(const PlainAccess& phy, unsigned address) {
    return openWindow(phy, address) ? phy.read(kMmd, dataRegister(address)) : 0;
}

} // namespace Orvane
