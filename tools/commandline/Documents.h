// Documents made by walking what a program's parser knows.
#pragma once

#include <CLI/CLI.hpp>
#include <map>
#include <string>
#include <vector>

namespace OrvaneTool {

// A program as its documents show it.
struct Program {
    const CLI::App& app; // its name is the program's
    std::string version;
    std::map<std::string, std::string>
        words{};              // that may also stand behind a verb, by its path: "orvane-sim ctl"
    bool runsCommand = false; // of this machine, behind --
};

// A manual page (section 1), in roff. The footer of the program's help is its last section.
std::string manualPage(const Program& program);

// A completion script for bash: verbs, their verbs and options; files where nothing else fits. A verb with
// the option --map is offered names of registers, one with a device those that `orvane complete devices`
// prints.
std::string bashCompletion(const Program& program);

// Either of them: "man" or "bash".
std::string document(const Program& program, const std::string& which);

// Has the program print them, by the option --generate, which help does not show, and end.
void addDocuments(CLI::App& app, const Program& program);

// The verbs that help shows.
std::vector<const CLI::App*> shownVerbs(const CLI::App& app);
// The options that help shows.
std::vector<const CLI::Option*> shownOptions(const CLI::App& app);

} // namespace OrvaneTool
