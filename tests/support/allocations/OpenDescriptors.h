// How many descriptors the process has.
#pragma once

#include <chrono>
#include <cstddef>
#include <filesystem>
#include <iterator>
#include <thread>

namespace OrvaneTest {

inline std::size_t openDescriptors() {
    const std::filesystem::directory_iterator all("/proc/self/fd");
    return static_cast<std::size_t>(std::distance(begin(all), end(all)));
}

// Returns once there are `wanted`, or what there are after a while: simulated boards in the same process take
// theirs back a moment later.
inline std::size_t openDescriptorsOnce(std::size_t wanted) {
    const auto end = std::chrono::steady_clock::now() + std::chrono::seconds(20);
    while (openDescriptors() != wanted && std::chrono::steady_clock::now() < end)
        std::this_thread::yield();
    return openDescriptors();
}

} // namespace OrvaneTest
