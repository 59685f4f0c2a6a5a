// The one error of the Rack interface: what went wrong, where, for how long, and what to do about it.
#pragma once

#include "ov_sys/Interface/foundation/Export.h"

#include <chrono>
#include <exception>
#include <memory>
#include <string>

namespace Orvane {

// What went wrong, as a program tells one from another.
enum class FailureKind {
    InvalidArgument, // refused here: nothing was sent
    NoSuchPort,      // no board or port of that name was found
    Unreachable,     // nobody answers where the board is, or was
    TimedOut,        // sent, and no answer within the deadline: whether it was done is not known
    Refused,         // the board does not grant the session
    Busy,            // the board, or another call on it, was busy up to the deadline
    LostSession,     // the board forgot the session, and the call was told not to open it again
    BadReply,        // an answer that is none: undecodable, or with another number of values than asked for
    BoardError,      // the board's own code, see code()
    Cancelled,       // by the caller
};

// In words, e.g. "timed out". Never null.
ORVANE_API const char* toText(FailureKind kind) noexcept;

// Everything that is known of a failure; members that do not apply keep their initial values.
struct FailureDetails {
    FailureKind kind = FailureKind::InvalidArgument;
    std::string board;     // serial number
    int port = -1;         // -1: none
    int phy = -1;          // PHY id, or SMBus device address
    std::string operation; // "read", "open", ...
    std::string location;  // register, e.g. "30.0xC010"
    int code = 0;          // the board's: a negative errno value
    unsigned attempts = 0; // times that the request was sent
    std::chrono::microseconds spent{0};
    std::string advice; // one sentence for a person; empty for the one that suits the kind
};

// A value: copies share what they say and do not throw. Any thread.
class ORVANE_API Failure : public std::exception {
public:
    // Throws std::bad_alloc.
    explicit Failure(FailureDetails details);

    // One line with everything: "OV0001:0 PHY 3: read 30.0xC010: timed out after 12 attempts in 5.000 s. ..."
    const char* what() const noexcept override;

    // The details one by one.
    FailureKind kind() const noexcept { return details().kind; }
    const std::string& board() const noexcept { return details().board; }
    int port() const noexcept { return details().port; }
    int phy() const noexcept { return details().phy; }
    const std::string& operation() const noexcept { return details().operation; }
    const std::string& location() const noexcept { return details().location; }
    int code() const noexcept { return details().code; }
    unsigned attempts() const noexcept { return details().attempts; }
    std::chrono::microseconds spent() const noexcept { return details().spent; }
    const std::string& advice() const noexcept { return details().advice; }
    // "EREMOTEIO" for -121; empty for 0, the number for what has no name.
    std::string codeName() const;

    // All of them; good as long as the failure.
    const FailureDetails& details() const noexcept;

private:
    struct Said;
    std::shared_ptr<const Said> said_;
};

} // namespace Orvane
