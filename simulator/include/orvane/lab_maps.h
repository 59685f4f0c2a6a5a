// Register maps for simulated PHYs: <orvane/lab_maps.h>, for tests that use both libraries.
#pragma once

#include "simulator/models/MappedRegisters.h"

#include <cstdint>
#include <optional>
#include <orvane/maps.hpp>
#include <vector>

namespace OrvaneSim {

// The bits of a register that have an access; those of no field have the register's.
inline std::uint32_t bitsWith(const Orvane::MapRegister& reg, Orvane::MapAccess access) {
    std::uint64_t found = 0;
    std::uint64_t named = 0;
    for (const Orvane::MapField& field : reg.fields()) {
        named |= field.mask;
        found |= field.access == access ? field.mask : 0;
    }
    const std::uint64_t all = reg.width() >= 64 ? ~std::uint64_t{0} : (std::uint64_t{1} << reg.width()) - 1;
    return static_cast<std::uint32_t>(found | (reg.access() == access ? all & ~named : 0));
}

// Where a board has a register of a map; nothing for one that it does not have: wider than 32 bits, or an
// SMBus device's own.
inline std::optional<RegisterValue> placeOf(const Orvane::MapRegister& reg) {
    const Orvane::MapAddress& address = reg.address();
    RegisterValue place;
    if (address.space == Orvane::MapSpace::smbus || reg.width() > 32)
        return std::nullopt;
    place.space = address.space == Orvane::MapSpace::c45   ? Space::C45
                  : address.space == Orvane::MapSpace::c22 ? Space::C22
                                                           : Space::Ext32;
    place.address =
        place.space == Space::C45 ? std::uint32_t{address.mmd} << 16U | address.number : address.number;
    return place;
}

// What a map says of a PHY's registers, for Board::useMap().
inline std::vector<MappedRegister> mappedRegisters(const Orvane::RegisterMap& map) {
    using Orvane::MapAccess;
    std::vector<MappedRegister> list;
    for (const Orvane::MapRegister& reg : map.registers()) {
        const auto place = placeOf(reg);
        if (!place)
            continue;
        MappedRegister one;
        one.space = place->space;
        one.address = place->address;
        if (const auto page = reg.page())
            if (const auto select = placeOf(*page->select))
                one.page = {select->space, select->address,
                            static_cast<std::uint32_t>(page->field ? page->field->mask : ~std::uint64_t{0}),
                            static_cast<std::uint32_t>(page->field ? page->field->insert(0, page->value)
                                                                   : page->value)};
        if (const auto reset = reg.reset())
            one.reset = static_cast<std::uint32_t>(*reset);
        one.writable = bitsWith(reg, MapAccess::rw) | bitsWith(reg, MapAccess::wo);
        one.clearedByOnes = bitsWith(reg, MapAccess::w1c);
        one.clearedByRead = bitsWith(reg, MapAccess::clearOnRead);
        one.holdsLow = bitsWith(reg, MapAccess::latchingLow);
        one.holdsHigh = bitsWith(reg, MapAccess::latchingHigh);
        one.unreadable = bitsWith(reg, MapAccess::wo);
        list.push_back(one);
    }
    return list;
}

} // namespace OrvaneSim
