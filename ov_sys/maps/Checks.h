// Whether what a map declares fits together.
#pragma once

#include "ov_sys/maps/Declaration.h"

namespace Orvane::Maps {

// One register: fields within its width and apart from each other, values within their fields, reset within
// the width.
void checkDefinition(const MapDefinition& definition, const JsonValue& source, Problems& problems);

// The names in a block and those beneath it: none for a register and a block, no gaps in arrays whose
// elements are declared one by one.
void checkNames(const BlockDeclaration& block, Problems& problems);

} // namespace Orvane::Maps
