// Which register a page, or a lane and an index, stand for.
#include "simulator/models/PagedRegisters.h"

namespace OrvaneSim {
namespace {

constexpr std::uint32_t kMmd = 4;
constexpr std::uint32_t kPagedMmd = 28;
constexpr std::uint32_t kPage = 0xC180;
constexpr std::uint32_t kFirst = 0xC200;
constexpr std::uint32_t kSelector = 0x0B; // of page 0
constexpr std::uint32_t kIndexedLow = 0xC2EF;
constexpr std::uint32_t kIndexedHigh = 0xC2FF;
constexpr std::uint32_t kFirstIndexed = 0x8000;

bool isPaged(std::uint32_t reg) {
    return (reg & 0xFF00) == kFirst;
}

std::uint32_t page(const PhyRegisters& phy) {
    return phy.get(kMmd, kPage) & 7;
}

std::uint32_t behind(const PhyRegisters& phy, std::uint32_t reg) {
    return (page(phy) << 8) | (reg & 0xFF);
}

std::uint32_t indexed(const PhyRegisters& phy) {
    const std::uint32_t reversed = phy.get(kPagedMmd, kSelector);
    std::uint32_t selector = 0;
    for (unsigned bit = 0; bit < 8; ++bit)
        selector = (selector << 1) | ((reversed >> bit) & 1);
    const std::uint32_t lane = selector >> 5;
    return phy.get(kPagedMmd, kFirstIndexed | (lane << 8) | (selector & 0x1F));
}

} // namespace

void PagedRegisters::beforeRead(const PhyRegisters& phy, std::uint32_t reg) {
    if (!isPaged(reg))
        return;
    if (page(phy) == 0 && reg == kIndexedLow)
        phy.set(kMmd, reg, indexed(phy) & 0xFF);
    else if (page(phy) == 0 && reg == kIndexedHigh)
        phy.set(kMmd, reg, indexed(phy) >> 8);
    else
        phy.set(kMmd, reg, phy.get(kPagedMmd, behind(phy, reg)));
}

void PagedRegisters::afterWrite(const PhyRegisters& phy, std::uint32_t reg) {
    if (isPaged(reg))
        phy.set(kPagedMmd, behind(phy, reg), phy.get(kMmd, reg));
}

} // namespace OrvaneSim
