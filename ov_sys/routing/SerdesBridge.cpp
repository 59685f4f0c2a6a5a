// The steps through the bridge, and what its status says.
#include "ov_sys/routing/SerdesBridge.h"

namespace Orvane::Routing {
namespace {

constexpr unsigned kMmd = 30;
constexpr unsigned kWriteAddress = 0xA104;
constexpr unsigned kWriteData = 0xA105;
constexpr unsigned kReadAddress = 0xA108;
constexpr unsigned kReadData = 0xA109;
constexpr unsigned kReadMode = 0xA10B;
constexpr unsigned kEnable = 0xA110;
constexpr unsigned kStatus = 0xA111;

// Error code of the bridge's last access, 0 for none.
Value bridgeError(Access& phy) {
    constexpr unsigned kFailed = 0x1000;
    const Value status = phy.read(kMmd, kStatus);
    if (!status)
        return std::nullopt;
    return (*status & kFailed) != 0 ? *status & 0xFU : 0U;
}

} // namespace

bool writeSerdes(Access& phy, unsigned address, unsigned value) {
    if (!phy.write(kMmd, kEnable, 1) || !phy.write(kMmd, kWriteAddress, address) ||
        !phy.write(kMmd, kWriteData, value))
        return false;
    const Value code = bridgeError(phy);
    return code && (*code == 0 || phy.goesOnAfter({Trouble::BridgeWriteError, *code, address}));
}

Value readSerdes(Access& phy, unsigned address) {
    if (!phy.write(kMmd, kReadMode, 0) || !phy.write(kMmd, kEnable, 1) ||
        !phy.write(kMmd, kReadAddress, address))
        return std::nullopt;
    const Value data = phy.read(kMmd, kReadData);
    const Value code = data ? bridgeError(phy) : std::nullopt;
    if (!code)
        return std::nullopt;
    return *code == 0 ? data : zeroAfter(phy, {Trouble::BridgeReadError, *code, address});
}

} // namespace Orvane::Routing
