// UTF-8 in texts that others wrote.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

namespace Orvane::Maps {

// Whether a text is well-formed UTF-8: no overlong form, no surrogate, nothing beyond U+10FFFF.
bool isUtf8(std::string_view text);

// Writes a code point, 1 to 4 bytes; returns behind it.
char* writeUtf8(std::uint32_t point, char* to);

// A name for a message: cut at 80 bytes, with '?' for what is no printable ASCII.
std::string printable(std::string_view text);

} // namespace Orvane::Maps
