// Writes every request that a lab's boards decode to a file.
#pragma once

#include "simulator/lab/Lab.h"

#include <string>

namespace OrvaneSim {

// Records from now on, one JSON object on each line, written out before the request is executed. Members:
// "seconds" since the recording began, "board" (serial number), "program", "procedure", "transport",
// "programNumber", "version", "procedureNumber", "arguments" (see `Request`). An existing file is replaced.
// Throws ScriptError when the file cannot be written.
void recordRequests(Lab& lab, const std::string& file);

} // namespace OrvaneSim
