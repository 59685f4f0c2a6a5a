// Accesses to a map's registers as operations of one batch, with the steps that their pages need.
#pragma once

#include "ov_sys/Interface/foundation/Export.h"
#include "ov_sys/rack/values/Batch.h"

#include <cstdint>
#include <map>
#include <optional>
#include <orvane/maps.hpp>
#include <vector>

namespace Orvane {

// Where a board has a register; nothing for one that it has not: wider than 32 bits, or an SMBus device's
// own.
ORVANE_API std::optional<RegisterAddress> addressOf(const MapRegister& reg) noexcept;
// Whether a board has the register, and what selects its page.
ORVANE_API bool isReachable(const MapRegister& reg) noexcept;
// Where a map has the register of a board.
ORVANE_API MapAddress mapAddress(const RegisterAddress& address, std::int64_t page = -1) noexcept;

// Builds a batch in which each register is reached on its page: select registers are written where they have
// to turn, and put back in the end. A plain value; one thread.
class ORVANE_API NamedBatch {
public:
    // What select registers hold before the batch.
    using Selects = std::map<const MapRegister*, std::uint32_t>;

    // The select registers of these registers, whose values the batch has to know; each once.
    static std::vector<const MapRegister*> selectsOf(const std::vector<const MapRegister*>& registers);

    // An empty one, for select registers that hold these values.
    explicit NamedBatch(Selects selects);

    // Every register must be reachable, and the select register of its page known: throws std::out_of_range
    // and std::bad_optional_access otherwise.
    Batch::Reading read(const MapRegister& reg);
    void write(const MapRegister& reg, std::uint32_t value);
    // Puts the select registers back; the batch is then whole.
    const Batch& finish();

private:
    void turnTo(const MapRegister& reg);
    void writeSelect(const MapRegister& select, std::uint32_t value);

    Batch batch_;
    Selects selects_; // what they are to hold in the end
    Selects now_;     // what those that were written hold
};

} // namespace Orvane
