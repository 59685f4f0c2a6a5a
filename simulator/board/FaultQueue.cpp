// Matching of calls with faults.
#include "simulator/board/FaultQueue.h"

#include <algorithm>

namespace OrvaneSim {
namespace {

bool isAmongAny(std::string_view program) {
    return program != "portmap" && program != "discovery" && program != "probe";
}

bool concerns(const Fault& fault, std::string_view program, std::string_view procedure) {
    const bool thisProgram = fault.program.empty() ? isAmongAny(program) : fault.program == program;
    return thisProgram && (fault.procedure.empty() || fault.procedure == procedure);
}

} // namespace

std::optional<Fault> FaultQueue::take(std::string_view program, std::string_view procedure) {
    if (hanging_) {
        Fault silence;
        silence.kind = Fault::Kind::Silent;
        return silence;
    }
    const auto found = std::find_if(faults_.begin(), faults_.end(), [&](const Fault& fault) {
        return concerns(fault, program, procedure) && dice_.falls(fault.probability);
    });
    if (found == faults_.end())
        return std::nullopt;
    Fault met = *found;
    if (found->count > 0 && --found->count == 0)
        faults_.erase(found);
    return met;
}

} // namespace OrvaneSim
