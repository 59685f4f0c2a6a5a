// Numbers as people write them in maps.
#pragma once

#include <charconv>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace Orvane::Maps {

// A whole number up to 64 bits: decimal, "0x1F" or "0b101". None: anything else, or too large.
inline std::optional<std::uint64_t> numberIn(std::string_view text) {
    int base = 10;
    if (text.size() > 2 && text[0] == '0') {
        const char letter = text[1];
        base = letter == 'x' || letter == 'X' ? 16 : letter == 'b' || letter == 'B' ? 2 : 10;
        if (base != 10)
            text.remove_prefix(2);
    }
    std::uint64_t number = 0;
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), number, base);
    if (text.empty() || error != std::errc() || end != text.data() + text.size())
        return std::nullopt;
    return number;
}

// A decimal number, as "-0.5" or "1e-3"; None: anything else, or not finite.
inline std::optional<double> decimalIn(std::string_view text) {
    double number = 0;
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), number);
    if (text.empty() || error != std::errc() || end != text.data() + text.size() || number - number != 0)
        return std::nullopt;
    return number;
}

// "0x001F": at least so many digits.
inline std::string hexadecimal(std::uint64_t number, unsigned digits = 1) {
    char text[16];
    const auto [end, error] = std::to_chars(text, text + sizeof text, number, 16);
    std::string shown(text, end);
    for (char& each : shown)
        each = each >= 'a' ? static_cast<char>(each - 'a' + 'A') : each;
    return "0x" + std::string(shown.size() < digits ? digits - shown.size() : 0, '0') + shown;
}

// The shortest text that decimalIn() reads back as the same number.
inline std::string decimal(double number) {
    char text[32];
    const auto [end, error] = std::to_chars(text, text + sizeof text, number);
    return {text, end};
}

// All ones in so many low bits, up to 64.
inline std::uint64_t lowBits(unsigned count) {
    return count >= 64 ? ~std::uint64_t{0} : (std::uint64_t{1} << count) - 1;
}

} // namespace Orvane::Maps
