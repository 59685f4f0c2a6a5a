// Fields and lines of comma-separated values.
#pragma once

#include "tools/orvane/output/Table.h"

#include <string>
#include <vector>

namespace OrvaneTool {

// A cell as a field: its number, the items of its list with blanks between them, or its text, also of
// a list of objects. Text that a
// spreadsheet would take for a formula has an apostrophe before it.
std::string csvField(const Cell& cell);

// A text as a field, likewise.
std::string csvTextField(const std::string& text);

// Fields, one at least, as a line with its end.
std::string csvLine(const std::vector<std::string>& fields);

} // namespace OrvaneTool
