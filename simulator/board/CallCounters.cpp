// Reading of the counters.
#include "simulator/board/CallCounters.h"

namespace OrvaneSim {

CallCounts CallCounters::of(std::string_view procedure) const {
    for (const auto& [known, counts] : counts_)
        if (procedure == known->name)
            return counts;
    return {};
}

std::map<std::string, CallCounts> CallCounters::all() const {
    std::map<std::string, CallCounts> named;
    for (const auto& [known, counts] : counts_)
        named[known->name] = counts;
    return named;
}

} // namespace OrvaneSim
