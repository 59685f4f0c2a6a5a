// The far end of a transport under test, and the call that both transports are asked to make.
#pragma once

#include "ov_sys/Interface/connection/CallMessage.h"
#include "ov_sys/Interface/foundation/FileDescriptor.h"
#include "ov_sys/Interface/rpc_protocol/Codec.h"
#include "tests/support/rpc_protocol/WireBytes.h"

#include <array>
#include <cstdarg>
#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/socket.h>

namespace OrvaneTest {

// Two connected sockets, one for the transport and one for the test.
class SocketPair {
public:
    explicit SocketPair(int type) {
        std::array<int, 2> ends{-1, -1};
        EXPECT_EQ(socketpair(AF_UNIX, type | SOCK_CLOEXEC, 0, ends.data()), 0);
        own_.reset(ends[0]);
        peer_.reset(ends[1]);
    }

    int own() const { return own_.get(); }
    int peer() const { return peer_.get(); }
    void closePeer() { peer_.reset(); }

    void sendFromPeer(const WireBytes& bytes) const {
        EXPECT_EQ(send(peer(), bytes.data(), bytes.size(), MSG_NOSIGNAL), static_cast<ssize_t>(bytes.size()));
    }

    // Blocks for the next bytes that the transport sends.
    WireBytes receiveAtPeer() const {
        WireBytes bytes(65536);
        const ssize_t length = recv(peer(), bytes.data(), bytes.size(), 0);
        EXPECT_GT(length, 0);
        bytes.resize(length > 0 ? static_cast<std::size_t>(length) : 0);
        return bytes;
    }

private:
    Orvane::FileDescriptor own_;
    Orvane::FileDescriptor peer_;
};

// Procedure 3 of version 2 of program 1: an integer there and an integer back.
struct IntegerCall {
    int argument = 5;
    int result = -1;
    Orvane::CallMessage message;

    explicit IntegerCall(std::uint32_t id)
        : message(id, {1, 2, 3}, Orvane::xdrProcedure<int>, &argument, Orvane::xdrProcedure<int>, &result) {}
};

// A call whose argument is `length` opaque bytes and that has no result.
struct OpaqueCall {
    WireBytes bytes;
    Orvane::CallMessage message;

    explicit OpaqueCall(std::size_t length)
        : bytes(length, 1), message(1, {1, 2, 3}, encode, this, Orvane::xdrNothing, nullptr) {}

private:
    static bool_t encode(XDR* stream, ...) {
        va_list arguments;
        va_start(arguments, stream);
        OpaqueCall* call = va_arg(arguments, OpaqueCall*);
        va_end(arguments);
        auto* data = reinterpret_cast<char*>(call->bytes.data());
        auto length = static_cast<u_int>(call->bytes.size());
        return xdr_bytes(stream, &data, &length, ~u_int{0});
    }
};

// The request of IntegerCall(7) as it goes over the wire.
inline WireBytes requestOfCallSeven() {
    return wire("00000007 00000000 00000002 00000001 00000002 00000003"
                "00000000 00000000 00000000 00000000 00000005");
}

// An accepted call's reply with a result.
inline WireBytes replyTo(unsigned id, unsigned result) {
    WireBytes bytes;
    for (const unsigned word : {id, 1U, 0U, 0U, 0U, 0U, result})
        appendWord(bytes, word);
    return bytes;
}

} // namespace OrvaneTest
