// Requests and replies, coded by libtirpc's routines.
#include "ov_sys/Interface/connection/CallMessage.h"

#include <arpa/inet.h>
#include <array>
#include <cstring>

namespace Orvane {
namespace {

// Everything before the argument: id, CALL, RPC version, program, version, procedure, and no credentials and
// no verifier, a flavour and a length each.
using Header = std::array<std::uint32_t, 10>;

std::uint32_t wire(std::uint32_t value) noexcept {
    return htonl(value);
}

// Whether the reply says that the call was accepted. What the peer sent there need not be in the enumeration.
bool isAccepted(const rpc_msg& reply) noexcept {
    int sent = 0;
    static_assert(sizeof sent == sizeof reply.rm_reply.rp_stat);
    std::memcpy(&sent, &reply.rm_reply.rp_stat, sizeof sent);
    return sent == MSG_ACCEPTED;
}

// A refused call has no verifier: other members share its place.
void freeVerifier(rpc_msg& reply) {
    if (!isAccepted(reply) || reply.acpted_rply.ar_verf.oa_base == nullptr)
        return;
    XDR stream{};
    stream.x_op = XDR_FREE;
    xdr_opaque_auth(&stream, &reply.acpted_rply.ar_verf);
}

} // namespace

std::size_t CallMessage::size() const {
    return sizeof(Header) + xdr_sizeof(encode_, argument_);
}

std::size_t CallMessage::encodeTo(char* buffer, std::size_t capacity) const {
    const Header header{wire(id_),
                        wire(CALL),
                        wire(RPC_MSG_VERSION),
                        wire(target_.program),
                        wire(target_.version),
                        wire(target_.procedure),
                        wire(AUTH_NONE),
                        0,
                        wire(AUTH_NONE),
                        0};
    if (capacity < sizeof header)
        return 0;
    std::memcpy(buffer, header.data(), sizeof header);
    XDR stream;
    xdrmem_create(&stream, buffer + sizeof header, static_cast<u_int>(capacity - sizeof header), XDR_ENCODE);
    return encode_(&stream, argument_) ? sizeof header + XDR_GETPOS(&stream) : 0;
}

clnt_stat CallMessage::decodeFrom(char* message, std::size_t length, rpc_err& error) const {
    XDR stream;
    xdrmem_create(&stream, message, static_cast<u_int>(length), XDR_DECODE);
    rpc_msg reply{};
    reply.acpted_rply.ar_results.proc = xdrNothing;
    if (xdr_replymsg(&stream, &reply)) {
        _seterr_reply(&reply, &error);
        if (error.re_status == RPC_SUCCESS && !decode_(&stream, result_))
            error.re_status = RPC_CANTDECODERES;
    } else {
        error.re_status = RPC_CANTDECODERES;
    }
    freeVerifier(reply);
    return error.re_status;
}

} // namespace Orvane
