// What an access to registers by name needs beyond the batch itself.
#pragma once

#include "ov_sys/names/NamedBatch.h"
#include "ov_sys/rack/Phy.h"

#include <chrono>
#include <vector>

namespace Orvane::Names {

using Registers = std::vector<const MapRegister*>;

// The time of an operation of several calls. One thread.
class Budget {
public:
    explicit Budget(const Within& within) noexcept : within_(within) {}
    // The limits for the next of them.
    Within left() const noexcept;
    // For one that reads these registers: what a read changes is asked for once.
    Within leftFor(const Registers& registers) const;

private:
    const Within within_;
    const std::chrono::steady_clock::time_point begun_ = std::chrono::steady_clock::now();
};

// Reads the select registers that these registers' pages need; nothing is sent for those without. Throws
// Failure.
NamedBatch::Selects readSelects(const Phy& phy, const Registers& registers, const Within& within);

// Whether the accesses of these registers have steps between which nobody may come.
bool anyPaged(const Registers& registers) noexcept;

} // namespace Orvane::Names
