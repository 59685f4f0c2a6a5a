// What the window does when its command register is written.
#include "simulator/models/WindowPath.h"

namespace OrvaneSim {
namespace {

constexpr std::uint32_t kMmd = 30;
constexpr std::uint32_t kCommand = 0x200;
constexpr std::uint32_t kAddressHigh = 0x202;
constexpr std::uint32_t kAddressLow = 0x203;
constexpr std::uint32_t kDataHigh = 0x204;
constexpr std::uint32_t kDataLow = 0x205;

constexpr std::uint32_t kFetch = 0x8000;
constexpr std::uint32_t kStore = 0xC000;
constexpr std::uint32_t kBusy = 0x100;

std::uint32_t wordAddress(const PhyRegisters& phy) {
    return ((phy.get(kMmd, kAddressHigh) << 16) | phy.get(kMmd, kAddressLow)) & ~std::uint32_t{3};
}

void fetch(const PhyRegisters& phy) {
    const std::uint32_t word = phy.word(wordAddress(phy));
    phy.set(kMmd, kDataHigh, word >> 16);
    phy.set(kMmd, kDataLow, word & 0xFFFF);
}

void store(const PhyRegisters& phy) {
    phy.setWord(wordAddress(phy), (phy.get(kMmd, kDataHigh) << 16) | phy.get(kMmd, kDataLow));
}

} // namespace

void WindowPath::beforeRead(const PhyRegisters& phy, std::uint32_t reg) {
    if (reg != kCommand || !fetches_.poll(phy.key()))
        return;
    fetch(phy);
    phy.set(kMmd, kCommand, phy.get(kMmd, kCommand) & ~kBusy);
}

void WindowPath::afterWrite(const PhyRegisters& phy, std::uint32_t reg, const PathTroubles& troubles) {
    if (reg != kCommand)
        return;
    const std::uint32_t command = phy.get(kMmd, kCommand) & kStore;
    if (command == kStore)
        store(phy);
    if (command != kFetch)
        return;
    fetches_.start(phy.key(), troubles.windowBusyReads);
    phy.set(kMmd, kCommand, phy.get(kMmd, kCommand) | kBusy);
}

} // namespace OrvaneSim
