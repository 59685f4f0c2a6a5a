// Aligns the rows, and counts.
#include "examples/demo/Report.h"

#include <array>
#include <cstdio>
#include <iomanip>
#include <sstream>

namespace Demo {

namespace {

std::string fixed(double number, int decimals, const char* unit) {
    std::array<char, 32> text{};
    std::snprintf(text.data(), text.size(), "%.*f %s", decimals, number, unit);
    return text.data();
}

} // namespace

std::string hex(std::uint32_t value, int digits) {
    std::array<char, 16> text{};
    std::snprintf(text.data(), text.size(), "0x%0*X", digits, value);
    return text.data();
}

std::string duration(std::chrono::microseconds time) {
    const auto microseconds = static_cast<double>(time.count());
    if (microseconds < 1e4)
        return fixed(microseconds, 0, "us");
    if (microseconds < 1e6)
        return fixed(microseconds / 1e3, 1, "ms");
    return fixed(microseconds / 1e6, 2, "s");
}

void Report::section(const std::string& title, const std::string& remark) {
    std::printf("\n%d. %s\n   %s\n\n", ++sections_, title.c_str(), remark.c_str());
}

void Report::row(const Row& row) const {
    std::ostringstream text;
    text << "   " << std::left << std::setw(7) << row.action << std::setw(31) << row.place << std::setw(12)
         << row.value << std::setw(21) << row.remark << std::right << std::setw(9) << row.time;
    const std::string line = text.str();
    std::printf("%s\n", line.substr(0, line.find_last_not_of(' ') + 1).c_str());
}

void Report::readback(const std::string& place, std::uint32_t actual, std::uint32_t expected, int digits,
                      const std::string& time) {
    ++checked_;
    const bool same = actual == expected;
    if (!same)
        ++failures_;
    row({"read", place, hex(actual, digits), same ? "as written" : "NOT " + hex(expected, digits), time});
}

void Report::failure(const std::string& text) {
    ++failures_;
    std::printf("   FAILED: %s\n", text.c_str());
}

int Report::conclude() const {
    if (failures_ > 0)
        std::printf("\nFAILED: %d of the checks above did not hold.\n", failures_);
    else
        std::printf("\nAll %d values that were read back are as written. %s in all.\n", checked_,
                    duration(total_.elapsed()).c_str());
    return failures_ > 0 ? 1 : 0;
}

} // namespace Demo
