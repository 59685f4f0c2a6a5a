// The counters of one board as its link writes them.
#pragma once

#include "ov_sys/rack/link/Call.h"
#include "ov_sys/rack/values/Counters.h"

#include <array>
#include <atomic>
#include <memory>

namespace Orvane::RackLink {

// Written by the holder of the board's turn only, read by any thread at any time.
class Tally {
public:
    // A counter with one writer: no need of a locked instruction.
    class Count {
    public:
        void add(std::uint64_t amount = 1) noexcept {
            value_.store(value_.load(std::memory_order_relaxed) + amount, std::memory_order_relaxed);
        }
        std::uint64_t get() const noexcept { return value_.load(std::memory_order_relaxed); }

    private:
        std::atomic<std::uint64_t> value_{0};
    };

    ~Tally();

    void sent(const Call& call);
    void received(Program program, std::size_t bytes);
    void ended(const Call& call, TimePoint now);

    BoardCounters read() const;

    Count opens;
    Count reopens;
    Count moves;
    Count strays;

private:
    struct OfProgram;
    OfProgram& of(Program program) {
        OfProgram* const counters = programs_[indexOf(program)].load(std::memory_order_relaxed);
        return counters != nullptr ? *counters : begin(program);
    }
    OfProgram& begin(Program program);

    std::array<std::atomic<OfProgram*>, kPrograms> programs_{}; // made at the first call
};

} // namespace Orvane::RackLink
