// What a board is made of.
#include "simulator/board/BoardParts.h"

namespace OrvaneSim {
namespace {

constexpr unsigned kPhyInstructionBits = 5;
constexpr unsigned kLogicInstructionBits = 8;

// Spreads a seed over 32 bits, so that boards with neighbouring seeds differ.
std::uint32_t scramble(std::uint64_t seed) {
    seed = (seed + 0x9E3779B97F4A7C15U) * 0xBF58476D1CE4E5B9U;
    return static_cast<std::uint32_t>(seed ^ (seed >> 31));
}

// A PHY and a logic device; bit 0 of an identification is always 1.
std::vector<JtagChain::Device> jtagDevices(std::uint64_t seed) {
    return {{kPhyInstructionBits, scramble(seed) | 1U}, {kLogicInstructionBits, scramble(~seed) | 1U}};
}

} // namespace

BoardParts::BoardParts(const std::string& serial, const std::string& nameLine, std::uint64_t seed)
    : faults(seed),
      jtag(jtagDevices(seed)),
      i2c(
          mdio, [this] { return thermal.temperature(0); }, serial),
      commands(serial, nameLine) {}

void BoardParts::forgetSessions() {
    sessions.clear();
    interrupts.clear();
}

} // namespace OrvaneSim
