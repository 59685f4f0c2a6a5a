// Asks one address for its board name over TCP.
#pragma once

#include "ov_sys/Interface/foundation/Export.h"

#include <string>

namespace Orvane {

// Used once, on one thread: construct, resolveBoardPorts(), read `reply`, destroy. Nothing throws but
// std::bad_alloc.
class ORVANE_API TcpBoardResolver {
public:
    // The word that the board is to answer to.
    std::string boardType;
    // Dotted IPv4 text.
    std::string address;
    int port;
    std::string request;
    // The board's reply text as received; empty until Search() has received something.
    std::string reply;
    // -1 when closed; closed by the destructor.
    int socket = -1;

    // Stores the arguments; sends nothing.
    TcpBoardResolver(std::string address, int port, std::string boardType);
    TcpBoardResolver(const TcpBoardResolver&) = delete;
    TcpBoardResolver& operator=(const TcpBoardResolver&) = delete;
    ~TcpBoardResolver();

    // Switches the socket to blocking or non-blocking; whether that succeeded.
    bool enableBlocking(bool blocking);

    // Pauses for `milliseconds`, whatever signals arrive, and returns true; the outcome of the connection
    // shows at the following send. Below 1 it does not pause.
    bool waitSocketConnect(int milliseconds);

    // Connects, sends the request and reads until the board closes the connection or 80 ms have passed, which
    // is looked at between receives only. Every receive of up to 255 bytes overwrites the text from its
    // start; a longer earlier one shows behind the newer bytes. Failures are lines on the standard error
    // stream and leave the reply as far as it was received. Blocks until the board answers or closes; an
    // address or a board that stays silent counts as timed out after 5 s, so at most some 15 s in all.
    void Search();

    // Search().
    void resolveBoardPorts();
};

} // namespace Orvane
