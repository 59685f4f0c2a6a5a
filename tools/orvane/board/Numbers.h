// Numbers as they are written on the command line.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace OrvaneTool {

// A whole number, decimal or with 0x or 0b before it; `_` may group its digits. Throws UsageError, naming
// `what`, for any other text and for one above `most`.
std::uint64_t number(std::string_view text, std::uint64_t most, std::string_view what);

// The same, cut to the type.
template <class Integer>
Integer numberAs(std::string_view text, std::uint64_t most, std::string_view what) {
    return static_cast<Integer>(number(text, most, what));
}

// One number for each text.
template <class Integer>
std::vector<Integer> numbersAs(const std::vector<std::string>& texts, std::uint64_t most,
                               std::string_view what) {
    std::vector<Integer> list;
    list.reserve(texts.size());
    for (const std::string& text : texts)
        list.push_back(numberAs<Integer>(text, most, what));
    return list;
}

// A decimal fraction such as a temperature. Throws UsageError.
double fraction(const std::string& text, std::string_view what);

} // namespace OrvaneTool
