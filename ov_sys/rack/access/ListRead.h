// Lists of registers that one call reads, without the detour of a batch.
#pragma once

#include "ov_sys/rack/access/RegisterAccess.h"

#include <cstddef>
#include <cstdint>
#include <optional>
#include <vector>

namespace Orvane::RackAccess {

// Reads what is the usual list into `values`, which are as many as the addresses afterwards: existing
// registers of Clause 45 on an MDIO port, no more than one call takes, and nobody keeps a log of them.
// Nothing when it is another list, which a batch has to read; nothing was sent then.
std::optional<RackLink::Trouble> readList(const Target& target, const std::vector<RegisterAddress>& addresses,
                                          std::vector<std::uint32_t>& values, RackLink::Limits& limits);
// The same for `count` registers from `first` on.
std::optional<RackLink::Trouble> readList(const Target& target, const RegisterAddress& first,
                                          std::size_t count, std::vector<std::uint32_t>& values,
                                          RackLink::Limits& limits);

} // namespace Orvane::RackAccess
