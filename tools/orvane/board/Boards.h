// Which boards answer.
#pragma once

#include "tools/orvane/board/Context.h"

#include <chrono>
#include <functional>
#include <orvane/rack.hpp>
#include <string>
#include <vector>

namespace OrvaneTool {

// Those that were found, and whether there may be more.
struct Boards {
    std::vector<Orvane::FoundBoard> list; // by serial number
    std::string doubt;                    // why there may be more; empty: these are all
};

struct Search {
    std::string what = "boards"; // is looked for
    std::chrono::nanoseconds time = std::chrono::seconds(1);
    // Asked for each board that answers, with the number of those so far: whether that was enough. Empty: the
    // time is.
    std::function<bool(const Orvane::FoundBoard&, std::size_t)> enough;
};

// The boards at the context's addresses, or those that answer a multicast; the context's rack knows them
// then. Blocks for the search's time at most, with a count on a terminal. Throws Orvane::Failure, and
// Interrupted after a signal.
Boards lookForBoards(Context& context, const Search& search);

} // namespace OrvaneTool
