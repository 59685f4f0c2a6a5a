// orvane-sim ctl: tells a running lab what to do.
#pragma once

#include <string>
#include <vector>

namespace CLI {
class App;
}

namespace OrvaneSim {

// The words of one `ctl` command line.
struct CtlCommand {
    std::string board;
    std::string verb;
    std::vector<std::string> members;
    std::string controlPath;
    bool json = false;

    // What may be said to a board: the names of queries, actions and faults, and all for every board.
    static std::string words();

    // Adds the flags and the help text. `app` keeps pointers into this object.
    void addTo(CLI::App& app);

    // Asks the lab and prints its answer; 0 when it did so, 1 (with a line on standard error) when it
    // refused, 2 when no lab can be reached or the words make no request.
    int run() const;
};

} // namespace OrvaneSim
