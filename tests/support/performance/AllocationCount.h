// Counts what a thread allocates.
#pragma once

#include <cstddef>

namespace OrvaneTest {

// How often the calling thread has asked for memory since it began, by new, malloc() or their kin, whoever
// asked.
std::size_t allocationsOfThisThread();

} // namespace OrvaneTest
