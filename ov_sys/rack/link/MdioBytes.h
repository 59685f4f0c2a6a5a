// Messages of register reads as they usually are, coded without the detour through XDR streams.
#pragma once

#include "ov_sys/rack/link/Call.h"

#include <arpa/inet.h>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <optional>
#include <rpc/rpc.h>

namespace Orvane::RackLink {

// A read is coded some thousand times a second; whatever is out of the ordinary is left to CallMessage.

inline void putWord(char*& place, std::uint32_t word) noexcept {
    word = htonl(word);
    std::memcpy(place, &word, sizeof word);
    place += sizeof word;
}

inline std::uint32_t wordAt(const char* bytes, std::size_t index) noexcept {
    std::uint32_t word = 0;
    std::memcpy(&word, bytes + index * sizeof word, sizeof word);
    return ntohl(word);
}

// Words as the wire has them, from the host's and back; in steps of several where the processor can.
inline void putWords(char* __restrict to, const std::uint32_t* __restrict from, std::size_t count) noexcept {
    for (std::size_t i = 0; i < count; ++i) {
        const std::uint32_t word = htonl(from[i]);
        std::memcpy(to + i * sizeof word, &word, sizeof word);
    }
}
inline void getWords(std::uint32_t* __restrict to, const char* __restrict from, std::size_t count) noexcept {
    for (std::size_t i = 0; i < count; ++i)
        to[i] = wordAt(from, i);
}

// The request of a list read: header, session word, addresses. Its length, 0 when it does not fit.
inline std::size_t encodeRead(const Call& call, const std::uint32_t* addresses, std::size_t count,
                              char* buffer, std::size_t capacity) noexcept {
    constexpr std::size_t kHead = 12; // words before the addresses
    const std::size_t length = (kHead + count) * sizeof(std::uint32_t);
    if (length > capacity)
        return 0;
    char* place = buffer;
    for (const std::uint32_t word : {call.id, std::uint32_t{CALL}, std::uint32_t{RPC_MSG_VERSION},
                                     numberOf(call.program), versionOf(call.program), call.procedure, 0U, 0U,
                                     0U, 0U, call.identity, static_cast<std::uint32_t>(count)})
        putWord(place, word);
    putWords(place, addresses, count);
    return length;
}

// What a reply to a read comes to, its values in `values`; nothing when it is not made as it usually is:
// accepted, without verifier, successful, a status and a list that ends with the message.
inline std::optional<Trouble> decodeRead(const char* reply, std::size_t length, std::uint32_t* values,
                                         std::size_t count) noexcept {
    constexpr std::size_t kHead = 8;                  // words before the values
    static constexpr char kUsual[] = {0, 0, 0, REPLY, // after the transaction id
                                      0, 0, 0, MSG_ACCEPTED, 0, 0, 0, AUTH_NONE, 0,
                                      0, 0, 0, // length of the verifier
                                      0, 0, 0, SUCCESS};
    if (length < kHead * sizeof(std::uint32_t) ||
        std::memcmp(reply + sizeof(std::uint32_t), kUsual, sizeof kUsual) != 0)
        return std::nullopt;
    const std::size_t sent = wordAt(reply, 7);
    if (length != (kHead + sent) * sizeof(std::uint32_t))
        return std::nullopt;
    if (const auto status = static_cast<std::int32_t>(wordAt(reply, 6)); status != 0)
        return Trouble{FailureKind::BoardError, status};
    if (sent != count)
        return Trouble{FailureKind::BadReply};
    getWords(values, reply + kHead * sizeof(std::uint32_t), count);
    return Trouble{};
}

} // namespace Orvane::RackLink
