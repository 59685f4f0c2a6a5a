// What a batch or a routed access would send, without sending it.
#pragma once

#include "ov_sys/rack/RoutedPhy.h"
#include "ov_sys/rack/values/Batch.h"

#include <cstdint>
#include <optional>
#include <orvane/maps.hpp>
#include <string>

namespace Orvane {

// One line for each operation, with the names and fields of the map, none for what the map does not have:
//   read  7.0x0001          AN.STATUS
//   write 30.0xC000 0x2040  CHIP.CONTROL: RESET 0, SPEED 100 Mb/s
// A register on a page is found by what the batch wrote to its select register before. Sends nothing; any
// thread.
ORVANE_API std::string plan(const Batch& batch, const RegisterMap& map);

// The accesses that Phy::routed() would make for a read, or for a write of `value`: the steps of the path,
// each busy status taken to be done at its first look, other registers to hold what the path wrote to them or
// 0. Empty for an address that no path leads to. Sends nothing; any thread.
ORVANE_API Batch routedSteps(RegisterAddress address, std::optional<std::uint32_t> value = std::nullopt,
                             const RegisterPaths& paths = {});

} // namespace Orvane
