// Times in which a board did not answer, in commands that go on through them.
#pragma once

#include "tools/orvane/board/Context.h"

#include <chrono>
#include <optional>
#include <orvane/rack.hpp>
#include <string>

namespace OrvaneTool {

struct Gap {
    std::chrono::system_clock::time_point from;
    std::chrono::system_clock::time_point until;
    Orvane::Failure cause; // of the first call in it

    // gap 2026-01-31T12:00:00.123Z to 2026-01-31T12:00:04.567Z: timed out
    std::string text() const;
    // Adds the members of a record.
    void addTo(Record& record) const;
};

// Whether the board may answer again without anybody's help: it was silent, restarted, moved or busy.
bool mayPass(const Orvane::Failure& failure);

// Calls `work` until it comes to an end, with such a pause between two times, and passes its failures over
// that may pass. Returns the gap that they made. Throws what else `work` throws, and Interrupted after a
// signal.
template <class Work>
std::optional<Gap> throughGaps(Context& context, std::chrono::milliseconds pause, Work work) {
    std::optional<Gap> gap;
    for (;;) {
        const auto before = std::chrono::system_clock::now();
        try {
            work();
            if (gap)
                gap->until = std::chrono::system_clock::now();
            return gap;
        } catch (const Orvane::Failure& failure) {
            context.interrupts().check();
            if (!mayPass(failure))
                throw;
            if (!gap)
                gap = Gap{before, before, failure};
        }
        context.interrupts().sleep(pause);
    }
}

} // namespace OrvaneTool
