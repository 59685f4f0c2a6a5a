// The devices that were found lately, for the shell's completion, which must not wait for a network.
#pragma once

#include <orvane/rack.hpp>
#include <string>
#include <vector>

namespace OrvaneTool {

// Adds the ports of boards to the file $XDG_CACHE_HOME/orvane/devices, or that in ~/.cache. What goes wrong
// with it is nobody's concern. Does not block but for the file.
void rememberDevices(const std::vector<Orvane::FoundBoard>& boards) noexcept;

// The names in the file, in order; none without a file.
std::vector<std::string> rememberedDevices();

} // namespace OrvaneTool
