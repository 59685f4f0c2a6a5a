// A thousand boards in one rack, by one thread: opened, read, closed, and what their open sessions take.
#include "bench/calls/Measure.h"
#include "bench/calls/Session.h"

#include "simulator/engine/Sockets.h"

#include <filesystem>
#include <iterator>
#include <malloc.h>
#include <orvane/rack.hpp>
#include <stdexcept>
#include <thread>

namespace OrvaneBench {
namespace {

constexpr unsigned kRounds = 5;
constexpr unsigned kIdleSeconds = 10;
constexpr Orvane::RegisterAddress kScratch{kMmd, kRegister};
using namespace std::chrono_literals;

std::size_t openDescriptors() {
    const std::filesystem::directory_iterator all("/proc/self/fd");
    return static_cast<std::size_t>(std::distance(begin(all), end(all)));
}

// The boards by their names, in a rack that knows where they are.
class ManyBoards {
public:
    explicit ManyBoards(const Arrangement& arrangement) {
        for (std::size_t board = 0; board < arrangement.boards.size(); ++board) {
            const std::string serial = "BENCH" + std::to_string(board);
            rack_.know(serial, arrangement.boards[board]);
            names_.push_back(serial + ":0");
        }
    }

    std::size_t size() const { return names_.size(); }

    void open() {
        phys_.clear();
        for (const Orvane::OpenedPort& one :
             rack_.openAll(names_, {kPhy}, Orvane::Access::simple(), Orvane::within(60s))) {
            if (one.failure)
                throw Orvane::Failure(*one.failure);
            phys_.push_back(one.port->phy(kPhy));
        }
    }

    // One register of each.
    void read() {
        Orvane::Flight flight;
        std::vector<Orvane::Pending<std::uint32_t>> values;
        values.reserve(phys_.size());
        for (const Orvane::Phy& phy : phys_)
            values.push_back(flight.read(phy, kScratch));
        flight.wait();
        for (const auto& value : values)
            value.get(); // throws what failed
    }

    void close() {
        if (!rack_.closeAll(Orvane::within(60s)).empty())
            throw std::runtime_error("a board was not told of the end of its session");
    }

private:
    Orvane::Rack rack_;
    std::vector<std::string> names_;
    std::vector<Orvane::Phy> phys_;
};

nlohmann::json times(const Arrangement& arrangement) {
    OrvaneSim::raiseDescriptorLimit();
    ManyBoards boards(arrangement);
    std::vector<double> opened;
    std::vector<double> read;
    std::vector<double> closed;
    for (unsigned round = 0; round < kRounds; ++round) {
        opened.push_back(secondsOf([&] { boards.open(); }));
        boards.read();
        read.push_back(1e6 * secondsOf([&] { boards.read(); }) / static_cast<double>(boards.size()));
        closed.push_back(secondsOf([&] { boards.close(); }));
    }
    return {{"open seconds", opened}, {"read microseconds each", read}, {"close seconds", closed}};
}

// What is there once, the library's code included, is not a session's.
void bringInWhatAllShare(const Arrangement& arrangement) {
    ManyBoards first({{arrangement.boards.front()}, arrangement.rounds});
    first.open();
    first.read();
    first.close();
}

nlohmann::json idling(const Arrangement& arrangement) {
    OrvaneSim::raiseDescriptorLimit();
    bringInWhatAllShare(arrangement);
    ManyBoards boards(arrangement);
    malloc_trim(0);
    const double residentBefore = residentKilobytes();
    const std::size_t descriptorsBefore = openDescriptors();
    boards.open();
    boards.read();
    std::this_thread::sleep_for(3s); // everybody has been pinged
    const double before = processorSeconds();
    std::this_thread::sleep_for(std::chrono::seconds(kIdleSeconds));
    const auto count = static_cast<double>(boards.size());
    return {{"core percent", 100 * (processorSeconds() - before) / kIdleSeconds},
            {"kilobytes for each", (residentKilobytes() - residentBefore) / count},
            {"descriptors for each", static_cast<double>(openDescriptors() - descriptorsBefore) / count}};
}

} // namespace

void measureRackOfBoards(const Arrangement& arrangement) {
    const std::string title = std::to_string(arrangement.boards.size()) + " boards, Rack, one thread";
    reportFromChild({title, [&] { return times(arrangement); }});
    reportFromChild({title + ", idle", [&] { return idling(arrangement); }});
}

} // namespace OrvaneBench
