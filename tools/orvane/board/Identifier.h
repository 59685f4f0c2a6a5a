// Which PHY it is.
#pragma once

#include "tools/orvane/board/RegisterAddress.h"

#include <optional>
#include <orvane/rack.hpp>
#include <string>

namespace OrvaneTool {

// 0x00112233: registers 2 and 3, of Clause 22 in that space, else of MMD 1. Nothing when the PHY refuses
// them. Throws Orvane::Failure for all other failures.
std::optional<std::string> identifierOf(const Orvane::Phy& phy, Space space, const Orvane::Within& within);

// The same, by Clause 45 or else by Clause 22, of a PHY that may not be there: nothing then, for a bus that
// nobody drives gives ones. No read changes anything.
std::optional<std::string> identifierIfThere(const Orvane::Phy& phy, const Orvane::Within& within);

} // namespace OrvaneTool
