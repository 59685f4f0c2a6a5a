// Texts that the library hands to its callers.
#pragma once

#include <cstdlib>
#include <string>
#include <vector>

namespace OrvaneTest {

// The text, which is freed; "(null)" for a null pointer.
inline std::string taken(char* text) {
    if (text == nullptr)
        return "(null)";
    std::string copy = text;
    std::free(text);
    return copy;
}

// The texts up to the null pointer, which are freed with their array.
inline std::vector<std::string> taken(char** texts) {
    std::vector<std::string> copies;
    for (char** next = texts; next != nullptr && *next != nullptr; ++next)
        copies.push_back(taken(*next));
    std::free(texts);
    return copies;
}

} // namespace OrvaneTest
