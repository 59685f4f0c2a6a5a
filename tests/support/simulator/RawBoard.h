// A board that is spoken to in bytes, without any client library.
#pragma once

#include "tests/support/simulator/Client.h"
#include "tests/support/simulator/RawSocket.h"

namespace OrvaneSim {

constexpr std::uint32_t kTransaction = 0x1234;

// A request without credentials.
inline std::string request(std::uint32_t program, std::uint32_t procedure, const std::string& arguments,
                           std::uint32_t version = 1, std::uint32_t rpcVersion = 2,
                           std::uint32_t transaction = kTransaction) {
    return words({transaction, CALL, rpcVersion, program, version, procedure, 0, 0, 0, 0}) + arguments;
}

// A ping that returns `value`, under a transaction id of the same number.
inline std::string ping(std::uint32_t value) {
    return request(SIM_SETUP, SIM_PING, words({value}), 1, 2, value);
}

// The answer to that ping.
inline std::string pingReply(std::uint32_t value) {
    return words({value, REPLY, MSG_ACCEPTED, 0, 0, SUCCESS, value});
}

// One record as TCP carries it.
inline std::string record(const std::string& message) {
    return words({0x80000000U | static_cast<std::uint32_t>(message.size())}) + message;
}

class RawBoard : public BoardWithClient {
protected:
    std::uint16_t port(unsigned protocol) {
        Client mapper(board, SIM_PORTMAP, "udp", 2);
        u_int found = 0;
        EXPECT_EQ(mapper.call(sim_portmap_getport_2, sim_Port_Mapping{SIM_SETUP, 1, protocol, 0}, found),
                  RPC_SUCCESS);
        return static_cast<std::uint16_t>(found);
    }
    RawSocket stream() { return RawSocket::stream(board.address(), port(IPPROTO_TCP)); }

    // Sends one datagram and gives the words of the answer.
    std::vector<std::uint32_t> exchange(const std::string& datagram) {
        RawSocket socket = RawSocket::datagram(0);
        socket.sendTo(datagram, board.address(), port(IPPROTO_UDP));
        return wordsOf(socket.receive());
    }

    // Adds a fault of the ping.
    void inject(Fault::Kind kind, std::int64_t value = 0, int count = 1) {
        board.inject({"setup", "ping", kind, count, value});
    }
};

} // namespace OrvaneSim
