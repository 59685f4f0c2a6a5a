// What a board says of itself when it is searched for.
#pragma once

#include "ov_sys/rack/values/Discovery.h"

#include <netinet/in.h>
#include <set>
#include <string>
#include <vector>

namespace Orvane::RackSearch {

// One answer as it came.
struct Answer {
    in_addr_t from; // network byte order
    std::string text;

    friend bool operator<(const Answer& left, const Answer& right) {
        return left.from != right.from ? left.from < right.from : left.text < right.text;
    }
};

// The boards that an answer names: one, unless its devices carry several serial numbers; none when the answer
// is malformed. Whatever is not printable makes it so.
std::vector<FoundBoard> boardsOf(const Answer& answer);

// What all of them say together.
Discovery discoveryOf(const std::set<Answer>& answers);

} // namespace Orvane::RackSearch
