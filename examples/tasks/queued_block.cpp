// Queues many writes and reads of one PHY and has the board execute them in one round trip.
#include <cstdio>
#include <exception>
#include <orvane/orvane.hpp>
#include <vector>

namespace {

constexpr unsigned c45(unsigned mmd, unsigned reg) {
    return mmd << 16U | reg;
}

} // namespace

int main(int argc, char** argv) {
    constexpr int phy = 3;
    constexpr unsigned count = 64;
    try {
        Orvane::HWInterface boards;
        const char* name = argc > 1 ? argv[1] : "OV0001:0";
        if (!boards.open(name))
            throw Orvane::Exceptions::NoDevice();
        // The session belongs to `boards`.
        const Orvane::SessionWrapper session(boards.getPhySession(name, phy));

        Orvane::MDIO::MdioAsync queue; // keep it below boards.maxQueueSize(), 873 accesses
        for (unsigned i = 0; i < count; ++i)
            queue.write(c45(30, 0xC100 + i), 0xC000 + i);
        for (unsigned i = 0; i < count; ++i)
            queue.read(c45(30, 0xC100 + i));
        const std::vector<unsigned> values = queue.execute(session); // in the order of the reads

        std::printf("%zu values in one round trip: 0x%04X to 0x%04X\n", values.size(), values.front(),
                    values.back());
        return values.size() == count && values.back() == 0xC000 + count - 1 ? 0 : 1;
    } catch (const std::exception& problem) {
        std::fprintf(stderr, "failed: %s\n", problem.what());
        return 1;
    }
}
