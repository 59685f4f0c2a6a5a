// Checks of the callers' side of a contract, which stay in release builds.
#pragma once

namespace Orvane {

// Reports `condition` as violated in `source` ("source: Assertion `condition' failed.") on the standard
// error stream and aborts the process. Any thread.
[[noreturn]] void requirementFailed(const char* condition, const char* source);

// Goes on when `holds`; otherwise requirementFailed().
inline void require(bool holds, const char* condition, const char* source) {
    if (!holds)
        requirementFailed(condition, source);
}

} // namespace Orvane
