// The time that is left, and the pages that stand before.
#include "ov_sys/names/Paging.h"

#include <algorithm>

namespace Orvane::Names {

Within Budget::left() const noexcept {
    Within rest = within_;
    const std::chrono::nanoseconds spent = std::chrono::steady_clock::now() - begun_;
    rest.time = rest.time > spent ? rest.time - spent : std::chrono::nanoseconds(0);
    return rest;
}

Within Budget::leftFor(const Registers& registers) const {
    const bool repeatable = std::all_of(registers.begin(), registers.end(),
                                        [](const MapRegister* each) { return each->isSafeToRead(); });
    return repeatable ? left() : left().once();
}

bool anyPaged(const Registers& registers) noexcept {
    return std::any_of(registers.begin(), registers.end(),
                       [](const MapRegister* each) { return each->page().has_value(); });
}

NamedBatch::Selects readSelects(const Phy& phy, const Registers& registers, const Within& within) {
    const Registers needed = NamedBatch::selectsOf(registers);
    NamedBatch::Selects selects;
    if (needed.empty())
        return selects;
    Batch batch;
    for (const MapRegister* const each : needed)
        batch.read(addressOf(*each).value());
    const BatchResult result = phy.run(batch, within);
    for (std::size_t i = 0; i < needed.size(); ++i)
        selects[needed[i]] = result[Batch::Reading{i}];
    return selects;
}

} // namespace Orvane::Names
