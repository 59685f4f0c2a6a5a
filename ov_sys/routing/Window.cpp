// The steps through the window, and the wait for it.
#include "ov_sys/routing/Window.h"

namespace Orvane::Routing {
namespace {

constexpr unsigned kMmd = 30;
constexpr unsigned kCommand = 0x200;
constexpr unsigned kAddressHigh = 0x202;
constexpr unsigned kAddressLow = 0x203;
constexpr unsigned kOddData = 0x204;
constexpr unsigned kEvenData = 0x205;

unsigned dataRegister(unsigned address) {
    return address % 2 != 0 ? kOddData : kEvenData;
}

bool writeTarget(Access& phy, unsigned address) {
    const unsigned target = 0x3FFE0480U + 2U * address;
    return phy.write(kMmd, kAddressHigh, target >> 16U) && phy.write(kMmd, kAddressLow, target & 0xFFFFU);
}

// Whether the window came to be free; none when an access failed.
std::optional<bool> waitForWindow(Access& phy) {
    constexpr unsigned kBusy = 0x100;
    constexpr int kMostReads = 41;
    for (int reads = 1;; ++reads) {
        const Value command = phy.read(kMmd, kCommand);
        if (!command)
            return std::nullopt;
        if ((*command & kBusy) == 0)
            return true;
        if (reads == kMostReads || !phy.keepsWaiting())
            return false;
    }
}

// Points the window at a register and waits until it is there.
std::optional<bool> openWindow(Access& phy, unsigned address) {
    constexpr unsigned kFetch = 0x8000;
    if (!writeTarget(phy, address) || !phy.write(kMmd, kCommand, kFetch))
        return std::nullopt;
    return waitForWindow(phy);
}

} // namespace

bool writeByWindow(Access& phy, unsigned address, unsigned value) {
    constexpr unsigned kStore = 0xC000;
    const std::optional<bool> open = openWindow(phy, address);
    if (!open)
        return false;
    if (!*open)
        return phy.goesOnAfter({Trouble::WindowBusy, 0, address});
    return writeTarget(phy, address) && phy.write(kMmd, dataRegister(address), value) &&
           phy.write(kMmd, kCommand, kStore);
}

Value readByWindow(Access& phy, unsigned address) {
    const std::optional<bool> open = openWindow(phy, address);
    if (!open)
        return std::nullopt;
    return *open ? phy.read(kMmd, dataRegister(address)) : zeroAfter(phy, {Trouble::WindowBusy, 0, address});
}

} // namespace Orvane::Routing
