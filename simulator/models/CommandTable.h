// What a board answers to remote commands without a shell.
#pragma once

#include <map>
#include <string>

namespace OrvaneSim {

// The outcome of a command.
struct CommandOutcome {
    int status = 0; // as a shell gives it
    std::string output;
    std::string errors;
    // Seconds that the command takes; one that takes longer than its time-out ends as timed out.
    unsigned seconds = 0;
};

// Commands and their canned outcomes. Knows `true`, `false`, `hostname`, `cat /boardInfo/name` and `echo`
// with anything behind it; whatever else is not told to it is not found (status 127). Belongs to the loop's
// thread.
class CommandTable {
public:
    CommandTable(const std::string& serial, const std::string& nameLine);

    void set(const std::string& command, const CommandOutcome& outcome) { outcomes_[command] = outcome; }
    CommandOutcome find(const std::string& command) const;

private:
    std::map<std::string, CommandOutcome> outcomes_;
};

} // namespace OrvaneSim
