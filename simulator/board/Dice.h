// Chance that repeats: numbers that follow from a seed.
#pragma once

#include <cstdint>

namespace OrvaneSim {

// A small generator (splitmix64), the same on every machine. Belongs to one thread.
class Dice {
public:
    explicit Dice(std::uint64_t seed) : state_(seed) {}

    std::uint64_t next() {
        std::uint64_t mixed = state_ += 0x9E3779B97F4A7C15U;
        mixed = (mixed ^ (mixed >> 30)) * 0xBF58476D1CE4E5B9U;
        mixed = (mixed ^ (mixed >> 27)) * 0x94D049BB133111EBU;
        return mixed ^ (mixed >> 31);
    }

    // A number less than `limit`, which must not be 0.
    std::uint64_t below(std::uint64_t limit) { return next() % limit; }

    // True in the given share of throws; a share of 1 or more takes no throw.
    bool falls(double probability) {
        constexpr double kUnit = 1.0 / 9007199254740992.0; // 2 to the power of -53
        return probability >= 1 || static_cast<double>(next() >> 11) * kUnit < probability;
    }

private:
    std::uint64_t state_;
};

} // namespace OrvaneSim
