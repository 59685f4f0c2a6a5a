// The programs that every board serves.
#pragma once

#include "simulator/board/Service.h"

#include <vector>

namespace OrvaneSim {

/// Served at port 111: the port mapper.
const std::vector<Program>& portMapperPrograms();

/// Served at ports that the port mapper tells.
const std::vector<Program>& servicePrograms();

} // namespace OrvaneSim
