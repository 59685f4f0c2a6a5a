// The registers of each class, one bit for each.
#include "ov_sys/routing/RegisterClasses.h"

#include <array>
#include <cstddef>
#include <cstdint>

namespace Orvane::Routing {
namespace {

constexpr unsigned kFirstLane = 0x8000; // four lanes of 4096 registers: 8000, 9000, A000, B000
constexpr unsigned kEndOfLanes = 0xC000;
constexpr unsigned kLaneRegisters = 0x1000;

struct Range {
    unsigned first = 0;
    unsigned last = 0;
    unsigned copies = 1; // how often the range repeats
    unsigned stride = 0; // registers from one copy to the next
};

constexpr Range kNecRanges[] = {
    {0x037, 0x039}, {0x045, 0x04A},        {0x06F, 0x06F},        {0x093, 0x095}, {0x0F3, 0x0F5},
    {0x1C0, 0x1C1}, {0x280, 0x284, 12, 8}, {0x803, 0x803},        {0x807, 0x807}, {0x812, 0x812},
    {0x81C, 0x81C}, {0x82E, 0x839},        {0x980, 0x980, 12, 8},
};

constexpr Range kDecRanges[] = {
    {0x035, 0x035}, {0x041, 0x042},        {0x06D, 0x06D},        {0x090, 0x090}, {0x0F0, 0x0F2},
    {0x1A0, 0x1A1}, {0x200, 0x204, 16, 8}, {0x800, 0x800},        {0x805, 0x805}, {0x811, 0x811},
    {0x81A, 0x81A}, {0x82A, 0x82D},        {0x900, 0x900, 16, 8},
};

// A class is a bitmap of one lane.
using LaneMap = std::array<std::uint64_t, kLaneRegisters / 64>;

template <std::size_t N>
constexpr LaneMap laneMap(const Range (&ranges)[N]) {
    LaneMap map{};
    for (const Range& range : ranges)
        for (unsigned copy = 0; copy < range.copies; ++copy)
            for (unsigned offset = range.first; offset <= range.last; ++offset) {
                const unsigned bit = offset + copy * range.stride;
                map[bit / 64] |= std::uint64_t{1} << (bit % 64);
            }
    return map;
}

constexpr LaneMap kNec = laneMap(kNecRanges);
constexpr LaneMap kDec = laneMap(kDecRanges);

bool isIn(const LaneMap& map, unsigned mmd, unsigned address) {
    if (mmd != kClassMmd || address < kFirstLane || address >= kEndOfLanes)
        return false;
    const unsigned offset = address % kLaneRegisters;
    return (map[offset / 64] >> (offset % 64) & 1U) != 0;
}

} // namespace

bool isNec(unsigned mmd, unsigned address) {
    return isIn(kNec, mmd, address);
}

bool isDec(unsigned mmd, unsigned address) {
    return isIn(kDec, mmd, address);
}

} // namespace Orvane::Routing
