// How a command ends other than well, and the exit status of each end.
#pragma once

#include <optional>
#include <orvane/rack.hpp>
#include <stdexcept>
#include <string>
#include <system_error>

namespace OrvaneTool {

constexpr int kSuccess = 0;
constexpr int kFailed = 1; // the board or an access failed, or what was compared differs
constexpr int kUsage = 2;  // the command line asks for something that there is not

// The board, an access or a file failed; the text names device, operation and cause.
struct Failure : std::runtime_error {
    using std::runtime_error::runtime_error;
    Failure(const std::string& text, const Orvane::Failure& failure)
        : std::runtime_error(text), cause(failure) {}

    std::optional<Orvane::Failure> cause; // of the library, when it was that
};

// An argument that no board needs to be asked about.
struct UsageError : std::runtime_error {
    using std::runtime_error::runtime_error;
};

// The user, or whoever sent the signal, wants the command to end.
struct Interrupted {
    int signal;
};

// Nobody reads the standard output any more.
struct OutputClosed {};

// The system's words for an errno value.
inline std::string errorText(int code) {
    return std::generic_category().message(code);
}

} // namespace OrvaneTool
