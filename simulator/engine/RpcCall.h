// One ONC RPC request being answered, in memory: header, arguments, reply.
#pragma once

#include <chrono>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <rpc/rpc.h>
#include <string>
#include <string_view>
#include <utility>

namespace OrvaneSim {

enum class Transport { Udp, Tcp };

// The fixed words of a request.
struct CallHeader {
    std::uint32_t transaction = 0;
    std::uint32_t program = 0;
    std::uint32_t version = 0;
    std::uint32_t procedure = 0;
};

// What becomes of a reply on its way.
struct Delivery {
    int copies = 1;                     // 0 loses the reply
    std::chrono::milliseconds delay{0}; // before the first copy leaves
    std::chrono::milliseconds hold{0};  // until the client's next reply has left, this long at most
    std::function<void(std::string& reply)> change; // of the bytes that leave
    bool otherPort = false;                         // UDP: leaves from another port; lost over TCP
    bool closeConnection = false;                   // TCP: no reply, the connection ends; lost over UDP
    std::optional<std::size_t> cutAfter;  // TCP: so many bytes, then the connection ends; lost over UDP
    bool halfOpen = false;                // TCP: it does not end, but carries nothing any more
    std::chrono::milliseconds trickle{0}; // TCP: between single bytes

    // Whether the reply just leaves.
    bool isPlain() const {
        return copies == 1 && delay.count() == 0 && hold.count() == 0 && !change && !otherPort && !cutAfter &&
               trickle.count() == 0;
    }
};

// The reply to a call that could not be answered while it was served. Belongs to the loop's thread.
class LaterReply {
public:
    explicit LaterReply(std::uint32_t transaction) : transaction_(transaction) {}

    // Encodes a result and sends it the way the request came. Does nothing when that way is gone. To be
    // called once, not while the call is still being served.
    void send(xdrproc_t routine, void* result);

    // Tells how an encoded reply is sent; the transport's part.
    void sendBy(std::function<void(std::string_view reply)> way) { way_ = std::move(way); }

private:
    std::uint32_t transaction_;
    std::function<void(std::string_view)> way_;
};

// The server's end of one request: its arguments are decoded and its reply is encoded in memory; nothing is
// sent from here. Lives on the stack of the loop's thread for the length of one request.
class RpcCall {
public:
    // `message` (one whole request) must outlive the call.
    RpcCall(std::string_view message, Transport transport);
    RpcCall(const RpcCall&) = delete;
    RpcCall& operator=(const RpcCall&) = delete;

    // False when the message is no request at all; such a message gets no answer. A request of another RPC
    // version is one: its refusal is already in `reply()`.
    bool isRequest() const { return isRequest_; }
    const CallHeader& header() const { return header_; }
    Transport transport() const { return transport_; }
    // The encoded arguments.
    std::string_view arguments() const { return arguments_; }

    // Encodes a successful reply with its result's routine, or a system error when that fails.
    void succeed(xdrproc_t routine, void* result);
    // Refuses the request: PROG_UNAVAIL, PROC_UNAVAIL or GARBAGE_ARGS.
    void refuse(accept_stat why);
    // Refuses the program's version; those between `low` and `high` are served.
    void refuseVersion(std::uint32_t low, std::uint32_t high);

    // Promises a reply for later; the procedure then gives none now.
    std::shared_ptr<LaterReply> answerLater();
    // The promised reply, null when none was.
    const std::shared_ptr<LaterReply>& later() const { return later_; }

    // The encoded reply, empty when there is none. Valid until the next call on this thread encodes its own.
    std::string_view reply() const { return reply_; }

    // How the reply is to be sent.
    Delivery delivery;

private:
    bool decodeHeader(std::string_view message);
    bool encodeReply(rpc_msg& message);

    CallHeader header_;
    Transport transport_;
    bool isRequest_ = false;
    std::string_view arguments_;
    std::string_view reply_;
    std::shared_ptr<LaterReply> later_;
};

} // namespace OrvaneSim
