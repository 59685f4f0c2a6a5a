// Asks for boards by UDP multicast on every local interface and collects their replies.
#pragma once

#include "ov_sys/Interface/foundation/AddressResponse.h"
#include "ov_sys/Interface/foundation/Export.h"

#include <atomic>
#include <mutex>
#include <netinet/in.h>
#include <string>
#include <thread>
#include <vector>

namespace Orvane {

// Sends and receives only; BoardFinder paces a search and reads the replies. One thread owns a resolver and
// calls everything but listen() and PushReply(), which belong to the listener thread that startListener()
// makes. Failures are lines on the standard error stream and return codes unless stated otherwise.
class ORVANE_API MulticastBoardResolver {
public:
    // The multicast group as dotted text.
    std::string group;
    // The port that requests go to and replies come to; the low 16 bits count.
    unsigned port;
    // The interfaces that requests go out on: name and address. Fixed by the constructor.
    std::vector<AddressResponse> interfaces;
    // -1 until created; closed by the destructor.
    int listenSocket = -1;
    int sendSocket = -1;
    // Any address and the port, which the listen socket is bound to; then the listener's alone, which keeps
    // the sender of the latest reply here.
    sockaddr_in localAddress;
    // True while the listener thread is to run.
    std::atomic<bool> listening{false};
    std::thread listener;
    // What was received and not yet fetched: reply text and sender's address. Guarded by repliesLock.
    std::vector<AddressResponse> replies;
    std::mutex repliesLock;

    // Lists the interfaces, leaving out the first that is 127.0.0.1, and opens both sockets; a socket that
    // cannot be opened shows in its line only. Throws Exceptions::Standard "Couldn't get list of local
    // interfaces." when the host has no IPv4 address.
    MulticastBoardResolver(std::string group, unsigned port);
    MulticastBoardResolver(const MulticastBoardResolver&) = delete;
    MulticastBoardResolver& operator=(const MulticastBoardResolver&) = delete;
    // Closes the sockets. A listener must have been stopped before, or the process terminates.
    ~MulticastBoardResolver();

    // Open the socket in place of an earlier one: 0, or 1 at the first step that fails. The group is joined
    // on the system's default interface only. Not while a listener runs.
    int CreateListenSocket();
    int CreateSendSocket();

    // Sends the bytes of `request` to the group through `iface`: 0, or 1 when that failed. Does not block.
    int sendToInterface(AddressResponse& iface, const std::string& request);

    // Sends `request` on every interface and returns on how many that failed.
    int send(const std::string& request);

    // Starts the listener thread; when one is active already, only says so. Throws std::system_error when the
    // system has no thread left.
    void startListener();

    // Ends the listener thread and waits for it, about 100 microseconds. Throws std::system_error when there
    // is none to wait for.
    void stopListener();

    // The listener thread's body: queues replies until `flag` is false or the socket fails. While 4,096 wait
    // to be fetched, those that come are dropped (BoardFinder::dropped()), as are those without memory for
    // them.
    void listen(const std::atomic<bool>& flag);

    // Queues one reply. Any thread.
    void PushReply(const std::string& text, const std::string& address);

    // Moves the queued replies to the end of `out`, in the order of arrival. Any thread.
    void GetReplies(std::vector<AddressResponse>& out);
};

} // namespace Orvane
