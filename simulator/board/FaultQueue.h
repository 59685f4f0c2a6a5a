// The faults that a board has yet to show.
#pragma once

#include "simulator/board/Fault.h"

#include <list>
#include <optional>
#include <string_view>

namespace OrvaneSim {

/// Hands out faults call by call. Belongs to the loop's thread.
class FaultQueue {
public:
    void add(const Fault& fault) { faults_.push_back(fault); }
    void clear() { faults_.clear(); }

    /// The fault that this call meets, counted down; none for a call that goes well.
    std::optional<Fault> take(std::string_view program, std::string_view procedure);

private:
    std::list<Fault> faults_;
};

} // namespace OrvaneSim
