// What a peer may send on a stream: records, fragments and none of these, over several calls.
#include "fuzz/Input.h"
#include "fuzz/ReadCall.h"
#include "ov_sys/Interface/connection/StreamTransport.h"

#include <sys/socket.h>
#include <unistd.h>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    using namespace OrvaneFuzz;
    constexpr std::size_t kMost = 65536; // goes into the socket without anyone who reads
    constexpr std::uint32_t kFirstId = 7;
    Input input(data, size);
    const unsigned calls = 1 + input.byte() % 4U;
    const Bytes sent = input.bytes(kMost);
    int ends[2];
    mustHold(socketpair(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0, ends) == 0);
    mustHold(send(ends[1], sent.data(), sent.size(), MSG_NOSIGNAL) == static_cast<ssize_t>(sent.size()));
    shutdown(ends[1], SHUT_WR);
    Orvane::StreamTransport transport(ends[0]);
    for (std::uint32_t i = 0; i < calls; ++i) {
        ReadCall call(kFirstId + i);
        rpc_err error{};
        const auto deadline = Orvane::Deadline::after(std::chrono::seconds(60));
        const clnt_stat status = transport.call(call.message, deadline, error);
        mustHold(status == error.re_status);
        mustHold(status != RPC_TIMEDOUT); // the stream has ended
    }
    close(ends[0]);
    close(ends[1]);
    return 0;
}
