// Addresses as the source form and people write them.
#pragma once

#include "ov_sys/maps/Declaration.h"

namespace Orvane::Maps {

// "7.0x0001", "c22:1", "ext32:0x80004000", "smbus:16"; a number alone is relative. None: something else, or
// out of the space's range.
std::optional<Place> placeIn(std::string_view text);

// The same of a member "at"; what it is not goes to the problems.
std::optional<Place> readPlace(const JsonValue& value, Problems& problems);

// The highest number of a register in a space.
std::uint32_t lastNumber(MapSpace space);

// The numbers that a register of this width takes from its address on: bytes of the 32-bit space, else one.
std::uint32_t extentOf(MapSpace space, unsigned width);

} // namespace Orvane::Maps
