// The command-line flags that describe boards.
#pragma once

#include "simulator/lab/Lab.h"

#include <cstdint>
#include <string>
#include <vector>

namespace CLI {
class App;
}

namespace OrvaneSim {

/// Flags that `orvane-sim` and `orvane-lab` share, and the boards that they ask for.
struct BoardFlags {
    unsigned boards = 1;
    std::string serialPrefix = "OV";
    std::string firstWord = "host";
    std::uint64_t seed = 1;
    bool allowShell = false;
    std::vector<std::string> addresses;
    std::vector<std::string> serials;
    std::vector<std::string> devices;

    /// Adds the flags to a command. `app` keeps pointers into this object.
    void addTo(CLI::App& app);

    /// The boards asked for. Addresses and serial numbers are dealt out in order; boards beyond them get the
    /// next free address and a number after the prefix. Devices default to ports 0, 1 and 10 of each board.
    /// Throws std::invalid_argument for flags that do not go together.
    std::vector<BoardOptions> options() const;
};

/// Adds every board to the lab; throws what `Lab::add` throws, with the board's place in the list.
void addAll(Lab& lab, const std::vector<BoardOptions>& boards);

} // namespace OrvaneSim
