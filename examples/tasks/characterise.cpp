// Characterises every board that answers: a reading for each setting at each temperature, as CSV.
#include <atomic>
#include <cstdio>
#include <deque>
#include <exception>
#include <orvane/rack.hpp>

using namespace Orvane;

int main() try {
    Rack rack;
    std::atomic<float> celsius{0};
    const auto heat = [&celsius](const Phy& phy) {
        phy.thermal().connect();
        phy.thermal().setTemperature(0, celsius, 1);
        phy.thermal().settledTemperature(0, within(std::chrono::minutes(10)));
    };
    std::deque<Phy> phys;
    for (const FoundBoard& board : rack.discover().boards)
        phys.push_back(rack.open(board.serial + ":0", Access::exclusive()).phy(3));
    for (const Phy& phy : phys) // a board that restarts forgets more than its session
        phy.onReopen([&phy, &heat] { heat(phy); });

    std::puts("celsius,setting,board,reading");
    for (const float next : {-40.0F, 25.0F, 85.0F}) {
        celsius = next;
        for (const Phy& phy : phys)
            heat(phy);
        for (unsigned setting = 0; setting < 16; ++setting) {
            Batch batch;
            batch.write({30, 0xC010}, setting);
            const auto reading = batch.read({30, 0xC011});
            Flight flight; // all boards at once
            std::deque<Pending<BatchResult>> results;
            for (const Phy& phy : phys)
                results.push_back(flight.run(phy, batch));
            for (std::size_t board = 0; board < results.size(); ++board)
                std::printf("%.0f,%u,%zu,%u\n", celsius.load(), setting, board,
                            results[board].get()[reading]);
        }
    }
} catch (const std::exception& problem) {
    std::fprintf(stderr, "failed: %s\n", problem.what());
    return 1;
}
