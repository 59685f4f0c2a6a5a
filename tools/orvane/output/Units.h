// Times and temperatures as cells and text.
#pragma once

#include "tools/orvane/output/Table.h"

#include <chrono>
#include <string>

namespace OrvaneTool {

// 2026-01-31T12:00:00.123Z
std::string timeText(std::chrono::system_clock::time_point time);

// Degrees Celsius with two decimals, as text and as a number.
Cell celsiusCell(double celsius);

} // namespace OrvaneTool
