// Maps that come with the library.
#include "ov_sys/maps/Loader.h"

namespace Orvane::Maps {

std::string_view builtInMap(std::string_view) {
    return {};
}

} // namespace Orvane::Maps
