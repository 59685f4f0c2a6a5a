// How a call ended, as the floors below the public edge pass it on.
#pragma once

#include "ov_sys/rack/values/Failure.h"

namespace Orvane::RackLink {

// Success, or what went wrong. A plain value; the public edge makes a Failure of it.
class Trouble {
public:
    constexpr Trouble() noexcept = default;
    // NOLINTNEXTLINE(google-explicit-constructor): what went wrong is a trouble
    constexpr Trouble(FailureKind kind, int code = 0) noexcept : bad_(true), kind_(kind), code_(code) {}

    constexpr explicit operator bool() const noexcept { return bad_; }
    constexpr FailureKind kind() const noexcept { return kind_; }
    // The board's, a negative errno value; 0 when it said nothing.
    constexpr int code() const noexcept { return code_; }

private:
    bool bad_ = false;
    FailureKind kind_{};
    int code_ = 0;
};

} // namespace Orvane::RackLink
