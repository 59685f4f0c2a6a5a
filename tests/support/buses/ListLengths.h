// Three lists whose lengths must agree, for the operations that take as many.
#pragma once

#include <cstddef>
#include <string>

namespace OrvaneTest {

struct ListLengths {
    std::string name;
    std::size_t first;
    std::size_t second;
    std::size_t third;
};

} // namespace OrvaneTest
