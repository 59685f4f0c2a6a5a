// The faults that a board has yet to show.
#pragma once

#include "simulator/board/Dice.h"
#include "simulator/board/Fault.h"

#include <cstdint>
#include <list>
#include <optional>
#include <string_view>

namespace OrvaneSim {

// Hands out faults call by call. Belongs to the loop's thread.
class FaultQueue {
public:
    // What chance decides follows from `seed`.
    explicit FaultQueue(std::uint64_t seed) : dice_(seed) {}

    void add(const Fault& fault) { faults_.push_back(fault); }
    void clear() { faults_.clear(); }
    const std::list<Fault>& waiting() const { return faults_; }

    // A board that hangs hears nothing, discovery included, until it no longer does.
    void setHanging(bool hanging) { hanging_ = hanging; }
    bool hanging() const { return hanging_; }

    // The fault that this call meets, counted down; none for a call that goes well.
    std::optional<Fault> take(std::string_view program, std::string_view procedure);

    // For whatever else a fault makes up.
    Dice& dice() { return dice_; }

private:
    std::list<Fault> faults_;
    Dice dice_;
    bool hanging_ = false;
};

} // namespace OrvaneSim
