// The buckets of the latencies.
#include "ov_sys/rack/values/Counters.h"

#include <algorithm>
#include <cmath>
#include <numeric>

namespace Orvane {

unsigned LatencyHistogram::bucketOf(std::chrono::microseconds time) noexcept {
    constexpr std::uint64_t kShortest = std::uint64_t{1} << kFirstOctave;
    const auto us = static_cast<std::uint64_t>(std::max<std::chrono::microseconds::rep>(time.count(), 0));
    if (us < kShortest)
        return 0;
    const auto octave = 63U - static_cast<unsigned>(__builtin_clzll(us));
    if (octave >= kFirstOctave + kOctaves)
        return kBuckets - 1;
    // The four bits below the leading one.
    const auto step =
        static_cast<unsigned>(octave >= 4 ? us >> (octave - 4) : us << (4 - octave)) & (kSteps - 1);
    return (octave - kFirstOctave) * kSteps + step;
}

std::chrono::microseconds LatencyHistogram::middleOf(unsigned bucket) noexcept {
    const unsigned octave = bucket / kSteps + kFirstOctave;
    const double low =
        std::ldexp(1.0 + static_cast<double>(bucket % kSteps) / kSteps, static_cast<int>(octave));
    const double width = std::ldexp(1.0 / kSteps, static_cast<int>(octave));
    return std::chrono::microseconds(std::llround(width <= 1 ? low : low + width / 2));
}

std::uint64_t LatencyHistogram::count() const noexcept {
    return std::accumulate(buckets_.begin(), buckets_.end(), std::uint64_t{0});
}

std::chrono::microseconds LatencyHistogram::percentile(double percent) const noexcept {
    const std::uint64_t all = count();
    if (all == 0)
        return std::chrono::microseconds(0);
    const auto rank = static_cast<std::uint64_t>(
        std::ceil(std::clamp(percent, 0.0, 100.0) / 100 * static_cast<double>(all)));
    std::uint64_t below = 0;
    unsigned bucket = 0;
    for (; bucket + 1 < kBuckets; ++bucket)
        if ((below += buckets_[bucket]) >= std::max<std::uint64_t>(rank, 1))
            break;
    return middleOf(bucket);
}

void LatencyHistogram::add(const LatencyHistogram& other) {
    if (buckets_.empty())
        buckets_ = other.buckets_;
    else
        for (std::size_t i = 0; i < other.buckets_.size(); ++i)
            buckets_[i] += other.buckets_[i];
}

} // namespace Orvane
