// Data sets of runs as parts of a report.
#pragma once

#include "tools/orvane/report/ReportPage.h"

#include <string>

namespace OrvaneTool {

// Whether a file begins as a data set does; false for what is no file or cannot be read.
bool isDataSet(const std::string& path);

// What the page shows of a data set, as JSON. Python reads it: blocks until it has. Throws Failure.
std::string dataSetText(const std::string& path);

// Writes such a text.
void addRunReport(ReportPage& page, const std::string& title, const std::string& text);

} // namespace OrvaneTool
