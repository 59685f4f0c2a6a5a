// One thread on one board: single reads by every way, and blocks.
#include "bench/calls/BareClient.h"
#include "bench/calls/Measure.h"
#include "bench/calls/Session.h"

#include "ov_sys/Interface/buses/MDIO.h"
#include "ov_sys/Interface/buses/MdioAsync.h"

#include <cstdio>
#include <orvane/orvane.h>
#include <stdexcept>

namespace OrvaneBench {
namespace {

constexpr std::size_t kReads = 60;
constexpr std::size_t kBlocks = 12;
constexpr unsigned kBlockReads = 873;

template <class Work>
std::function<void()> repeated(std::size_t times, Work work) {
    return [times, work] {
        for (std::size_t i = 0; i < times; ++i)
            work();
    };
}

std::function<void()> bareReads(BareSession& bare) {
    return repeated(kReads, [&bare] { bare.read(kAddress); });
}

void requireNoError() {
    if (HW_Fail() != 0)
        throw std::runtime_error("a flat read failed");
}

} // namespace

void compareClassReads(const Arrangement& arrangement) {
    OpenedSession session(arrangement.boards.front());
    BareHandles handles(arrangement.boards.front());
    BareSession bare(handles);
    const auto read = [&session] { Orvane::mdio.read(session.get(), kAddress); };
    comparePair({"read, class interface", kReads, repeated(kReads, read), bareReads(bare)},
                arrangement.rounds);
}

void compareFlatReads(const Arrangement& arrangement) {
    const FlatDevice device(arrangement.boards.front());
    BareHandles handles(arrangement.boards.front());
    BareSession bare(handles);
    const auto read = [adapter = device.adapter()] { HW_Read_Abstracted(adapter, kPhy, kMmd, kRegister); };
    comparePair({"read, flat interface", kReads, repeated(kReads, read), bareReads(bare)},
                arrangement.rounds);
    requireNoError();
}

void compareLoggedReads(const Arrangement& arrangement) {
    const FlatDevice device(arrangement.boards.front());
    BareHandles handles(arrangement.boards.front());
    BareSession bare(handles);
    HW_EnableLogging(std::tmpfile());
    const auto read = [] { ZR_API_MDIO_Read(kPhy, kMmd, kRegister); };
    comparePair({"read, flat interface, logged", kReads, repeated(kReads, read), bareReads(bare)},
                arrangement.rounds);
    HW_DisableLogging(1);
    requireNoError();
}

// The addresses are queued one by one, or handed over as a list; the bare side makes its list, too.
void compareBlocks(const Arrangement& arrangement) {
    OpenedSession session(arrangement.boards.front());
    BareHandles handles(arrangement.boards.front());
    BareSession bare(handles);
    Orvane::MDIO::MdioAsync queue;
    std::vector<unsigned> addresses;
    std::vector<unsigned> values(kBlockReads);
    const auto mixed = repeated(kBlocks, [&] {
        addresses.clear();
        for (unsigned i = 0; i < kBlockReads; ++i)
            addresses.push_back(static_cast<unsigned>(kPhy) << 24U | kAddress);
        bare.readBlock(addresses, values);
    });
    const auto asList = repeated(kBlocks, [&] {
        queue.blockRead(std::vector<unsigned>(kBlockReads, kAddress));
        queue.execute(session.get());
    });
    const auto oneByOne = repeated(kBlocks, [&] {
        for (unsigned i = 0; i < kBlockReads; ++i)
            queue.read(kAddress);
        queue.execute(session.get());
    });
    comparePair({"873 reads, queued as a list", kBlocks, asList, mixed}, arrangement.rounds);
    comparePair({"873 reads, queued one by one", kBlocks, oneByOne, mixed}, arrangement.rounds);
}

} // namespace OrvaneBench
