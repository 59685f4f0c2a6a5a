// orvane adc capture: a whole capture, drawn and saved.
#pragma once

#include "tools/orvane/cli/Verb.h"

namespace OrvaneTool {

void addCapture(CLI::App& service, Context& context);

} // namespace OrvaneTool
