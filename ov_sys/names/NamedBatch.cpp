// Turns pages between the accesses, and turns them back at the end.
#include "ov_sys/names/NamedBatch.h"

#include <algorithm>
#include <utility>

namespace Orvane {

std::optional<RegisterAddress> addressOf(const MapRegister& reg) noexcept {
    const MapAddress& address = reg.address();
    if (reg.width() > 32)
        return std::nullopt;
    switch (address.space) {
    case MapSpace::c45:
        return RegisterAddress{address.mmd, address.number};
    case MapSpace::c22:
        return clause22(address.number);
    case MapSpace::ext32:
        return ext32(address.number);
    case MapSpace::smbus:
        break;
    }
    return std::nullopt;
}

bool isReachable(const MapRegister& reg) noexcept {
    const auto page = reg.page();
    return addressOf(reg) && (!page || addressOf(*page->select));
}

MapAddress mapAddress(const RegisterAddress& address, std::int64_t page) noexcept {
    switch (address.space) {
    case RegisterAddress::Space::Clause45:
        return {MapSpace::c45, static_cast<std::uint8_t>(address.mmd), address.number, page};
    case RegisterAddress::Space::Clause22:
        return {MapSpace::c22, 0, address.number, page};
    case RegisterAddress::Space::Ext32:
        break;
    }
    return {MapSpace::ext32, 0, address.number, page};
}

std::vector<const MapRegister*> NamedBatch::selectsOf(const std::vector<const MapRegister*>& registers) {
    std::vector<const MapRegister*> selects;
    for (const MapRegister* const each : registers)
        if (const auto page = each->page();
            page && std::find(selects.begin(), selects.end(), page->select) == selects.end())
            selects.push_back(page->select);
    return selects;
}

NamedBatch::NamedBatch(Selects selects) : selects_(std::move(selects)) {}

Batch::Reading NamedBatch::read(const MapRegister& reg) {
    if (const auto select = selects_.find(&reg); select != selects_.end() && now_.count(&reg) != 0)
        writeSelect(reg, select->second); // what it holds, not what we turned it to
    turnTo(reg);
    return batch_.read(addressOf(reg).value());
}

void NamedBatch::write(const MapRegister& reg, std::uint32_t value) {
    turnTo(reg);
    batch_.write(addressOf(reg).value(), value);
    if (const auto select = selects_.find(&reg); select != selects_.end()) {
        select->second = value;
        now_[&reg] = value;
    }
}

const Batch& NamedBatch::finish() {
    for (const auto& [select, value] : selects_)
        if (now_.count(select) != 0)
            writeSelect(*select, value);
    return batch_;
}

void NamedBatch::turnTo(const MapRegister& reg) {
    const auto page = reg.page();
    if (!page)
        return;
    const auto now = now_.find(page->select);
    const std::uint32_t held = now != now_.end() ? now->second : selects_.at(page->select);
    const std::uint64_t wanted =
        page->field == nullptr ? page->value : page->field->insert(held, page->value);
    if (now == now_.end() || held != wanted)
        writeSelect(*page->select, static_cast<std::uint32_t>(wanted));
}

void NamedBatch::writeSelect(const MapRegister& select, std::uint32_t value) {
    if (const auto now = now_.find(&select); now != now_.end() && now->second == value)
        return;
    batch_.write(addressOf(select).value(), value);
    now_[&select] = value;
}

} // namespace Orvane
