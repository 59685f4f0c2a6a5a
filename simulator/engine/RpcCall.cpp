// Decoding of requests and encoding of replies with libtirpc's XDR in memory.
#include "simulator/engine/RpcCall.h"

#include <array>
#include <vector>

namespace OrvaneSim {
namespace {

constexpr std::size_t kFirstReplyRoom = 65536;
constexpr std::size_t kLargestReply = std::size_t{16} << 20;

// Room for the reply being encoded, kept from call to call.
std::vector<char>& replyRoom() {
    static thread_local std::vector<char> room(kFirstReplyRoom);
    return room;
}

// The encoded message, good until the next one is encoded on this thread; empty when it does not encode.
std::string_view encode(rpc_msg& message, std::uint32_t transaction) {
    message.rm_xid = transaction;
    std::vector<char>& room = replyRoom();
    for (;;) {
        XDR xdr{};
        xdrmem_create(&xdr, room.data(), static_cast<u_int>(room.size()), XDR_ENCODE);
        if (xdr_replymsg(&xdr, &message))
            return {room.data(), xdr_getpos(&xdr)};
        if (room.size() >= kLargestReply)
            return {};
        room.resize(kLargestReply);
    }
}

rpc_msg accepted(accept_stat status) {
    rpc_msg message{};
    message.rm_direction = REPLY;
    message.rm_reply.rp_stat = MSG_ACCEPTED;
    message.acpted_rply.ar_stat = status;
    return message;
}

// XDR in memory takes a mutable pointer for both directions; decoding only reads.
XDR decoder(std::string_view bytes) {
    XDR xdr{};
    // NOLINTNEXTLINE(cppcoreguidelines-pro-type-const-cast): only read
    xdrmem_create(&xdr, const_cast<char*>(bytes.data()), static_cast<u_int>(bytes.size()), XDR_DECODE);
    return xdr;
}

// Reads a credential or verifier; its content does not matter to a board.
bool skipAuthentication(XDR& xdr) {
    std::array<char, MAX_AUTH_BYTES> body{};
    opaque_auth authentication{};
    authentication.oa_base = body.data();
    return xdr_opaque_auth(&xdr, &authentication) != 0;
}

} // namespace

RpcCall::RpcCall(std::string_view message, Transport transport) : transport_(transport) {
    // NOLINTNEXTLINE(cppcoreguidelines-prefer-member-initializer): needs the other members
    isRequest_ = decodeHeader(message);
}

bool RpcCall::decodeHeader(std::string_view message) {
    XDR xdr = decoder(message);
    u_int direction = 0;
    u_int rpcVersion = 0;
    if (!xdr_u_int(&xdr, &header_.transaction) || !xdr_u_int(&xdr, &direction) || direction != CALL ||
        !xdr_u_int(&xdr, &rpcVersion))
        return false;
    if (rpcVersion != RPC_MSG_VERSION) {
        rpc_msg refusal{};
        refusal.rm_direction = REPLY;
        refusal.rm_reply.rp_stat = MSG_DENIED;
        refusal.rjcted_rply.rj_stat = RPC_MISMATCH;
        refusal.rjcted_rply.rj_vers.low = RPC_MSG_VERSION;
        refusal.rjcted_rply.rj_vers.high = RPC_MSG_VERSION;
        return encodeReply(refusal);
    }
    if (!xdr_u_int(&xdr, &header_.program) || !xdr_u_int(&xdr, &header_.version) ||
        !xdr_u_int(&xdr, &header_.procedure) || !skipAuthentication(xdr) || !skipAuthentication(xdr))
        return false;
    arguments_ = message.substr(xdr_getpos(&xdr));
    return true;
}

bool RpcCall::encodeReply(rpc_msg& message) {
    reply_ = encode(message, header_.transaction);
    return !reply_.empty();
}

std::shared_ptr<LaterReply> RpcCall::answerLater() {
    later_ = std::make_shared<LaterReply>(header_.transaction);
    return later_;
}

void LaterReply::send(xdrproc_t routine, void* result) {
    rpc_msg message = accepted(SUCCESS);
    message.acpted_rply.ar_results = {static_cast<char*>(result), routine};
    way_(encode(message, transaction_));
}

void RpcCall::succeed(xdrproc_t routine, void* result) {
    rpc_msg message = accepted(SUCCESS);
    message.acpted_rply.ar_results = {static_cast<char*>(result), routine};
    if (!encodeReply(message))
        refuse(SYSTEM_ERR);
}

void RpcCall::refuse(accept_stat why) {
    rpc_msg message = accepted(why);
    encodeReply(message);
}

void RpcCall::refuseVersion(std::uint32_t low, std::uint32_t high) {
    rpc_msg message = accepted(PROG_MISMATCH);
    message.acpted_rply.ar_vers = {low, high};
    encodeReply(message);
}

} // namespace OrvaneSim
