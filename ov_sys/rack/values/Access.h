// How a port is shared with other programs.
#pragma once

#include <cstdint>

namespace Orvane {

// The three kinds of session that boards grant, each with an optional key.
struct Access {
    enum class Mode : std::uint8_t {
        Exclusive, // keeps everybody out who does not bring the key
        Shared,    // beside other shared and simple sessions
        Simple,    // as shared, but no key is made up
    };

    Mode mode = Mode::Simple; // the kind
    std::uint16_t key = 0;    // 0: none; exclusive and shared sessions then get one that is made up
    bool queues = false;      // a refused open is tried again up to the call's deadline

    // An exclusive one.
    static constexpr Access exclusive(std::uint16_t key = 0) noexcept {
        return {Mode::Exclusive, key, false};
    }
    // A shared one.
    static constexpr Access shared(std::uint16_t key = 0) noexcept { return {Mode::Shared, key, false}; }
    // A simple one.
    static constexpr Access simple(std::uint16_t key = 0) noexcept { return {Mode::Simple, key, false}; }

    // The same, but waiting for the holder to close.
    constexpr Access queueing() const noexcept { return {mode, key, true}; }
};

} // namespace Orvane
