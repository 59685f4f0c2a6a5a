// Lists of register accesses, cut into the blocks that a board carries out in one call.
#pragma once

#include "ov_sys/rack/access/RegisterAccess.h"

namespace Orvane::RackAccess {

// As run(), over MDIO. Blocks that only read are in flight together; one that writes waits for those before
// it, and what follows it for its success.
RackLink::Trouble runBlocks(const Target& target, const std::vector<Batch::Operation>& operations,
                            std::vector<OperationOutcome>& outcomes, std::size_t& failed,
                            RackLink::Limits& limits);

} // namespace Orvane::RackAccess
