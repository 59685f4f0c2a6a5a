// The requests that a board decoded, newest kept.
#pragma once

#include "simulator/board/Program.h"
#include "simulator/board/Request.h"

#include <chrono>
#include <condition_variable>
#include <cstddef>
#include <cstdint>
#include <deque>
#include <functional>
#include <mutex>
#include <string>
#include <vector>

namespace OrvaneSim {

// A ring of requests. `add` is called on the loop's thread, everything else may be called on any thread but
// the loop's.
class RequestLog {
public:
    // A request before it is shown to anybody; its program must outlive it.
    struct Entry {
        const Program* program;
        const Procedure* procedure;
        bool overTcp;
        std::string arguments;
    };
    static Request expand(const Entry& entry);

    void add(Entry entry);

    // How many requests are kept at most; 100,000 at first.
    void keep(std::size_t entries);

    // Requests that `wanted` accepts, in arrival order.
    std::vector<Request> select(const std::function<bool(const Request&)>& wanted) const;

    // The first request, recorded or yet to come, that `wanted` accepts. Blocks up to `limit`; then throws
    // std::runtime_error that lists what came instead. `wanted` runs on the calling thread, under no lock.
    Request waitFor(const std::function<bool(const Request&)>& wanted, std::chrono::milliseconds limit) const;

    void clear();

private:
    std::vector<Request> since(std::uint64_t number, std::uint64_t& next) const;
    std::string summary() const;
    void trim();

    mutable std::mutex mutex_; // guards everything below
    mutable std::condition_variable arrived_;
    std::deque<Entry> entries_;
    std::uint64_t firstNumber_ = 0; // running number of entries_.front()
    std::size_t bytes_ = 0;
    std::size_t mostEntries_ = 100000;
};

} // namespace OrvaneSim
