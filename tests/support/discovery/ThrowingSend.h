// A sendto() that throws, as nothing of the system does.
#pragma once

namespace OrvaneTest {

// The next sendto() of this thread sends nothing and throws std::runtime_error.
void throwFromNextSend();

} // namespace OrvaneTest
