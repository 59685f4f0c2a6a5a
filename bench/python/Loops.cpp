// Loops of the Rack interface for bench/python/calls.py, which measures the package beside them in one
// process.
#include <chrono>
#include <cstddef>
#include <exception>
#include <orvane/rack.hpp>
#include <string>
#include <vector>

namespace {

using namespace Orvane;

// The PHYs that the loops read, with their ports and the rack that they belong to.
struct Boards {
    Rack rack;
    std::vector<Port> ports;
    std::vector<Phy> phys;
};

// Seconds that `work` took; negative when it failed.
template <class Work>
double timed(const Work& work) noexcept {
    try {
        const auto begin = std::chrono::steady_clock::now();
        work();
        return std::chrono::duration<double>(std::chrono::steady_clock::now() - begin).count();
    } catch (const std::exception&) {
        return -1;
    }
}

} // namespace

extern "C" {

// PHY 3 of the ports that a pattern names, their sessions open; null when one of them is not. The caller's,
// until bench_close.
__attribute__((visibility("default"))) Boards* bench_open(const char* pattern) {
    auto* boards = new Boards; // NOLINT(cppcoreguidelines-owning-memory): over C
    for (OpenedPort& one : boards->rack.openAll({pattern}, {3})) {
        if (one.failure) {
            delete boards; // NOLINT(cppcoreguidelines-owning-memory)
            return nullptr;
        }
        boards->ports.push_back(*one.port);
        boards->phys.push_back(one.port->phy(3));
    }
    return boards;
}
__attribute__((visibility("default"))) void bench_close(Boards* boards) {
    delete boards; // NOLINT(cppcoreguidelines-owning-memory)
}

// Seconds for `count` reads of one register of the first PHY, one after the other.
__attribute__((visibility("default"))) double bench_reads(const Boards* boards, unsigned count) {
    return timed([=] {
        for (unsigned i = 0; i < count; ++i)
            boards->phys.front().read({1, 2});
    });
}

// Seconds for one read of one register of every PHY, all at once.
__attribute__((visibility("default"))) double bench_read_all(const Boards* boards) {
    return timed([=] {
        Flight flight;
        std::vector<Pending<std::uint32_t>> values;
        values.reserve(boards->phys.size());
        for (const Phy& phy : boards->phys)
            values.push_back(flight.read(phy, {1, 2}));
        flight.wait();
        for (const Pending<std::uint32_t>& value : values)
            value.get();
    });
}

} // extern "C"
