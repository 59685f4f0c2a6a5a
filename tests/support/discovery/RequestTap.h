// Sees the datagrams to one port that arrive at one interface, whoever they are for.
#pragma once

#include "ov_sys/Interface/foundation/FileDescriptor.h"

#include <string>

namespace OrvaneTest {

// One UDP datagram with what its headers say.
struct Datagram {
    std::string source;
    std::string destination;
    int port;
    int timeToLive;
    std::string payload;
};

// Belongs to the network of the thread that makes it.
class RequestTap {
public:
    RequestTap(const std::string& interface, int port);

    // The next datagram; waits up to ten seconds and then fails the test.
    Datagram next();
    // Whether a datagram that next() has not given has arrived or arrives within `timeoutMs`; drops it.
    bool more(int timeoutMs = 0);

private:
    bool readDatagram(int timeoutMs, Datagram& datagram);

    Orvane::FileDescriptor socket_;
    int port_;
};

} // namespace OrvaneTest
