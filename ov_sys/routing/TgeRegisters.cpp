// The control words of the GFE's two mechanisms, and the accesses around them.
#include "ov_sys/routing/TgeRegisters.h"

namespace Orvane::Routing {
namespace {

constexpr unsigned kMmd = 29;
constexpr unsigned kSmiCommand = 0xC203;
constexpr unsigned kSmiData = 0xC204;

// SMI registers of the GFE that lead to its indirect registers.
constexpr unsigned kControl = 20;
constexpr unsigned kReadData = 21;
constexpr unsigned kWriteData = 23;

unsigned controlWord(unsigned address, unsigned bank) {
    return (address & 0x7FU) | (bank & 7U) << 7U;
}

constexpr unsigned kBanks = 3;

// What is below it in an address is cut where it goes into a register.
unsigned blockOf(unsigned address) {
    return address >> 12U & 0xFU;
}

} // namespace

bool writeSmi(Access& phy, unsigned reg, unsigned value) {
    return phy.write(kMmd, kSmiData, value) && phy.write(kMmd, kSmiCommand, (reg & 0x1FU) | 0x8000U);
}

Value readSmi(Access& phy, unsigned reg) {
    if (!phy.write(kMmd, kSmiCommand, (reg & 0x1FU) | 0xC000U))
        return std::nullopt;
    return phy.read(kMmd, kSmiData);
}

bool writeGfe(Access& phy, unsigned address, unsigned bank, unsigned value) {
    return writeSmi(phy, kWriteData, value) && writeSmi(phy, kControl, controlWord(address, bank) | 0x4000U);
}

Value readGfe(Access& phy, unsigned address, unsigned bank) {
    if (!writeSmi(phy, kControl, controlWord(address, bank) | 0x8000U))
        return std::nullopt;
    return readSmi(phy, kReadData);
}

bool writeTge(Access& phy, unsigned address, unsigned value) {
    const unsigned block = blockOf(address);
    if (block == 0)
        return writeSmi(phy, address, value);
    if (block <= kBanks)
        return writeGfe(phy, address, block - 1, value);
    return phy.goesOnAfter({Trouble::UnknownTgeBlock, block, address});
}

Value readTge(Access& phy, unsigned address) {
    const unsigned block = blockOf(address);
    if (block == 0)
        return readSmi(phy, address);
    if (block <= kBanks)
        return readGfe(phy, address, block - 1);
    return zeroAfter(phy, {Trouble::UnknownTgeBlock, block, address});
}

} // namespace Orvane::Routing
