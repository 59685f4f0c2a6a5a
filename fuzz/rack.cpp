// What a rack takes from the network: replies by datagram and over a stream, announcements of boards.
#include "fuzz/Input.h"
#include "ov_sys/rack/link/Endpoint.h"
#include "ov_sys/rack/link/MdioCalls.h"
#include "ov_sys/rack/link/SetupCalls.h"
#include "ov_sys/rack/link/Stream.h"
#include "ov_sys/rack/search/Announcement.h"

#include <array>
#include <cstring>
#include <string>
#include <sys/socket.h>
#include <unistd.h>
#include <vector>

namespace {

using namespace Orvane;
using namespace OrvaneFuzz;
using RackLink::Trouble;

// Decodes in place, as the bytes of a socket are.
template <class Call>
Trouble decoded(Call& call, const Bytes& bytes) {
    alignas(std::uint32_t) std::array<char, 8800> room;
    std::memcpy(room.data(), bytes.data(), bytes.size());
    return call.decode(room.data(), bytes.size());
}

void reply(Input input) {
    constexpr std::uint32_t kUntouched = 0xA5A5A5A5;
    RackLink::Session session;
    std::vector<std::uint32_t> values(input.byte() % 8U, kUntouched);
    RackLink::ReadCall read(Programs::MDIOProcedure::Read, RackLink::Effect::Reads, session, values.data(),
                            values.size());
    RackLink::OpenCall open(session);
    RackLink::LookUpCall lookUp(RackLink::Program::Mdio);
    RackLink::PingCall ping(session);
    const Bytes bytes = input.bytes(8800);
    decoded(read, bytes);
    decoded(open, bytes);
    decoded(lookUp, bytes);
    decoded(ping, bytes);
}

// A stream that is connected to a listener in this process, which sends the bytes and ends.
void stream(Input input) {
    const int listener = socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0);
    sockaddr_in here = RackLink::endpoint(htonl(INADDR_LOOPBACK), 0);
    socklen_t size = sizeof here;
    mustHold(bind(listener, reinterpret_cast<const sockaddr*>(&here), sizeof here) == 0);
    mustHold(listen(listener, 1) == 0);
    mustHold(getsockname(listener, reinterpret_cast<sockaddr*>(&here), &size) == 0);
    RackLink::Stream stream;
    mustHold(stream.open(here));
    const int peer = accept4(listener, nullptr, nullptr, SOCK_CLOEXEC);
    const Bytes sent = input.bytes(32768);
    mustHold(send(peer, sent.data(), sent.size(), MSG_NOSIGNAL) == static_cast<ssize_t>(sent.size()));
    close(peer);
    close(listener);
    std::size_t taken = 0;
    std::string message;
    for (bool lives = true; lives;) {
        lives = stream.isOpen() && stream.step();
        while (stream.take(message))
            taken += message.size();
    }
    mustHold(taken <= sent.size());
}

void announcement(Input input) {
    const Bytes bytes = input.bytes(255);
    const std::vector<FoundBoard> boards =
        RackSearch::boardsOf({0x0100007F, std::string(bytes.begin(), bytes.end())});
    for (const FoundBoard& one : boards) {
        mustHold(!one.serial.empty() && !one.ports.empty());
        for (const char letter : one.serial)
            mustHold(letter >= ' ' && letter <= '~');
        for (const unsigned port : one.ports)
            mustHold(port < 20);
    }
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    Input input(data, size);
    switch (input.byte() % 3U) {
    case 0:
        reply(input);
        break;
    case 1:
        stream(input);
        break;
    default:
        announcement(input);
    }
    return 0;
}
