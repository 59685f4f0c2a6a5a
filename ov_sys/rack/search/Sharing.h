// How the programs of a host that search at the same time get the same answers.
#pragma once

#include "ov_sys/Interface/foundation/FileDescriptor.h"
#include "ov_sys/rack/search/Announcement.h"

#include <cstddef>
#include <string>
#include <vector>

namespace Orvane::RackSearch {

// One of them listens on the network and tells the others, by a local socket whose name only one can have;
// the name is free again when its holder ends, however it does. Never blocks; one thread each.

// The side of the one that listens.
class Speaker {
public:
    // False when somebody else has the name.
    bool open();
    bool isOpen() const noexcept { return static_cast<bool>(socket_); }
    int descriptor() const noexcept { return socket_.get(); }
    // To be told to everybody who listens, also later.
    void tell(const Answer& answer);
    // Tells everybody that it is still there.
    void beat();
    // Lets those in who want to listen, and sends what their buffers take. False when there is more for them.
    bool step();

private:
    struct Audience {
        FileDescriptor socket;
        std::size_t told = 0; // messages
    };

    void admit();
    bool send(Audience& one) const;

    FileDescriptor socket_;
    std::vector<std::string> messages_;
    std::vector<Audience> audience_;
};

// The side of the others.
class Listener {
public:
    enum class Heard { Nothing, Beat, Answer, End };

    // False when nobody speaks.
    bool open();
    void close() noexcept { socket_.reset(); }
    bool isOpen() const noexcept { return static_cast<bool>(socket_); }
    int descriptor() const noexcept { return socket_.get(); }
    Heard hear(Answer& answer);

private:
    FileDescriptor socket_;
};

} // namespace Orvane::RackSearch
