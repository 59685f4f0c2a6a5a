// Networks with odd sets of interfaces, each for one test.
#pragma once

#include <functional>
#include <string>

namespace OrvaneTest {

// Runs `body` on a thread of its own in an empty network: one loop-back interface, which is down. Waits for
// its end; an exception out of it is a failure of the test.
void inOwnNetwork(const std::function<void()>& body);

// Brings up the loop-back interface of the calling thread's network, with 127.0.0.1/8.
void bringLoopbackUp();

// Adds an interface with this address and 24 bits of network to the calling thread's network, running; what
// it sends comes out at the interface of the same name with "Far" behind it.
void addInterface(const std::string& name, const std::string& address);

} // namespace OrvaneTest
