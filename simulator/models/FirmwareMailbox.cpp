// What the firmware does when the command register is written.
#include "simulator/models/FirmwareMailbox.h"

namespace OrvaneSim {
namespace {

constexpr std::uint32_t kMmd = 30;
constexpr std::uint32_t kAddress = 0xC47C;
constexpr std::uint32_t kData = 0xC47D;
constexpr std::uint32_t kCommand = 0xC47E;
constexpr std::uint32_t kStatus = 0xC47F;

constexpr std::uint32_t kReadCommand = 0x100;
constexpr std::uint32_t kWriteCommand = 0x200;
constexpr std::uint32_t kDone = 1;
constexpr std::uint32_t kError = 2;

// Carries out the command that is in the registers; its status.
std::uint32_t carryOut(const PhyRegisters& phy) {
    const std::uint32_t command = phy.get(kMmd, kCommand);
    const std::uint32_t mmd = command & 0xFF;
    const std::uint32_t address = phy.get(kMmd, kAddress);
    switch (command & 0xFF00) {
    case kReadCommand:
        phy.set(kMmd, kData, phy.get(mmd, address));
        return kDone;
    case kWriteCommand:
        phy.set(mmd, address, phy.get(kMmd, kData));
        return kDone;
    default:
        return kError;
    }
}

} // namespace

void FirmwareMailbox::beforeRead(const PhyRegisters& phy, std::uint32_t reg, const PathTroubles& troubles) {
    if (reg == kStatus && commands_.poll(phy.key()))
        phy.set(kMmd, kStatus, troubles.mailboxStatus == kDone ? carryOut(phy) : troubles.mailboxStatus);
}

void FirmwareMailbox::afterWrite(const PhyRegisters& phy, std::uint32_t reg, const PathTroubles& troubles) {
    if (reg == kCommand)
        commands_.start(phy.key(), troubles.mailboxBusyReads);
}

} // namespace OrvaneSim
