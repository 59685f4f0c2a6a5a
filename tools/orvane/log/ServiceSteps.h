// Calls of services that a log has, made once more.
#pragma once

#include "tools/orvane/log/LogScanner.h"

#include <orvane/rack.hpp>
#include <string>

namespace OrvaneTool {

// Whether it is one of I2C, GPIO or the thermal unit that did what it was asked for and is in the log as a
// whole.
bool canBeRepeated(const LogRecord& call);

// Makes the call, and returns its result in the log's words; empty for what is not to be compared:
// temperatures, and what has no result. Blocks as the call does. Throws Orvane::Failure, and Failure for a
// line of the log that does not say enough.
std::string repeated(const Orvane::Phy& phy, const LogRecord& call, const Orvane::Within& within);

} // namespace OrvaneTool
