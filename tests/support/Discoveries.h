// What a board heard of discoveries.
#pragma once

#include <orvane/lab.h>

#include <chrono>
#include <string>
#include <thread>
#include <vector>

namespace OrvaneTest {

// Requests that one discovery sends by the interface of a test: the first, and one in each round of 250 ms.
constexpr std::size_t kRequestsOfAnyBoard = 5;  // 1 s
constexpr std::size_t kRequestsOfOneBoard = 21; // 5 s, when nobody answers

// The words of the multicast requests, once there are `count` of them; they are on their way for a moment
// after a discovery has returned. Fewer when they do not come within 10 s.
inline std::vector<std::string> discoveryWords(const OrvaneSim::Board& board, std::size_t count) {
    const auto limit = std::chrono::steady_clock::now() + std::chrono::seconds(10);
    while (board.discoveryCount() < count && std::chrono::steady_clock::now() < limit)
        std::this_thread::sleep_for(std::chrono::milliseconds(5));
    return board.discoveryRequests();
}

} // namespace OrvaneTest
