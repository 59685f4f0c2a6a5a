// The discovery exchange on the network: questions to the group, answers to this host.
#pragma once

#include "ov_sys/Interface/foundation/FileDescriptor.h"
#include "ov_sys/rack/search/Announcement.h"

#include <optional>

namespace Orvane::RackSearch {

// Boards answer to a fixed port of the host that asked. Of several sockets there the system gives an answer
// to the one that was bound last. Never blocks; one thread.
class AnswerSocket {
public:
    // False, with errno, when the port is not to be had.
    bool open();
    void close() noexcept { socket_.reset(); }
    int descriptor() const noexcept { return socket_.get(); }

    // Asks every board on every interface of this host but loop-back ones. What cannot be sent is as good as
    // lost.
    void ask() const;
    std::optional<Answer> receive() const;

private:
    FileDescriptor socket_;
};

} // namespace Orvane::RackSearch
