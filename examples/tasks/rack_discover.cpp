// Lists every board that answers, with its ports.
#include <cstdio>
#include <exception>
#include <orvane/rack.hpp>

int main() {
    try {
        Orvane::Rack rack;
        const Orvane::Discovery found = rack.discover(); // listens for 1 s
        for (const Orvane::FoundBoard& board : found.boards) {
            std::printf("%s at %s:", board.serial.c_str(), board.address.c_str());
            for (const unsigned port : board.ports)
                std::printf(" %u", port);
            std::puts("");
        }
        std::printf("%zu malformed answers\n", found.malformed);
        return 0;
    } catch (const std::exception& problem) {
        std::fprintf(stderr, "failed: %s\n", problem.what());
        return 1;
    }
}
