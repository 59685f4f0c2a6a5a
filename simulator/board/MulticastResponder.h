// Answers multicast discovery requests for every board of a lab.
#pragma once

#include "simulator/board/Discovery.h"
#include "simulator/engine/EventLoop.h"
#include "simulator/engine/Sockets.h"

#include <deque>
#include <map>
#include <string>

namespace OrvaneSim {

// One socket in the discovery group; each board answers from its own address. Many replies are spread over
// time, so that they do not overrun the requester's receive buffer. Belongs to the loop's thread.
class MulticastResponder {
public:
    // `loop` must outlive the responder. Throws std::system_error.
    explicit MulticastResponder(EventLoop& loop);

    // Lets a board hear and answer what is sent from now on; `discovery` and `faults` must live until
    // `remove`.
    void add(const std::string& address, DiscoveryResponder& discovery, FaultQueue& faults);
    void remove(const std::string& address);

private:
    struct Member {
        sockaddr_in source{};
        DiscoveryResponder* discovery = nullptr;
        FaultQueue* faults = nullptr;
    };
    struct Reply {
        sockaddr_in source{};
        sockaddr_in requester{};
        std::string text;
    };
    void join(const in_addr& address, int interface);
    bool receive();
    // Sends it with the next ones, or after a time.
    void queue(Reply reply, std::chrono::milliseconds delay);
    void sendSome();
    void send(const Reply& reply);

    EventLoop& loop_;
    Orvane::FileDescriptor socket_;
    std::map<std::string, Member> members_;
    std::deque<Reply> replies_;
    EventLoop::Watch watch_;
    EventLoop::Life life_ = EventLoop::makeLife();
};

} // namespace OrvaneSim
