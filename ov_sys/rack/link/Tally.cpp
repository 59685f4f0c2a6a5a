// The counters of each program, made when it is first called.
#include "ov_sys/rack/link/Tally.h"

namespace Orvane::RackLink {

struct Tally::OfProgram {
    Count calls, succeeded, failed, timedOut, boardErrors, repeats, bytesSent, bytesReceived;
    std::array<std::atomic<std::uint32_t>, LatencyHistogram::kBuckets> buckets{};

    ProgramCounters read() const {
        ProgramCounters copy;
        copy.calls = calls.get();
        copy.succeeded = succeeded.get();
        copy.failed = failed.get();
        copy.timedOut = timedOut.get();
        copy.boardErrors = boardErrors.get();
        copy.repeats = repeats.get();
        copy.bytesSent = bytesSent.get();
        copy.bytesReceived = bytesReceived.get();
        std::vector<std::uint32_t> counts;
        counts.reserve(buckets.size());
        for (const auto& bucket : buckets)
            counts.push_back(bucket.load(std::memory_order_relaxed));
        copy.latency = LatencyHistogram(std::move(counts));
        return copy;
    }
};

Tally::~Tally() {
    for (auto& program : programs_)
        delete program.load(std::memory_order_relaxed);
}

Tally::OfProgram& Tally::begin(Program program) {
    auto* const counters = new OfProgram;
    programs_[indexOf(program)].store(counters, std::memory_order_release);
    return *counters;
}

void Tally::sent(const Call& call) {
    OfProgram& counters = of(call.program);
    counters.bytesSent.add(call.size);
    if (call.sends > 1)
        counters.repeats.add();
}

void Tally::received(Program program, std::size_t bytes) {
    of(program).bytesReceived.add(bytes);
}

void Tally::ended(const Call& call, TimePoint now) {
    OfProgram& counters = of(call.program);
    counters.calls.add();
    if (!call.trouble) {
        counters.succeeded.add();
        const auto time = std::chrono::duration_cast<std::chrono::microseconds>(now - call.begun);
        std::atomic<std::uint32_t>& bucket = counters.buckets[LatencyHistogram::bucketOf(time)];
        bucket.store(bucket.load(std::memory_order_relaxed) + 1, std::memory_order_relaxed);
        return;
    }
    counters.failed.add();
    if (call.trouble.kind() == FailureKind::TimedOut)
        counters.timedOut.add();
    if (call.trouble.kind() == FailureKind::BoardError)
        counters.boardErrors.add();
}

BoardCounters Tally::read() const {
    BoardCounters all;
    for (std::size_t i = 0; i < kPrograms; ++i)
        if (const OfProgram* const counters = programs_[i].load(std::memory_order_acquire))
            all.programs.emplace(nameOf(static_cast<Program>(i)), counters->read());
    all.opens = opens.get();
    all.reopens = reopens.get();
    all.moves = moves.get();
    all.strays = strays.get();
    return all;
}

} // namespace Orvane::RackLink
