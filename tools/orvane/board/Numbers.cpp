// Parsing of numbers that users write.
#include "tools/orvane/board/Numbers.h"

#include "tools/orvane/output/Errors.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <fmt/format.h>

namespace OrvaneTool {
namespace {

int baseOf(std::string_view& text) {
    if (text.size() < 3 || text[0] != '0')
        return 10;
    const char letter = text[1];
    const int base = letter == 'x' || letter == 'X' ? 16 : letter == 'b' || letter == 'B' ? 2 : 10;
    if (base != 10)
        text.remove_prefix(2);
    return base;
}

} // namespace

std::uint64_t number(std::string_view text, std::uint64_t most, std::string_view what) {
    std::string_view rest = text;
    const int base = baseOf(rest);
    std::string digits(rest);
    digits.erase(std::remove(digits.begin(), digits.end(), '_'), digits.end());
    std::uint64_t value = 0;
    const char* end = digits.data() + digits.size();
    const auto [stop, problem] = std::from_chars(digits.data(), end, value, base);
    if (digits.empty() || problem == std::errc::invalid_argument || stop != end)
        throw UsageError(fmt::format("{} is not a number: '{}'", what, text));
    if (problem != std::errc() || value > most)
        throw UsageError(fmt::format("{} must not be above {} ({:#x}): '{}'", what, most, most, text));
    return value;
}

double fraction(const std::string& text, std::string_view what) {
    std::size_t used = 0;
    double value = 0;
    try {
        value = std::stod(text, &used);
    } catch (const std::logic_error&) {
        used = 0;
    }
    if (used == 0 || used != text.size() || !std::isfinite(value))
        throw UsageError(fmt::format("{} is not a number: '{}'", what, text));
    return value;
}

} // namespace OrvaneTool
