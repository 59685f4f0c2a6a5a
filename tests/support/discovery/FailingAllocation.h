// Lets memory run out at a chosen allocation.
#pragma once

#include <cstddef>

namespace OrvaneTest {

// The calling thread's next `new` of exactly `size` bytes throws std::bad_alloc.
void failNextAllocationOf(std::size_t size);

} // namespace OrvaneTest
