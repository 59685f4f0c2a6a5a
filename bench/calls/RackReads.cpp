// The Rack interface on few boards: single reads, lists, and operations in flight beside one at a time.
#include "bench/calls/BareClient.h"
#include "bench/calls/Measure.h"
#include "bench/calls/Session.h"

#include <deque>
#include <orvane/rack.h>
#include <orvane/rack.hpp>
#include <stdexcept>

namespace OrvaneBench {
namespace {

constexpr std::size_t kReads = 60;
constexpr std::size_t kRounds = 10; // reads of each of many boards
constexpr std::size_t kBoards = 16;
constexpr std::size_t kBlocks = 12;
constexpr std::size_t kBlockReads = 873;
constexpr Orvane::RegisterAddress kScratch{kMmd, kRegister};

template <class Work>
std::function<void()> repeated(std::size_t times, Work work) {
    return [times, work] {
        for (std::size_t i = 0; i < times; ++i)
            work();
    };
}

// An open session on port 0 of a board.
Orvane::Phy openedPhy(Orvane::Rack& rack, std::size_t board, const std::string& address) {
    const std::string name = "BENCH" + std::to_string(board);
    rack.know(name, address);
    Orvane::Phy phy = rack.open(name + ":0").phy(kPhy);
    phy.open();
    return phy;
}

// The same by the C interface.
class CPhy {
public:
    explicit CPhy(const std::string& address) {
        orvane_failure failure{};
        if (orvane_rack_new(&rack_, &failure) != ORVANE_DONE ||
            orvane_rack_know(rack_, "BENCH0", address.c_str(), &failure) != ORVANE_DONE ||
            orvane_rack_phy(rack_, "BENCH0:0", {ORVANE_SIMPLE, 0, 0}, kPhy, nullptr, &phy_, &failure) !=
                ORVANE_DONE)
            throw std::runtime_error(failure.message);
    }
    ~CPhy() {
        orvane_phy_free(phy_);
        orvane_rack_free(rack_);
    }
    CPhy(const CPhy&) = delete;
    CPhy& operator=(const CPhy&) = delete;

    void read() const {
        uint32_t value = 0;
        if (orvane_phy_read(phy_, {ORVANE_CLAUSE45, kMmd, kRegister}, nullptr, &value, nullptr) !=
            ORVANE_DONE)
            throw std::runtime_error("a read from C failed");
    }

private:
    orvane_rack* rack_ = nullptr;
    orvane_phy* phy_ = nullptr;
};

} // namespace

void compareRackReads(const Arrangement& arrangement) {
    Orvane::Rack rack;
    const Orvane::Phy phy = openedPhy(rack, 0, arrangement.boards.front());
    const CPhy fromC(arrangement.boards.front());
    BareHandles handles(arrangement.boards.front());
    BareSession bare(handles);
    const auto bareReads = repeated(kReads, [&bare] { bare.read(kAddress); });
    comparePair({"read, Rack", kReads, repeated(kReads, [&phy] { phy.read(kScratch); }), bareReads},
                arrangement.rounds);
    comparePair({"read, Rack from C", kReads, repeated(kReads, [&fromC] { fromC.read(); }), bareReads},
                arrangement.rounds);
}

// The bare side makes its list of addresses, too.
void compareRackBlocks(const Arrangement& arrangement) {
    Orvane::Rack rack;
    const Orvane::Phy phy = openedPhy(rack, 0, arrangement.boards.front());
    BareHandles handles(arrangement.boards.front());
    BareSession bare(handles);
    std::vector<unsigned> addresses;
    std::vector<unsigned> values(kBlockReads);
    const auto bareBlocks = repeated(kBlocks, [&] {
        addresses.clear();
        for (std::size_t i = 0; i < kBlockReads; ++i)
            addresses.push_back(static_cast<unsigned>(kPhy) << 24U | kAddress);
        bare.readBlock(addresses, values);
    });
    const std::vector<Orvane::RegisterAddress> list(kBlockReads, kScratch);
    comparePair({"873 reads, Rack", kBlocks, repeated(kBlocks, [&] { phy.read(list); }), bareBlocks},
                arrangement.rounds);
}

void compareFlightsOverBoards(const Arrangement& arrangement) {
    Orvane::Rack rack;
    std::vector<Orvane::Phy> phys;
    for (std::size_t board = 0; board < kBoards; ++board)
        phys.push_back(openedPhy(rack, board, arrangement.boards.at(board)));
    Orvane::Flight flight;
    std::vector<Orvane::Pending<std::uint32_t>> results;
    const auto inFlight = [&] {
        results.clear();
        for (std::size_t i = 0; i < kRounds; ++i)
            for (const Orvane::Phy& phy : phys)
                results.push_back(flight.read(phy, kScratch));
        flight.wait();
        for (const auto& result : results)
            result.get(); // throws what failed
    };
    const auto oneAtATime = repeated(kRounds, [&] {
        for (const Orvane::Phy& phy : phys)
            phy.read(kScratch);
    });
    comparePair({"16 boards, in flight to one at a time", kRounds * kBoards, inFlight, oneAtATime},
                arrangement.rounds);
}

void compareBlocksInFlight(const Arrangement& arrangement) {
    constexpr std::size_t kTogether = 4;
    Orvane::Rack rack;
    const Orvane::Phy phy = openedPhy(rack, 0, arrangement.boards.front());
    Orvane::Flight flight(kTogether);
    const auto inFlight = [&] {
        std::deque<Orvane::Pending<std::vector<std::uint32_t>>> results;
        for (std::size_t i = 0; i < kBlocks; ++i)
            results.push_back(flight.read(phy, kScratch, kBlockReads));
        for (const auto& result : results)
            result.get(); // throws what failed
    };
    comparePair({"873 reads, 4 in flight to one at a time", kBlocks, inFlight,
                 repeated(kBlocks, [&] { phy.read(kScratch, kBlockReads); })},
                arrangement.rounds);
}

} // namespace OrvaneBench
