// Fields as the source form writes them.
#pragma once

#include "ov_sys/maps/Json.h"

#include <map>

namespace Orvane::Maps {

// Named enumerations of a file.
using Enumerations = std::map<std::string, std::vector<MapChoice>, std::less<>>;

// The access that a word names.
std::optional<MapAccess> accessOf(std::string_view word);

// Gives a field the bits of a text: "15", "15:12" or "13,6", pieces from the most significant on. What is
// wrong with it; empty: nothing.
std::string takeBits(std::string_view text, MapField& field);

// Reads an enumeration, {"0": "half", "1": "full"}.
std::vector<MapChoice> readChoices(const JsonValue& value, Problems& problems);

// Reads a field, an object or "BITS [ACCESS] [side-effects][: TEXT]", over what `field` has already: the
// register's access, or what an override replaces. Needs its bits afterwards.
void readField(const JsonValue& value, const Enumerations& enumerations, MapField& field, Problems& problems);

} // namespace Orvane::Maps
