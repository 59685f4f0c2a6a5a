// orvane thermal watch: a temperature on its way to a set point.
#pragma once

#include "tools/orvane/cli/Verb.h"

namespace OrvaneTool {

void addThermalWatch(CLI::App& service, Context& context);

} // namespace OrvaneTool
