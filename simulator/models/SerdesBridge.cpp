// What the bridge does when its command register is written.
#include "simulator/models/SerdesBridge.h"

namespace OrvaneSim {
namespace {

constexpr std::uint32_t kMmd = 30;
constexpr std::uint32_t kSerdesMmd = 27;
constexpr std::uint32_t kWriteAddress = 0xA104;
constexpr std::uint32_t kWriteData = 0xA105;
constexpr std::uint32_t kReadAddress = 0xA108;
constexpr std::uint32_t kReadData = 0xA109;
constexpr std::uint32_t kClear = 0xA110;
constexpr std::uint32_t kStatus = 0xA111;

bool failed(std::uint32_t status) {
    return (status & 0x1000) != 0 && (status & 0xF) != 0;
}

} // namespace

void SerdesBridge::afterWrite(const PhyRegisters& phy, std::uint32_t reg, const PathTroubles& troubles) {
    switch (reg) {
    case kClear:
        phy.set(kMmd, kStatus, 0);
        return;
    case kWriteData:
        if (!failed(troubles.bridgeStatus))
            phy.set(kSerdesMmd, phy.get(kMmd, kWriteAddress), phy.get(kMmd, kWriteData));
        phy.set(kMmd, kStatus, troubles.bridgeStatus);
        return;
    case kReadAddress:
        phy.set(kMmd, kReadData, phy.get(kSerdesMmd, phy.get(kMmd, kReadAddress)));
        phy.set(kMmd, kStatus, troubles.bridgeStatus);
        return;
    default:
        return;
    }
}

} // namespace OrvaneSim
