// Counts the instructions of the library's own code in a run of counted_calls.
#pragma once

#include <string>

namespace OrvaneTest {

// Runs counted_calls under callgrind and returns the instructions that liborvane.so itself executed for one
// operation: those of libtirpc, libc and the kernel do not count. Throws std::runtime_error when the run
// fails, or when valgrind is not there.
unsigned long instructionsOf(const std::string& operation, const std::string& boardAddress);

} // namespace OrvaneTest
