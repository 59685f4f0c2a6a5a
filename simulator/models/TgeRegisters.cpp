// What the GFE does when its control register is written.
#include "simulator/models/TgeRegisters.h"

namespace OrvaneSim {
namespace {

constexpr std::uint32_t kMmd = 29;
constexpr std::uint32_t kCommand = 0xC203;
constexpr std::uint32_t kData = 0xC204;
constexpr std::uint32_t kTgeMmd = 11;

constexpr std::uint32_t kIndirectControl = 0x14;
constexpr std::uint32_t kIndirectRead = 0x15;
constexpr std::uint32_t kIndirectWrite = 0x17;

void startIndirectAccess(const PhyRegisters& phy, std::uint32_t control) {
    const std::uint32_t bank = (control >> 7) & 7;
    const std::uint32_t reg = ((bank + 1) << 12) | (control & 0x7F);
    if ((control & 0x4000) != 0)
        phy.set(kTgeMmd, reg, phy.get(kTgeMmd, kIndirectWrite));
    else if ((control & 0x8000) != 0)
        phy.set(kTgeMmd, kIndirectRead, phy.get(kTgeMmd, reg));
}

} // namespace

void TgeRegisters::afterWrite(const PhyRegisters& phy, std::uint32_t reg) {
    const std::uint32_t command = phy.get(kMmd, kCommand);
    if (reg != kCommand || (command & 0x8000) == 0)
        return;
    const std::uint32_t smi = command & 0x1F;
    if ((command & 0x4000) != 0) {
        phy.set(kMmd, kData, phy.get(kTgeMmd, smi));
        return;
    }
    phy.set(kTgeMmd, smi, phy.get(kMmd, kData));
    if (smi == kIndirectControl)
        startIndirectAccess(phy, phy.get(kTgeMmd, smi));
}

} // namespace OrvaneSim
