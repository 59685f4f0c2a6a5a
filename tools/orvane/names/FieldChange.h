// Values that are written by name.
#pragma once

#include "tools/orvane/names/KnownMaps.h"

#include <cstdint>
#include <string>

namespace OrvaneTool {

// What a word says for a register, or for the field that was named: a number, or the name of one of its
// choices. Throws UsageError, with the name, for a value that does not fit and for what cannot be written.
std::uint32_t valueFor(const Asked& asked, const std::string& word);

// The register's value with the field replaced; of the other bits, those that ones clear or that clear
// themselves are 0.
std::uint32_t changedBy(const Asked& asked, std::uint32_t before, std::uint32_t raw);

} // namespace OrvaneTool
