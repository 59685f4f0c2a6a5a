// What the registers of a PHY held at one time, and how two times differ.
#pragma once

#include "ov_sys/Interface/foundation/Export.h"

#include <cstdint>
#include <orvane/maps.hpp>
#include <string>
#include <vector>

namespace Orvane {

// A register's value with its meaning. Valid as long as a copy of the map.
struct DecodedRegister {
    const MapRegister* reg = nullptr; // null: the map has none at this address
    std::uint64_t value = 0;
    std::vector<DecodedField> fields; // most significant first
};

// Values by their registers. A plain value that keeps its map; see Phy::snapshot().
struct ORVANE_API Snapshot {
    struct Value {
        const MapRegister* reg = nullptr;
        std::uint64_t value = 0;
    };

    RegisterMap map;           // that the values belong to
    std::vector<Value> values; // in the map's order
    // In the scope, but not read: a read would change them or tell nothing, or no board reaches them.
    std::vector<const MapRegister*> leftOut;

    // The value of a register by its full name; null: not in it.
    const Value* find(std::string_view name) const noexcept;
    // Each with its fields.
    std::vector<DecodedRegister> decoded() const;
};

// A field that is not the same in two snapshots. Valid as long as the map of the later one.
struct ORVANE_API FieldChange {
    const MapRegister* reg = nullptr;
    const MapField* field = nullptr; // null: bits of no field, or a register without fields
    std::uint64_t before = 0;        // raw; of bits of no field where they are in the register
    std::uint64_t after = 0;

    // The full name.
    std::string name() const;
    // "CHIP.CONTROL.SPEED: 100 Mb/s -> 1000 Mb/s"
    std::string text() const;
};

// The fields that differ, in the map's order; of registers that both have. Does not block; any thread.
ORVANE_API std::vector<FieldChange> diff(const Snapshot& before, const Snapshot& after);

// What Phy::restore() writes of a snapshot, and in this order: registers that can be brought back, each with
// the value that is sent. Does not block; any thread.
ORVANE_API std::vector<Snapshot::Value> toRestore(const Snapshot& snapshot);

// What Phy::restore() did.
struct Restored {
    std::size_t written = 0;           // registers
    std::vector<FieldChange> notTaken; // `before`: what was to be written, `after`: what was read back
};

} // namespace Orvane
