// Documents made by walking the command line's definitions.
#pragma once

#include <CLI/CLI.hpp>
#include <string>
#include <vector>

namespace OrvaneTool {

// A manual page (section 1), in roff.
std::string manualPage(const CLI::App& app);

// A completion script for bash: verbs, their verbs and options; files where nothing else fits.
std::string bashCompletion(const CLI::App& app);

// The verbs that help shows.
std::vector<const CLI::App*> shownVerbs(const CLI::App& app);

} // namespace OrvaneTool
