// Mixed blocks: many accesses in one round trip.
#include "examples/demo/Sections.h"

#include <orvane/orvane.hpp>

namespace Demo {

namespace {

using Words = std::vector<unsigned int>;
using MixedBlock = Words (Orvane::MDIO::MDIO::*)(Orvane::SessionWrapper, const Words&, const Words&,
                                                 const Words&, const Words&);

// A frame format, and two addresses that it can reach.
struct Format {
    std::string name;
    MixedBlock call;
    unsigned first;
    unsigned second;
    int digits;
};

// Two writes, two reads, one write, one read: the last read sees what the third write changed.
void runMixedBlock(Report& report, Orvane::PhySession* session, const Format& format) {
    const Words writeAddresses{format.first, format.second, format.first};
    const Words writeData{0x1111, 0x2222, 0x3333};
    const Words readAddresses{format.first, format.second, format.first};
    const Words runs{2, 2, 1, 1};

    const Stopwatch watch;
    const Words values = (Orvane::mdio.*format.call)(session, writeAddresses, writeData, readAddresses, runs);
    const std::string time = duration(watch.elapsed());

    report.row({"block", format.name, "", "runs of 2w 2r 1w 1r", time});
    for (std::size_t i = 0; i < values.size(); ++i)
        report.readback("  address " + hex(readAddresses[i], format.digits), values[i], writeData[i],
                        format.digits == 8 ? 8 : 4, "");
}

// The same through the adapter's own queue, against the same accesses one by one.
void compareQueueWithSingles(Report& report, const Port& port) {
    constexpr unsigned kCount = 64;
    constexpr unsigned kMmd = 30;
    constexpr unsigned kBase = 0xC100;

    const Stopwatch singles;
    for (unsigned i = 0; i < kCount; ++i)
        HW_Interface_Object.writeAdapter(port.adapter, kPhy, kMmd, kBase + i, 0xB000 + i);
    for (unsigned i = 0; i < kCount; ++i)
        HW_Interface_Object.readAdapter(port.adapter, kPhy, kMmd, kBase + i);
    const std::string singlesTime = duration(singles.elapsed());

    const Stopwatch queued;
    for (unsigned i = 0; i < kCount; ++i)
        HW_Interface_Object.blockWriteAdapter(port.adapter, kPhy, kMmd, kBase + i, 0xC000 + i);
    for (unsigned i = 0; i < kCount; ++i)
        HW_Interface_Object.blockReadAdapter(port.adapter, kPhy, kMmd, kBase + i);
    const unsigned* values = HW_Interface_Object.blockOperationExecuteAdapter(port.adapter, kPhy);
    const std::string queuedTime = duration(queued.elapsed());

    report.row({"singly", "64 writes, 64 reads", "", "128 round trips", singlesTime});
    report.row({"queued", "64 writes, 64 reads", "", "1 round trip", queuedTime});
    if (!values || HW_Interface_Object.blockReadQueueSize() != kCount)
        return report.failure("the queued block did not return its 64 values");
    report.readback("  the last of them", values[kCount - 1], 0xC000 + kCount - 1, 4, "");
}

} // namespace

void mixedBlocks(Report& report, const Port& port) {
    report.section("Mixed blocks", "runs of writes and reads that the board executes in one round trip");
    Orvane::PhySession* session = HW_Interface_Object.getPhySession(port.name, kPhy);
    using Mdio = Orvane::MDIO::MDIO;
    for (const Format& format : {Format{"Clause 45", &Mdio::mixedBlock, 0x1EC020, 0x1EC021, 6},
                                 Format{"Clause 22", &Mdio::mixedBlock_c22, 18, 19, 2},
                                 Format{"32-bit extension", &Mdio::mixedBlock_c22_32bit, 0x2000, 0x2004, 8}})
        runMixedBlock(report, session, format);
    compareQueueWithSingles(report, port);
}

} // namespace Demo
