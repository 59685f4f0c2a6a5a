// A text many times over.
#pragma once

#include <string>

namespace OrvaneTest {

inline std::string times(int count, const std::string& text) {
    std::string all;
    for (int i = 0; i < count; ++i)
        all += text;
    return all;
}

} // namespace OrvaneTest
