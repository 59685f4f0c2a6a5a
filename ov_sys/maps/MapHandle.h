// What the handle of a map is in the C interface.
#pragma once

#include <orvane/maps.h>
#include <orvane/maps.hpp>
#include <string>

struct orvane_map {
    Orvane::RegisterMap map;
};

namespace Orvane::Maps {

// A text that orvane_map_free() frees. Throws std::bad_alloc.
char* copyOf(const std::string& text);

} // namespace Orvane::Maps
