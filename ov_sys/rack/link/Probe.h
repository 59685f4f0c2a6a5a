// Asks which board is at an address.
#pragma once

#include "ov_sys/Interface/foundation/FileDescriptor.h"

#include <netinet/in.h>
#include <poll.h>
#include <string>

namespace Orvane::RackLink {

// One question over TCP, at the port of discovery. Never blocks and raises no signal. One thread.
class Probe {
public:
    enum class State { Waiting, Answered, Failed };

    // Begins to ask; what goes wrong shows at the next step.
    explicit Probe(const sockaddr_in& whom);

    State step();
    // What was said of itself; whole when Answered.
    const std::string& answer() const noexcept { return answer_; }
    // What to wait for.
    pollfd watch() const noexcept;

private:
    bool ask();

    FileDescriptor socket_;
    bool asked_ = false;
    std::string answer_;
};

} // namespace Orvane::RackLink
