// Decoding of requests and encoding of replies with libtirpc's XDR in memory.
#include "simulator/engine/RpcCall.h"

#include <array>
#include <type_traits>
#include <vector>

namespace OrvaneSim {
namespace {

constexpr std::size_t kUsualReply = 65536;
constexpr std::size_t kLargestReply = std::size_t{16} << 20;

/// Room for the reply being encoded, kept from call to call.
std::vector<char>& replyRoom() {
    static thread_local std::vector<char> room(kUsualReply);
    return room;
}

/// The encoded message, good until the next one is encoded on this thread; empty when it does not encode.
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

// XDR in memory takes a mutable pointer for both directions; decoding only reads.
XDR decoder(std::string_view bytes) {
    XDR xdr{};
    // NOLINTNEXTLINE(cppcoreguidelines-pro-type-const-cast): only read
    xdrmem_create(&xdr, const_cast<char*>(bytes.data()), static_cast<u_int>(bytes.size()), XDR_DECODE);
    return xdr;
}

/// Reads a credential or verifier; its content does not matter to a board.
bool skipAuthentication(XDR& xdr) {
    std::array<char, MAX_AUTH_BYTES> body{};
    opaque_auth authentication{};
    authentication.oa_base = body.data();
    return xdr_opaque_auth(&xdr, &authentication) != 0;
}

} // namespace

struct RpcCall::Operations {
    static RpcCall& call(SVCXPRT* handle) { return *static_cast<RpcCall*>(handle->xp_p1); }

    static bool_t arguments(SVCXPRT* handle, xdrproc_t routine, void* record) {
        XDR xdr = decoder(call(handle).arguments_);
        if (routine(&xdr, record))
            return TRUE;
        // The dispatch function forgets a record that did not decode, together with what it holds so far.
        xdr_free(routine, record);
        return FALSE;
    }

    static bool_t freeArguments(SVCXPRT*, xdrproc_t routine, void* record) {
        xdr_free(routine, record);
        return TRUE;
    }

    static bool_t reply(SVCXPRT* handle, rpc_msg* message) {
        return call(handle).encodeReply(*message) ? TRUE : FALSE;
    }

    using Table = std::remove_const_t<std::remove_pointer_t<decltype(SVCXPRT::xp_ops)>>;
    static constexpr Table table() {
        Table operations{};
        operations.xp_getargs = arguments;
        operations.xp_freeargs = freeArguments;
        operations.xp_reply = reply;
        return operations;
    }
};

RpcCall::RpcCall(std::string_view message, Transport transport) : transport_(transport) {
    static constexpr auto operations = Operations::table();
    handle_.xp_ops = &operations;
    handle_.xp_p1 = this;
    // NOLINTNEXTLINE(cppcoreguidelines-prefer-member-initializer): needs the other members
    isRequest_ = decodeHeader(message);
}

RpcCall& RpcCall::of(const svc_req* request) {
    return Operations::call(request->rq_xprt);
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
    rpc_msg message{};
    message.rm_direction = REPLY;
    message.rm_reply.rp_stat = MSG_ACCEPTED;
    message.acpted_rply.ar_stat = SUCCESS;
    message.acpted_rply.ar_results.proc = routine;
    message.acpted_rply.ar_results.where = static_cast<char*>(result);
    way_(encode(message, transaction_));
}

void RpcCall::serve(Dispatch dispatch, void* context) {
    context_ = context;
    svc_req request{};
    request.rq_prog = header_.program;
    request.rq_vers = header_.version;
    request.rq_proc = header_.procedure;
    request.rq_xprt = &handle_;
    dispatch(&request, &handle_);
}

void RpcCall::refuseProgram() {
    svcerr_noprog(&handle_);
}

void RpcCall::refuseVersion(std::uint32_t low, std::uint32_t high) {
    svcerr_progvers(&handle_, low, high);
}

} // namespace OrvaneSim
