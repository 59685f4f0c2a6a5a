// Counters of every procedure of a board.
#pragma once

#include "simulator/board/CallCounts.h"
#include "simulator/board/Program.h"

#include <map>
#include <string>
#include <string_view>
#include <unordered_map>

namespace OrvaneSim {

// Cheap to count in, slower to read. Belongs to the loop's thread.
class CallCounters {
public:
    // The counts of a procedure, to be counted in. `procedure` must outlive the object.
    CallCounts& of(const Procedure& procedure) { return counts_[&procedure]; }

    // What was counted under a procedure's name; zeros when it was never called.
    CallCounts of(std::string_view procedure) const;

    // Every procedure called so far, by its name.
    std::map<std::string, CallCounts> all() const;

private:
    std::unordered_map<const Procedure*, CallCounts> counts_;
};

} // namespace OrvaneSim
