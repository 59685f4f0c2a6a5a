// A private network inside this process: a host side and a board side that nothing outside can reach.
#pragma once

#include <string>
#include <vector>

namespace OrvaneSim {

struct PrivateNetworkOptions {
    // Interfaces of the host side, 1 to 8: lab0 has 10.83.255.254/16, lab1 10.84.255.254/16, and so on.
    int hostInterfaces = 1;
    // Text that replaces /etc/hosts for this process and its children; empty leaves the file as it is.
    std::string hosts;
};

// Two network namespaces joined by virtual cables. The host side is where programs that look for boards
// live; boards' sockets are created on the board side, because a host does not hear its own multicast
// requests. Every address of 10.83.0.0/17 is local on the board side, so that a board's address costs
// nothing. Neither side has a way out: no default route, no other interface.
class PrivateNetwork {
public:
    // Makes the network and puts the calling process on its host side, for good. To be called once, before
    // the process has a second thread. A process that is not root becomes root of a user namespace of its
    // own. Throws std::runtime_error whose text says what to do, and then nothing is left behind;
    // std::logic_error on a second call.
    static void enter(const PrivateNetworkOptions& options);

    // Whether this process is in a private network.
    static bool entered();

    // Moves the calling thread to the board side; sockets that it opens from then on are there. Throws
    // std::system_error.
    static void joinBoardSide();

    // Interface indexes, on the board side, of the cables to the host; empty without a private network.
    static const std::vector<int>& boardInterfaces();

    PrivateNetwork() = delete;
};

} // namespace OrvaneSim
