// The ports of several programs of one board, asked for all at once before the first of them is connected.
#pragma once

#include "ov_sys/Interface/connection/PortMapperCall.h"
#include "ov_sys/Interface/foundation/Deadline.h"
#include "ov_sys/Interface/foundation/FileDescriptor.h"

#include <array>
#include <cstdint>
#include <initializer_list>
#include <netinet/in.h>
#include <optional>
#include <string>

namespace Orvane {

// Sends its questions when it is made and spares the programs that this thread opens while it lives a round
// trip each. What is not answered within 100 ms of that, or not well, is asked again by whoever opens the
// program, who also tells what is wrong. Made and destroyed by one thread, the last made first; throws
// nothing.
class PortsAhead {
public:
    struct Program {
        unsigned long number;
        int protocol; // IPPROTO_UDP or IPPROTO_TCP
    };

    static constexpr std::size_t kMost = 8;

    // Of `host` when it is dotted IPv4 text, otherwise nothing is asked: a name may take long to resolve.
    // `programs` are kMost at most.
    PortsAhead(const std::string& host, unsigned long version,
               std::initializer_list<Program> programs) noexcept;
    ~PortsAhead();
    PortsAhead(const PortsAhead&) = delete;
    PortsAhead& operator=(const PortsAhead&) = delete;

    // The port that `board` has told this thread, in host order; 0 when it was not asked or has not told one.
    static std::uint16_t portOf(in_addr board, unsigned long program, unsigned long version,
                                int protocol) noexcept;

private:
    void ask() noexcept;
    std::uint16_t awaited(const std::optional<PortMapperCall>& call) noexcept;
    bool takeAnswer(const Deadline& deadline) noexcept;

    PortsAhead* const outer_;
    in_addr board_{};
    FileDescriptor socket_; // none when there is nothing to wait for
    Deadline deadline_;
    std::array<std::optional<PortMapperCall>, kMost> calls_;
};

} // namespace Orvane
