// Reading of the counters.
#include "simulator/board/CallCounters.h"

namespace OrvaneSim {

CallCounts CallCounters::of(std::string_view procedure) const {
    for (const auto& [info, counts] : counts_)
        if (procedure == info->procedure)
            return counts;
    return {};
}

std::map<std::string, CallCounts> CallCounters::all() const {
    std::map<std::string, CallCounts> named;
    for (const auto& [info, counts] : counts_)
        named[info->procedure] = counts;
    return named;
}

} // namespace OrvaneSim
