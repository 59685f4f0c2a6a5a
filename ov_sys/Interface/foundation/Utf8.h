// UTF-8, read character by character, checked and written.
#pragma once

#include <array>
#include <cstddef>
#include <string_view>

namespace Orvane {

// A character at the beginning of a text.
struct Utf8Character {
    char32_t code = 0;
    std::size_t bytes = 0; // 0: the text begins with none, or is empty
};

// The character that `text` begins with; none for a byte that begins no character, a character cut short or
// written with too many bytes, a surrogate, and a number beyond U+10FFFF. Throws nothing.
inline Utf8Character firstCharacter(std::string_view text) noexcept {
    struct Form {
        unsigned mask;
        unsigned lead;
        char32_t least; // what fewer bytes cannot say
    };
    constexpr std::array<Form, 4> kForms{
        {{0x80, 0x00, 0}, {0xE0, 0xC0, 0x80}, {0xF0, 0xE0, 0x800}, {0xF8, 0xF0, 0x10000}}};
    const auto byte = [text](std::size_t i) { return static_cast<unsigned char>(text[i]); };
    for (std::size_t bytes = 1; bytes <= kForms.size() && bytes <= text.size(); ++bytes) {
        const Form& form = kForms[bytes - 1];
        if ((byte(0) & form.mask) != form.lead)
            continue;
        char32_t code = byte(0) & ~form.mask;
        for (std::size_t i = 1; i < bytes; ++i) {
            if ((byte(i) & 0xC0U) != 0x80U)
                return {};
            code = code << 6U | (byte(i) & 0x3FU);
        }
        const bool surrogate = code >= 0xD800 && code <= 0xDFFF;
        return code < form.least || code > 0x10FFFF || surrogate ? Utf8Character{}
                                                                 : Utf8Character{code, bytes};
    }
    return {};
}

// Whether a character stands for something to be seen: no control character (C0, DEL, C1), end of a line or
// paragraph, mark or override of direction, byte order mark.
constexpr bool isVisible(char32_t code) noexcept {
    const bool control = code < 0x20 || (code >= 0x7F && code < 0xA0);
    const bool layout = code == 0x061C || code == 0x200E || code == 0x200F ||
                        (code >= 0x2028 && code <= 0x202E) || (code >= 0x2066 && code <= 0x2069) ||
                        code == 0xFEFF;
    return !control && !layout;
}

// Whether a text is UTF-8 throughout, character by character as above.
inline bool isUtf8(std::string_view text) noexcept {
    while (!text.empty()) {
        const std::size_t bytes = firstCharacter(text).bytes;
        if (bytes == 0)
            return false;
        text.remove_prefix(bytes);
    }
    return true;
}

// Writes a character, 1 to 4 bytes, and returns the place behind it. `code` is below 0x200000.
inline char* writeUtf8(char32_t code, char* to) noexcept {
    const unsigned more = code < 0x80 ? 0 : code < 0x800 ? 1 : code < 0x10000 ? 2 : 3;
    constexpr std::array<unsigned, 4> kLead{0, 0xC0, 0xE0, 0xF0};
    *to++ = static_cast<char>(kLead[more] | code >> (6 * more));
    for (unsigned left = more; left-- > 0;)
        *to++ = static_cast<char>(0x80U | (code >> (6 * left) & 0x3FU));
    return to;
}

} // namespace Orvane
