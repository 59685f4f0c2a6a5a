// Accesses to the registers of one PHY, in any space and on any page.
#pragma once

#include "tools/orvane/board/RegisterAddress.h"
#include "tools/orvane/names/KnownMaps.h"

#include <chrono>
#include <exception>
#include <optional>
#include <orvane/rack.hpp>
#include <string>
#include <vector>

namespace OrvaneTool {

// What became of accesses.
struct Outcome {
    std::vector<std::optional<std::uint32_t>> values; // of each: what was read or written; empty: it was not
    std::exception_ptr problem;                       // an Orvane::Failure that names those that were not

    // Throws the problem.
    void check() const;
    // The values of reads that were all done. Throws the problem.
    std::vector<std::uint32_t> all() const;
};

// Lasts no longer than what it is made of. One thread; each call blocks for the board.
class PhyAccess {
public:
    PhyAccess(Context& context, const Orvane::Phy& phy, const KnownMaps& maps, bool routed)
        : context_(context), phy_(phy), maps_(maps), routed_(routed) {}

    // How long a list may take beyond a millisecond for each of its registers; 5 s unless told.
    void setPatience(std::chrono::nanoseconds patience) { patience_ = patience; }

    // Carries them out in order: in blocks where the board takes blocks, one by one where they are routed.
    // Registers on pages are reached by the select registers of the map, which hold afterwards what they held
    // before. Nothing is begun after the first that fails. Throws UsageError for a page that no map knows.
    Outcome run(const std::vector<Access>& accesses);
    // Reads; what was named and a read changes is asked for once.
    Outcome read(const std::vector<Asked>& list);

private:
    struct Part;
    void runPart(const Part& part, Outcome& outcome);
    void runSingly(const Part& part, Outcome& outcome);
    void runBatch(const Part& part, Outcome& outcome);
    void runPaged(const Part& part, Outcome& outcome);
    std::uint32_t runOne(const Access& access);
    Orvane::Within within(std::size_t accesses) const;

    Context& context_;
    const Orvane::Phy& phy_;
    const KnownMaps& maps_;
    bool routed_;
    bool once_ = false; // nothing is sent twice
    std::chrono::nanoseconds patience_ = std::chrono::seconds(5);
};

// 1.0x0000-0x00FF 1.0x0200: those of a list, neighbours as ranges.
std::string rangesText(const std::vector<Register>& list);

} // namespace OrvaneTool
