// How much one search takes in, and the count of what searches left out.
#pragma once

#include <atomic>
#include <cstddef>
#include <cstdint>

namespace Orvane::SearchLimits {

// Boards that one search may add to its caller's list, and devices to the device list, which never shrinks.
inline constexpr std::size_t kNew = 1024;

// Answers that wait for the searching thread; it fetches them every 250 ms at least.
inline constexpr std::size_t kWaiting = 4096;

// Since the process began; any thread. BoardFinder::dropped() gives them out.
inline std::atomic<std::uint64_t> unprintable{0};
inline std::atomic<std::uint64_t> excess{0};

} // namespace Orvane::SearchLimits
