#include "ov_sys/maps/Utf8.h"

#include <algorithm>

namespace Orvane::Maps {

namespace {

// Bytes of the sequence that begins with this one; 0: none does.
unsigned lengthOf(unsigned char lead) {
    if (lead < 0x80)
        return 1;
    if (lead >= 0xC2 && lead < 0xE0)
        return 2;
    if (lead >= 0xE0 && lead < 0xF0)
        return 3;
    return lead >= 0xF0 && lead < 0xF5 ? 4 : 0;
}

bool isSequence(const unsigned char* bytes, unsigned length) {
    for (unsigned i = 1; i < length; ++i)
        if ((bytes[i] & 0xC0U) != 0x80)
            return false;
    if (length == 3)
        return (bytes[0] != 0xE0 || bytes[1] >= 0xA0) && (bytes[0] != 0xED || bytes[1] < 0xA0);
    if (length == 4)
        return (bytes[0] != 0xF0 || bytes[1] >= 0x90) && (bytes[0] != 0xF4 || bytes[1] < 0x90);
    return true;
}

} // namespace

bool isUtf8(std::string_view text) {
    for (std::size_t at = 0; at < text.size();) {
        const auto* const bytes = reinterpret_cast<const unsigned char*>(text.data() + at);
        const unsigned length = lengthOf(*bytes);
        if (length == 0 || length > text.size() - at || !isSequence(bytes, length))
            return false;
        at += length;
    }
    return true;
}

char* writeUtf8(std::uint32_t point, char* to) {
    const unsigned more = point < 0x80 ? 0 : point < 0x800 ? 1 : point < 0x10000 ? 2 : 3;
    constexpr unsigned kLead[] = {0, 0xC0, 0xE0, 0xF0};
    *to++ = static_cast<char>(kLead[more] | point >> (6 * more));
    for (unsigned left = more; left-- > 0;)
        *to++ = static_cast<char>(0x80U | (point >> (6 * left) & 0x3FU));
    return to;
}

std::string printable(std::string_view text) {
    constexpr std::size_t kLongest = 80;
    std::string shown(text.substr(0, kLongest));
    std::replace_if(
        shown.begin(), shown.end(), [](char c) { return c < ' ' || c > '~'; }, '?');
    return text.size() > kLongest ? shown + "..." : shown;
}

} // namespace Orvane::Maps
