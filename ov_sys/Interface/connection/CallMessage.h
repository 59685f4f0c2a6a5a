// One RPC call as bytes: the request that is sent, and what its reply says.
#pragma once

#include <arpa/inet.h>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <rpc/rpc.h>

namespace Orvane {

// The XDR routine of no data at all.
inline bool_t xdrNothing(XDR*, ...) {
    return TRUE;
}

// A call of one procedure, without credentials. The argument and result records stay the caller's.
class CallMessage {
public:
    struct Target {
        std::uint32_t program;
        std::uint32_t version;
        std::uint32_t procedure;
    };

    CallMessage(std::uint32_t id, Target target, xdrproc_t encode, void* argument, xdrproc_t decode,
                void* result) noexcept
        : id_(id), target_(target), encode_(encode), argument_(argument), decode_(decode), result_(result) {}

    // In bytes, as encodeTo() will need. Asks the argument's XDR routine.
    std::size_t size() const;

    // Writes the request to `buffer` and returns its length, 0 when it does not fit or cannot be encoded.
    // `buffer` is aligned to 4 bytes.
    std::size_t encodeTo(char* buffer, std::size_t capacity) const;

    // Whether a message is long enough for a transaction id, and has this call's.
    bool isAnsweredBy(const char* message, std::size_t length) const noexcept {
        const std::uint32_t id = htonl(id_);
        return length >= sizeof id && std::memcmp(message, &id, sizeof id) == 0;
    }

    // Reads the reply: the outcome, with its details in `error`; the result is decoded only after
    // RPC_SUCCESS, and with RPC_CANTDECODERES perhaps in part.
    clnt_stat decodeFrom(char* message, std::size_t length, rpc_err& error) const;

private:
    std::uint32_t id_; // transaction id, which the reply repeats
    Target target_;
    xdrproc_t encode_;
    void* argument_;
    xdrproc_t decode_;
    void* result_;
};

} // namespace Orvane
