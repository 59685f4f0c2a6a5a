// What the demo prints: headed sections of aligned rows, and the count of values that came back wrong.
#pragma once

#include <chrono>
#include <cstdint>
#include <string>

namespace Demo {

// Measures from its construction on, with the steady clock.
class Stopwatch {
public:
    std::chrono::microseconds elapsed() const {
        return std::chrono::duration_cast<std::chrono::microseconds>(Clock::now() - start_);
    }

private:
    using Clock = std::chrono::steady_clock;
    Clock::time_point start_ = Clock::now();
};

// "0x" and `digits` hexadecimal digits, upper case.
std::string hex(std::uint32_t value, int digits);

// "812 us", "12.3 ms" or "1.2 s", whichever reads best.
std::string duration(std::chrono::microseconds time);

// One row of a section: what was done, where, with which value, what there is to say of it, how long it took.
struct Row {
    std::string action;
    std::string place;
    std::string value;
    std::string remark;
    std::string time;
};

// Prints to the standard output. For one thread.
class Report {
public:
    // Starts a section; `remark` says in a few words what it shows.
    void section(const std::string& title, const std::string& remark);
    void row(const Row& row) const;

    // A row for a value that was read back; a difference from `expected` is marked and counted.
    void readback(const std::string& place, std::uint32_t actual, std::uint32_t expected, int digits,
                  const std::string& time);
    // Counts and prints a failure of another kind.
    void failure(const std::string& text);

    // Prints the closing line. The process's exit status: 0 when nothing failed, 1 otherwise.
    int conclude() const;

private:
    int sections_ = 0;
    int checked_ = 0;
    int failures_ = 0;
    Stopwatch total_;
};

} // namespace Demo
