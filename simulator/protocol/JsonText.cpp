// Quoting of texts and writing of numbers.
#include "simulator/protocol/JsonText.h"

#include <array>
#include <charconv>
#include <cmath>
#include <cstdint>
#include <cstdio>

namespace OrvaneSim {
namespace {

constexpr const char* kReplacement = "\xEF\xBF\xBD"; // U+FFFD

bool isFollowing(unsigned char byte) {
    return (byte & 0xC0U) == 0x80;
}

/// Length of the UTF-8 character that `text` begins with, 0 when it begins with none.
std::size_t characterLength(std::string_view text) {
    const auto at = [text](std::size_t i) {
        return i < text.size() ? static_cast<unsigned char>(text[i]) : std::uint8_t{0};
    };
    const unsigned first = at(0);
    if (first < 0x80)
        return 1;
    const std::size_t length = first >= 0xF0 ? 4 : first >= 0xE0 ? 3 : 2;
    std::uint32_t number = first & (0x7FU >> length);
    for (std::size_t i = 1; i < length; ++i) {
        if (!isFollowing(at(i)))
            return 0;
        number = number << 6 | (at(i) & 0x3FU);
    }
    constexpr std::array<std::uint32_t, 5> kLowest{0, 0, 0x80, 0x800, 0x10000};
    const bool surrogate = number >= 0xD800 && number < 0xE000;
    const bool valid = first >= 0xC0 && first < 0xF8 && number >= kLowest[length] && number <= 0x10FFFF;
    return valid && !surrogate ? length : 0;
}

void appendControl(std::string& json, char character) {
    constexpr std::string_view kNamed = "\b\t\n\f\r";
    constexpr std::string_view kNames = "btnfr";
    const std::size_t named = kNamed.find(character);
    json += '\\';
    if (named != std::string_view::npos) {
        json += kNames[named];
        return;
    }
    std::array<char, 8> escape{};
    std::snprintf(escape.data(), escape.size(), "u%04x", static_cast<unsigned>(character));
    json += escape.data();
}

} // namespace

void appendJson(std::string& json, std::string_view text) {
    json += '"';
    while (!text.empty()) {
        const std::size_t length = characterLength(text);
        if (length == 0)
            json += kReplacement;
        else if (static_cast<unsigned char>(text[0]) < 0x20)
            appendControl(json, text[0]);
        else if (text[0] == '"' || text[0] == '\\')
            (json += '\\') += text[0];
        else
            json += text.substr(0, length);
        text.remove_prefix(length == 0 ? 1 : length);
    }
    json += '"';
}

void appendJson(std::string& json, double number) {
    if (!std::isfinite(number)) {
        json += "null";
        return;
    }
    std::array<char, 32> digits{};
    const char* const end = std::to_chars(digits.data(), digits.data() + digits.size(), number).ptr;
    const std::string_view text(digits.data(), static_cast<std::size_t>(end - digits.data()));
    json += text;
    if (text.find_first_of(".e") == std::string_view::npos)
        json += ".0";
}

} // namespace OrvaneSim
