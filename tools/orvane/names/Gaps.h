// Times in which a board could not be reached.
#pragma once

#include "tools/orvane/board/Gap.h"

#include <chrono>
#include <optional>
#include <orvane/rack.hpp>
#include <string>

namespace OrvaneTool {

// Whether the board is away, and may come back: it restarts, moves or is lost for a while.
bool isAway(const Orvane::Failure& failure);

// Those of one command. One thread.
class Gaps {
public:
    // Something failed; it is the beginning of a gap unless one is open.
    void note(const Orvane::Failure& failure);
    // Something went well: the gap that this ends, if one is open.
    std::optional<Gap> close();
    bool isOpen() const { return cause_.has_value(); }

    // Of those that ended.
    std::size_t count() const { return count_; }
    // ", 2 gaps of 7.3 s"; empty: none.
    std::string summary() const;

private:
    std::optional<Orvane::Failure> cause_;
    std::chrono::system_clock::time_point begun_;
    std::size_t count_ = 0;
    double seconds_ = 0;
};

} // namespace OrvaneTool
