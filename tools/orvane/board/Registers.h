// Register accesses of one PHY, in the way that the command line asks for.
#pragma once

#include "tools/orvane/board/Device.h"
#include "tools/orvane/board/RegisterAddress.h"

#include <optional>
#include <vector>

namespace OrvaneTool {

// A write when it has a value, else a read.
struct Access {
    Register reg;
    std::optional<std::uint32_t> written;
};

enum class Way {
    Queued, // several accesses as one block, which the board executes in one round trip
    Single, // one by one, straight to the register
    Routed  // one by one, through whatever path the library has for the register
};

// The most accesses in one block.
constexpr std::size_t kLongestBlock = 256;

// Carries out accesses of one PHY, all of the same space, in order. Blocks for the board; throws Failure.
class Registers {
public:
    Registers(Device& device, unsigned phy, Way way) : device_(device), phy_(phy), way_(way) {}

    // The values of the reads, in order.
    std::vector<std::uint32_t> run(const std::vector<Access>& accesses);
    std::vector<std::uint32_t> read(const std::vector<Register>& list);

private:
    std::vector<std::uint32_t> runBlock(const Access* first, std::size_t count);
    std::uint32_t runSingle(const Access& access);
    std::string nameOf(const Access& access) const;

    Device& device_;
    unsigned phy_;
    Way way_;
};

} // namespace OrvaneTool
