// The command-line flags that describe a lab.
#pragma once

#include "simulator/script/LabFile.h"

#include <cstdint>
#include <string>
#include <vector>

namespace CLI {
class App;
}

namespace OrvaneSim {

// Flags that `orvane-sim` and `orvane-lab` share, and the lab that they ask for.
struct LabFlags {
    unsigned boards = 1;
    std::string serialPrefix = "OV";
    std::string firstWord = "host";
    std::uint64_t seed = 1;
    bool allowShell = false;
    std::vector<std::string> addresses;
    std::vector<std::string> serials;
    std::vector<std::string> devices;
    std::string labFile;
    std::string scriptFile;
    std::string snapshotFile;
    std::string savedSnapshotFile;
    std::string recordFile;
    std::string controlPath;

    // Adds the flags to a command. `app` keeps pointers into this object.
    void addTo(CLI::App& app);

    // The lab asked for, by a lab file or by flags: addresses and serial numbers are dealt out in order;
    // boards beyond them get the next free address and a number after the prefix. Throws
    // std::invalid_argument for flags that do not go together and ScriptError for a file that is wrong.
    LabSetup setup(const LabPlace& place) const;

private:
    std::vector<BoardSetup> boardsOfFlags() const;
};

} // namespace OrvaneSim
