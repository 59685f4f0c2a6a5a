// Devices and PHYs as they are written: lists, ranges, patterns, files.
#pragma once

#include <map>
#include <string>
#include <vector>

namespace OrvaneTool {

// The names of one argument, upper case and in order: names with commas between them, ranges of boards
// (OV0001-OV0020:0) or ports (OV0001:0-3), patterns, which stay as they are, and files of all these (@FILE:
// words between white space, comments behind '#'). Throws UsageError for what is no name, and Failure for a
// file that cannot be read. A name among `aliases` is what that stands for.
using Aliases = std::map<std::string, std::string>;
std::vector<std::string> deviceNames(const std::string& argument, const Aliases& aliases = {});

// Whether '*', '?' or "[...]" are in it, as in file names.
bool isPattern(const std::string& name);
bool matches(const std::string& name, const std::string& pattern);

// The PHYs of one argument: numbers and ranges with commas between them, each once and in order. Throws
// UsageError.
std::vector<unsigned> phyNumbers(const std::string& argument);

// A name taken apart: the board's serial number, and the port.
struct DeviceName {
    std::string board;
    unsigned port = 0;
};
DeviceName takenApart(const std::string& name);

} // namespace OrvaneTool
