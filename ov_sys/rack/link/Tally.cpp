// The counters of each program, made when it is first called.
#include "ov_sys/rack/link/Tally.h"

#include <algorithm>
#include <new>

namespace Orvane::RackLink {

namespace {

// The buckets of one octave, made when a call first took so long: a program meets two or three of them.
using Octave = std::array<std::atomic<std::uint32_t>, LatencyHistogram::kSteps>;

} // namespace

struct Tally::OfProgram {
    Count calls, succeeded, failed, timedOut, boardErrors, repeats, bytesSent, bytesReceived;
    std::array<std::atomic<Octave*>, LatencyHistogram::kOctaves> octaves{};

    std::unique_ptr<Octave[]> all; // where they were made together

    OfProgram() = default;
    ~OfProgram() {
        if (!all)
            for (auto& octave : octaves)
                delete octave.load(std::memory_order_relaxed);
    }
    OfProgram(const OfProgram&) = delete;
    OfProgram& operator=(const OfProgram&) = delete;

    void makeAll() {
        all = std::make_unique<Octave[]>(LatencyHistogram::kOctaves);
        std::transform(all.get(), all.get() + LatencyHistogram::kOctaves, octaves.begin(),
                       [](Octave& each) { return &each; });
    }

    // A call for whose octave there is no memory is left out.
    void took(std::chrono::microseconds time) noexcept {
        const unsigned number = LatencyHistogram::bucketOf(time);
        auto& place = octaves[number / LatencyHistogram::kSteps];
        Octave* octave = place.load(std::memory_order_relaxed);
        if (octave == nullptr) {
            octave = new (std::nothrow) Octave{};
            place.store(octave, std::memory_order_release);
        }
        if (octave == nullptr)
            return;
        auto& bucket = (*octave)[number % LatencyHistogram::kSteps];
        bucket.store(bucket.load(std::memory_order_relaxed) + 1, std::memory_order_relaxed);
    }

    std::vector<std::uint32_t> buckets() const {
        std::vector<std::uint32_t> counts(LatencyHistogram::kBuckets);
        auto place = counts.begin();
        for (const auto& octave : octaves) {
            if (const Octave* const made = octave.load(std::memory_order_acquire))
                std::copy(made->begin(), made->end(), place);
            place += LatencyHistogram::kSteps;
        }
        return counts;
    }

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
        copy.latency = LatencyHistogram(buckets());
        return copy;
    }
};

Tally::~Tally() {
    for (auto& program : programs_)
        delete program.load(std::memory_order_relaxed);
}

Tally::OfProgram& Tally::begin(Program program) {
    auto counters = std::make_unique<OfProgram>();
    if (program == Program::Mdio) // an access to a register never waits for memory
        counters->makeAll();
    programs_[indexOf(program)].store(counters.get(), std::memory_order_release);
    return *counters.release();
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
        counters.took(std::chrono::duration_cast<std::chrono::microseconds>(now - call.begun));
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
