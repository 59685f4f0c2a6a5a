// Look-up of canned commands.
#include "simulator/models/CommandTable.h"

namespace OrvaneSim {
namespace {

constexpr int kNotFound = 127;

} // namespace

CommandTable::CommandTable(const std::string& serial, const std::string& nameLine)
    : outcomes_{{"true", {0, "", "", 0}},
                {"false", {1, "", "", 0}},
                {"hostname", {0, serial + "\n", "", 0}},
                {"cat /boardInfo/name", {0, nameLine + "\n", "", 0}}} {}

CommandOutcome CommandTable::find(const std::string& command) const {
    const auto found = outcomes_.find(command);
    if (found != outcomes_.end())
        return found->second;
    if (command.rfind("echo ", 0) == 0)
        return {0, command.substr(5) + "\n", "", 0};
    return {kNotFound, "", command.substr(0, command.find(' ')) + ": command not found\n", 0};
}

} // namespace OrvaneSim
