// The Python package orvane, for what it does better than this program.
#pragma once

#include <string>
#include <vector>

namespace OrvaneTool {

// Becomes `main` of the module orvane.MODULE, which is given the words: returns only by throwing a Failure
// that names the verb.
[[noreturn]] void becomePython(const std::string& verb, const std::string& module,
                               const std::vector<std::string>& words);

// What `main` of the module orvane.MODULE prints; blocks until it has ended. Throws Failure with what it
// printed when it fails, and when there is no Python, or no package.
std::string printedByPython(const std::string& module, const std::vector<std::string>& words);

} // namespace OrvaneTool
