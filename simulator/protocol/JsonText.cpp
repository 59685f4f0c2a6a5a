// Quoting of texts and writing of numbers.
#include "simulator/protocol/JsonText.h"

#include "ov_sys/Interface/foundation/Utf8.h"

#include <array>
#include <charconv>
#include <cmath>
#include <cstdio>

namespace OrvaneSim {
namespace {

constexpr const char* kReplacement = "\xEF\xBF\xBD"; // U+FFFD

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
        const std::size_t length = Orvane::firstCharacter(text).bytes;
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
