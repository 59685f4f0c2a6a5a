// Reads registers of every board at the same time, from one thread.
#include <cstdio>
#include <exception>
#include <orvane/rack.hpp>
#include <string>
#include <utility>
#include <vector>

int main() {
    try {
        Orvane::Rack rack;
        Orvane::Flight flight;
        std::vector<std::pair<std::string, Orvane::Pending<std::uint32_t>>> values;
        for (const Orvane::FoundBoard& board : rack.discover().boards) {
            const Orvane::Phy phy = rack.open(board.serial + ":0").phy(3);
            flight.write(phy, {30, 0xC010}, 0xCAFE);
            values.emplace_back(board.serial, flight.read(phy, {30, 0xC010})); // after the write
        }
        flight.wait();
        for (const auto& [board, value] : values)
            std::printf("%s 0x%04X\n", board.c_str(), value.get());
        return 0;
    } catch (const std::exception& problem) {
        std::fprintf(stderr, "failed: %s\n", problem.what());
        return 1;
    }
}
