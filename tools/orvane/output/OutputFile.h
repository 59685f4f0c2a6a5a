// Files that commands write for the user.
#pragma once

#include <string>
#include <string_view>

namespace OrvaneTool {

// Throws Failure when there is such a file already, unless it may be overwritten: to be asked before the work
// whose result goes there.
void requireNewFile(const std::string& path, bool force);

// Writes the whole file. Throws Failure when it exists and may not be overwritten, or cannot be written.
void writeFile(const std::string& path, std::string_view content, bool force);

} // namespace OrvaneTool
