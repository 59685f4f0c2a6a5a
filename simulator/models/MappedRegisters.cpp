// What reads and writes do to mapped registers.
#include "simulator/models/MappedRegisters.h"

#include <algorithm>
#include <functional>

namespace OrvaneSim {
namespace {

bool onSamePage(const MappedRegister& a, const MappedRegister& b) {
    if (!a.page || !b.page)
        return a.page.has_value() == b.page.has_value();
    return a.page->value == b.page->value && a.page->mask == b.page->mask &&
           a.page->address == b.page->address && a.page->space == b.page->space;
}

std::uint32_t latching(const MappedRegister& declared) {
    return declared.holdsLow | declared.holdsHigh;
}

} // namespace

MappedRegisters::Cell::Cell(MappedRegister declared, std::uint32_t value)
    : declared_(std::move(declared)), held_(value), live_(value) {}

std::uint32_t MappedRegisters::Cell::read() {
    const std::uint32_t told = held_ & ~declared_.unreadable;
    held_ = ((held_ & ~latching(declared_)) | (live_ & latching(declared_))) & ~declared_.clearedByRead;
    return told;
}

void MappedRegisters::Cell::write(std::uint32_t value) {
    held_ = (held_ & ~declared_.writable) | (value & declared_.writable);
    held_ &= ~(value & declared_.clearedByOnes);
}

void MappedRegisters::Cell::set(std::uint32_t value) {
    live_ = value;
    held_ = (value & ~latching(declared_)) | (value & held_ & declared_.holdsLow) |
            ((value | held_) & declared_.holdsHigh);
}

std::size_t MappedRegisters::Hash::operator()(const Place& place) const {
    const std::uint64_t phy = (place.device << 8U) | place.phy;
    return std::hash<std::uint64_t>()(phy << 40U | std::uint64_t{static_cast<unsigned>(place.space)} << 32U |
                                      place.address);
}

void MappedRegisters::add(PhyAddress where, const MappedRegister& declared, std::uint32_t value) {
    std::vector<Cell>& cells = cells_[{where.device, where.phy, declared.space, declared.address}];
    cells.erase(std::remove_if(cells.begin(), cells.end(),
                               [&](const Cell& each) { return onSamePage(each.declared(), declared); }),
                cells.end());
    cells.emplace_back(declared, value);
}

void MappedRegisters::reset() {
    for (auto& [place, cells] : cells_)
        for (Cell& each : cells)
            each.hold(each.declared().reset.value_or(0));
}

void MappedRegisters::remove(PhyAddress where) {
    for (auto each = cells_.begin(); each != cells_.end();)
        each = each->first.device == where.device && each->first.phy == where.phy ? cells_.erase(each)
                                                                                  : std::next(each);
}

MappedRegisters::Cell* MappedRegisters::findAmong(const MdioPorts& ports, PhyAddress where, Space space,
                                                  std::uint32_t address) {
    const auto found = cells_.find({where.device, where.phy, space, address});
    if (found == cells_.end())
        return nullptr;
    for (Cell& each : found->second) {
        const auto& page = each.declared().page;
        if (!page || (ports.peek(where, page->space, page->address) & page->mask) == page->value)
            return &each;
    }
    return nullptr;
}

std::vector<RegisterValue> MappedRegisters::values() const {
    std::vector<RegisterValue> list;
    for (const auto& [place, cells] : cells_)
        for (const Cell& each : cells)
            if (!each.declared().page)
                list.push_back({place.space, place.device, place.phy, place.address, each.value()});
    return list;
}

} // namespace OrvaneSim
