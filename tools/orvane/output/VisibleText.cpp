// Characters of UTF-8, and which of them are shown.
#include "tools/orvane/output/VisibleText.h"

#include "ov_sys/Interface/foundation/Utf8.h"

#include <algorithm>
#include <cstdint>
#include <fmt/format.h>

namespace OrvaneTool {
namespace {

// Replaces each character that `shows` refuses, and each byte that is none, by what `escape` makes of them.
template <class Shows, class Escape>
std::string escaped(std::string_view text, Shows shows, Escape escape) {
    const auto plain = [](char each) { return each >= ' ' && each <= '~'; };
    if (std::all_of(text.begin(), text.end(), plain)) // nearly always
        return std::string(text);
    std::string result;
    result.reserve(text.size());
    while (!text.empty()) {
        const Orvane::Utf8Character next = Orvane::firstCharacter(text);
        const std::string_view bytes = text.substr(0, std::max<std::size_t>(next.bytes, 1));
        if (next.bytes > 0 && shows(next.code))
            result += bytes;
        else
            result += escape(next.code, bytes);
        text.remove_prefix(bytes.size());
    }
    return result;
}

std::string hexadecimal(char32_t, std::string_view bytes) {
    std::string text;
    for (const char each : bytes)
        text += fmt::format("\\x{:02x}", static_cast<unsigned char>(each));
    return text;
}

} // namespace

std::string visible(std::string_view text) {
    return escaped(text, Orvane::isVisible, hexadecimal);
}

std::string visibleLines(std::string_view text) {
    const auto shows = [](char32_t code) {
        return code == U'\n' || code == U'\t' || Orvane::isVisible(code);
    };
    return escaped(text, shows, hexadecimal);
}

std::string visibleJson(std::string_view json) {
    const auto shows = [](char32_t code) { return code == U'\n' || Orvane::isVisible(code); };
    return escaped(json, shows, [](char32_t code, std::string_view) {
        return fmt::format("\\u{:04x}", static_cast<std::uint32_t>(code));
    });
}

} // namespace OrvaneTool
