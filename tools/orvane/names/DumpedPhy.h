// A dump and the PHYs that it meets.
#pragma once

#include "tools/orvane/board/DumpFile.h"
#include "tools/orvane/names/KnownMaps.h"

#include <orvane/rack.hpp>
#include <string>
#include <vector>

namespace OrvaneTool {

// Throws Failure when the dump is of another kind of PHY than this one is, as far as both are known.
void requireSameKind(const Dump& dump, const std::string& file, const Orvane::Phy& phy,
                     const std::string& place, const Orvane::Within& within);

// The registers of a dump, without those that a read changes unless `sideEffects` are wanted: their names go
// into `leftOut`.
std::vector<Asked> registersOf(const Dump& dump, const KnownMaps& maps, bool sideEffects,
                               std::vector<std::string>& leftOut);

} // namespace OrvaneTool
