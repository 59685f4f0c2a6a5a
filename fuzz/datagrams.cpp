// What may arrive at the socket of a datagram call before its own reply does.
#include "fuzz/Input.h"
#include "fuzz/ReadCall.h"
#include "ov_sys/Interface/connection/DatagramTransport.h"

#include <algorithm>
#include <array>
#include <sys/socket.h>
#include <thread>
#include <unistd.h>

namespace {

using namespace OrvaneFuzz;

struct Datagram {
    bool ownId;
    Bytes bytes;
};

std::vector<Datagram> datagramsOf(Input input) {
    constexpr std::size_t kMost = 9000; // more than a call takes
    std::vector<Datagram> all;
    while (input.left() > 0) {
        const unsigned flags = input.byte();
        std::size_t length = std::size_t{input.byte()} * 256;
        length = (length + input.byte()) % kMost;
        all.push_back({(flags & 1U) != 0, input.bytes(length)});
    }
    return all;
}

// Waits for the request and answers with the datagrams and the right reply.
void answer(int peer, std::vector<Datagram> datagrams) {
    std::array<unsigned char, 256> request{};
    if (recv(peer, request.data(), request.size(), 0) < 4)
        return;
    Bytes good(32); // accepted, no verifier, success, status 0, no data
    good[7] = 1;
    datagrams.push_back({true, good});
    for (Datagram& each : datagrams) {
        if (each.ownId)
            std::copy_n(request.begin(), std::min<std::size_t>(4, each.bytes.size()), each.bytes.begin());
        if (send(peer, each.bytes.data(), each.bytes.size(), MSG_NOSIGNAL) < 0)
            return; // the call has ended
    }
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    int ends[2];
    mustHold(socketpair(AF_UNIX, SOCK_DGRAM | SOCK_CLOEXEC, 0, ends) == 0);
    std::thread peer(answer, ends[1], datagramsOf(Input(data, size)));
    {
        ReadCall call(0x01020304);
        Orvane::DatagramTransport transport(ends[0]);
        rpc_err error{};
        const auto deadline = Orvane::Deadline::after(std::chrono::seconds(60));
        const clnt_stat status = transport.call(call.message, deadline, error);
        mustHold(status == error.re_status);
        mustHold(status != RPC_TIMEDOUT); // the right reply comes last
    }
    shutdown(ends[0], SHUT_RDWR);
    close(ends[0]);
    peer.join();
    close(ends[1]);
    return 0;
}
