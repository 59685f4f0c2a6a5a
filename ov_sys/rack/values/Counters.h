// What was counted of a board's calls: outcomes, repeats, bytes, latencies.
#pragma once

#include "ov_sys/Interface/foundation/Export.h"

#include <chrono>
#include <cstdint>
#include <map>
#include <string>
#include <utility>
#include <vector>

namespace Orvane {

// How long the answered calls took, in buckets that are a sixteenth of their octave wide, from 8 us to 67 s.
class ORVANE_API LatencyHistogram {
public:
    static constexpr unsigned kFirstOctave = 3; // 2^3 us
    // Octaves, buckets in each, and in all.
    static constexpr unsigned kOctaves = 23;
    static constexpr unsigned kSteps = 16;
    static constexpr unsigned kBuckets = kOctaves * kSteps;

    // The bucket that counts a duration; what is shorter or longer than all counts in the first or last.
    static unsigned bucketOf(std::chrono::microseconds time) noexcept;
    // The duration in the middle of a bucket, within 3.2 % of every one that counts there.
    static std::chrono::microseconds middleOf(unsigned bucket) noexcept;

    // Empty, or of counts for each bucket.
    LatencyHistogram() = default;
    explicit LatencyHistogram(std::vector<std::uint32_t> buckets) : buckets_(std::move(buckets)) {}

    // The calls that were counted.
    std::uint64_t count() const noexcept;
    // The duration that `percent` (0 to 100) of the calls did not exceed; 0 when there were none.
    std::chrono::microseconds percentile(double percent) const noexcept;
    // Counts of the buckets: kBuckets, or none at all.
    const std::vector<std::uint32_t>& buckets() const noexcept { return buckets_; }
    void add(const LatencyHistogram& other);

private:
    std::vector<std::uint32_t> buckets_; // kBuckets, or none
};

// Counts of one program of one board since the rack knows it.
struct ProgramCounters {
    std::uint64_t calls = 0; // that ended
    std::uint64_t succeeded = 0;
    std::uint64_t failed = 0; // of these: timed out, refused, ...
    std::uint64_t timedOut = 0;
    std::uint64_t boardErrors = 0;
    std::uint64_t repeats = 0; // requests sent again
    std::uint64_t bytesSent = 0;
    std::uint64_t bytesReceived = 0;
    LatencyHistogram latency; // of those that succeeded
};

// Counts of one board, by the name of the program: "mdio", "setup", "keepAlive", "portmap", ...
struct BoardCounters {
    std::map<std::string, ProgramCounters> programs;
    std::uint64_t opens = 0;   // sessions opened for the first time
    std::uint64_t reopens = 0; // sessions opened again after a loss
    std::uint64_t moves = 0;   // other addresses at which the board was found
    std::uint64_t strays = 0;  // datagrams that answered nothing
};

} // namespace Orvane
