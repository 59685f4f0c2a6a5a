// Writes JSON text.
#pragma once

#include <string>
#include <string_view>
#include <type_traits>

namespace OrvaneSim {

// Appends a text in quotes. Control characters are escaped; a byte that is no UTF-8 becomes U+FFFD.
void appendJson(std::string& json, std::string_view text);
// Appends a number; one that is not finite becomes null.
void appendJson(std::string& json, double number);

template <class Number, std::enable_if_t<std::is_integral_v<Number>, int> = 0>
void appendJson(std::string& json, Number number) {
    json += std::to_string(number);
}

} // namespace OrvaneSim
