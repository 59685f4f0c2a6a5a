// Commands of a register path that are busy until they were asked after often enough.
#pragma once

#include "simulator/models/PathTroubles.h"

#include <cstdint>
#include <unordered_map>

namespace OrvaneSim {

// At most one command for each PHY, by the PHY's number.
class PolledCommands {
public:
    // Starts a command that stays busy for so many polls, in the place of one that is still busy.
    void start(std::uint32_t phy, std::uint32_t busyPolls) { busyPolls_[phy] = busyPolls; }

    // Whether this poll finds a command done; the command is over then.
    bool poll(std::uint32_t phy) {
        const auto command = busyPolls_.find(phy);
        if (command == busyPolls_.end())
            return false;
        if (command->second == 0) {
            busyPolls_.erase(command);
            return true;
        }
        if (command->second != PathTroubles::kForever)
            --command->second;
        return false;
    }

private:
    std::unordered_map<std::uint32_t, std::uint32_t> busyPolls_;
};

} // namespace OrvaneSim
