// The arguments of recorded requests as JSON values: <orvane/lab_json.h>, for tests that have nlohmann-json.
#pragma once

#include "simulator/board/Request.h"

#include <nlohmann/json.hpp>

namespace OrvaneSim {

// What `request.arguments()` says, its members in wire order.
inline nlohmann::ordered_json argumentsOf(const Request& request) {
    return nlohmann::ordered_json::parse(request.arguments());
}

} // namespace OrvaneSim
