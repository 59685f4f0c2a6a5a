// The one UDP socket through which a board's programs and its port mapper are reached.
#pragma once

#include "ov_sys/Interface/foundation/DatagramTrain.h"
#include "ov_sys/Interface/foundation/FileDescriptor.h"

#include <cstddef>
#include <netinet/in.h>
#include <utility>

namespace Orvane::RackLink {

// In bytes: the largest request or reply, header included.
constexpr std::size_t kLargestDatagram = 8800;

// Never blocks. One thread at a time.
class DatagramSocket {
public:
    // False, with errno, when there is no socket to be had; does nothing when it is open.
    bool open() noexcept;
    int descriptor() const noexcept { return socket_.get(); }

    // From now on what arrives is to be received as trains.
    void expectTrains() noexcept {
        if (!std::exchange(expectsTrains_, true))
            ArrivedTrain::expect(socket_.get());
    }
    bool expectsTrains() const noexcept { return expectsTrains_; }

    // Whether the system took it. What the network does with it is another matter.
    bool send(const char* bytes, std::size_t length, const sockaddr_in& to) const noexcept;
    // Length of the next datagram, whose sender goes to `from`; -1 when there is none.
    ssize_t receive(char* buffer, std::size_t capacity, sockaddr_in& from) const noexcept;

private:
    FileDescriptor socket_;
    bool expectsTrains_ = false;
};

} // namespace Orvane::RackLink
