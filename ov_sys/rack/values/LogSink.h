// What takes the lines of a transaction log that is no file.
#pragma once

#include <functional>
#include <string_view>

namespace Orvane {

// Given one line or several, each with its end. Called by the thread whose access it is, one at a time, under
// the log's lock: it must not use the rack. What it throws loses the lines, is told as an event, and goes no
// further.
using LogSink = std::function<void(std::string_view lines)>;

} // namespace Orvane
