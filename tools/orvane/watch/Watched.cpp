// What samples change.
#include "tools/orvane/watch/Watched.h"

#include <utility>

namespace OrvaneTool {
namespace {

using Clock = std::chrono::steady_clock;

constexpr std::chrono::seconds kMarked{2}; // for how long a change is to be seen

} // namespace

void Watched::take(std::uint32_t sample, bool first) {
    changed = first ? 0 : value ^ sample;
    changes += changed != 0 ? 1U : 0U;
    value = sample;
    for (std::size_t bit = 0; changed != 0 && bit < changedAt_.size(); ++bit)
        if ((changed >> bit & 1U) != 0)
            changedAt_[bit] = Clock::now();
}

std::uint32_t Watched::marked() const {
    std::uint32_t bits = 0;
    for (std::size_t bit = 0; bit < changedAt_.size(); ++bit)
        if (changedAt_[bit] != Clock::time_point{} && Clock::now() - changedAt_[bit] < kMarked)
            bits |= std::uint32_t{1} << bit;
    return bits;
}

void WatchedPhy::take(const std::vector<std::uint32_t>& sample, std::optional<Gap> gapBefore) {
    for (std::size_t i = 0; i < registers.size(); ++i)
        registers[i].take(sample[i], !known);
    firstNow = !known;
    known = true;
    gap = std::move(gapBefore);
    away.clear();
}

void WatchedPhy::miss(std::string cause) {
    for (Watched& each : registers)
        each.changed = 0;
    firstNow = false;
    gap.reset();
    away = std::move(cause);
}

} // namespace OrvaneTool
