// Tests every MDIO port that answers, one thread for each port.
#include <atomic>
#include <cstdio>
#include <exception>
#include <orvane/orvane.hpp>
#include <string>
#include <thread>
#include <vector>

namespace {

constexpr unsigned kPhy = 3;
constexpr unsigned kMmd = 30;
constexpr unsigned kRegister = 0xC010;
constexpr unsigned kRounds = 200;

// Exceptions must not leave a thread: each port reports its own.
void testPort(Orvane::HWInterface& boards, unsigned adapter, std::atomic<unsigned>& good) {
    try {
        for (unsigned i = 0; i < kRounds; ++i) {
            boards.writeAdapter(adapter, kPhy, kMmd, kRegister, adapter << 8U | i);
            if (boards.readAdapter(adapter, kPhy, kMmd, kRegister) == (adapter << 8U | i))
                ++good;
        }
    } catch (const std::exception& problem) {
        std::fprintf(stderr, "adapter %u: %s\n", adapter, problem.what());
    }
}

} // namespace

int main() {
    try {
        Orvane::HWInterface boards;
        const unsigned devices = boards.numberOfDevices(); // looks for boards for a second
        std::vector<unsigned> ports;
        for (unsigned adapter = 0; adapter < devices; ++adapter)
            if (boards.devices[adapter]->port < 10 && boards.openAdapter(adapter)) // from 10 on: SMBus
                ports.push_back(adapter);

        std::atomic<unsigned> good{0};
        std::vector<std::thread> threads;
        threads.reserve(ports.size());
        for (const unsigned adapter : ports)
            threads.emplace_back([&boards, &good, adapter] { testPort(boards, adapter, good); });
        for (std::thread& thread : threads)
            thread.join(); // before anything is closed

        std::printf("%zu ports, %u of %zu values as written\n", ports.size(), good.load(),
                    ports.size() * kRounds);
        return !ports.empty() && good == ports.size() * kRounds ? 0 : 1;
    } catch (const std::exception& problem) {
        std::fprintf(stderr, "failed: %s\n", problem.what());
        return 1;
    }
}
