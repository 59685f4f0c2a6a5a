// The general-purpose lines of a board.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>

namespace OrvaneSim {

// 32 lines, each with an output latch, an output enable and what is connected to it from outside. Belongs to
// the loop's thread.
class GpioBank {
public:
    static constexpr std::size_t kLines = 32;

    static bool exists(std::size_t line) { return line < kLines; }

    // Latches the level that the line shows while its output is enabled. Lines must exist, here and below.
    void setOutput(std::size_t line, bool level) { lines_[line].output = level; }
    void enableOutput(std::size_t line, bool enabled) { lines_[line].enabled = enabled; }
    bool outputEnabled(std::size_t line) const { return lines_[line].enabled; }

    // The level on the line: its own output when enabled, else that of the line it is wired to if that one's
    // output is enabled, else what the outside drives.
    bool level(std::size_t number) const;

    // Output low and disabled, as after power-on; wiring and outside levels stay.
    void setDefault(std::size_t line);
    void reset();

    // What the outside drives; low at first.
    void drive(std::size_t line, bool level) { lines_[line].outside = level; }
    // Wires an input to an output line; wiring a line to itself takes the wire away.
    void wire(std::size_t output, std::size_t input) { lines_[input].source = output; }

private:
    struct Line {
        bool output = false;
        bool enabled = false;
        bool outside = false;
        std::size_t source = kLines; // the line wired to this one
    };
    std::array<Line, kLines> lines_{};
};

} // namespace OrvaneSim
