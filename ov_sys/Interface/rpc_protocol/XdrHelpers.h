// The variable-length members that wire records are made of: counted arrays, opaque data and strings.
#pragma once

#include "ov_sys/Interface/rpc_protocol/Codec.h"
#include "ov_sys/Interface/rpc_protocol/DecodeGuard.h"
#include "ov_sys/Interface/rpc_protocol/KeptMembers.h"

#include <algorithm>
#include <cstddef>
#include <cstdlib>
#include <cstring>

namespace Orvane::Xdr {

// Wire forms are those of xdr_array, xdr_bytes and xdr_string without a maximum. Encoding, and decoding into
// a preset pointer that no DecodeGuard announces, are left to those. What differs is decoding
// - into an announced buffer: see DecodeGuard.h;
// - into a null pointer: memory grows with the data that really arrives, and what a decode that fails
//   half-way leaves behind is freed by the XDR_FREE run of the same member.

// In bytes: memory for what is to come is taken up to this size at first, and then doubled.
constexpr std::size_t kFirstAllocation = 65536;

// xdr_bytes: `length` bytes at `bytes`.
bool_t bytes(XDR* stream, u_int& length, char*& bytes);

// xdr_string: zero-terminated characters at `text`.
bool_t string(XDR* stream, char*& text);

// Reads one value and drops it, without allocating.
template <class T>
bool_t discard(XDR* stream) {
    T value{};
    return Codec<T>::run(stream, &value);
}
template <>
bool_t discard<StringArrayEntry>(XDR* stream);

// xdr_array over words to be encoded, all at once where the stream allows it: blocks are long.
bool_t encodeWords(XDR* stream, u_int count, u_int* values);

// Decodes as many words as can be had at once and returns their number, which is `count` or 0.
u_int decodeWords(XDR* stream, u_int count, u_int* values);

// Decodes up to `capacity` elements to `values` and reads past the others; `count` becomes the board's.
template <class T>
bool_t decodeWithin(XDR* stream, u_int& count, T* values, std::size_t capacity) {
    if (!xdr_u_int(stream, &count))
        return FALSE;
    u_int i = 0;
    if constexpr (std::is_same_v<T, u_int>)
        i = decodeWords(stream, static_cast<u_int>(std::min<std::size_t>(count, capacity)), values);
    for (; i < count; ++i)
        if (!(i < capacity ? Codec<T>::run(stream, values + i) : discard<T>(stream)))
            return FALSE;
    return TRUE;
}

// Enlarges malloc'ed `values` from `room` elements to at most `wanted`; the new ones are zero, so that
// freeing an element that was never decoded does nothing. False, with all as it was, when memory runs out.
template <class T>
bool grow(T*& values, u_int& room, u_int wanted) {
    const std::size_t doubled = std::max<std::size_t>(kFirstAllocation / sizeof(T), std::size_t{room} * 2);
    const std::size_t newRoom = std::min<std::size_t>(wanted, doubled);
    void* const memory = std::realloc(values, newRoom * sizeof(T));
    if (memory == nullptr)
        return false;
    values = static_cast<T*>(memory);
    std::memset(static_cast<void*>(values + room), 0, (newRoom - room) * sizeof(T));
    room = static_cast<u_int>(newRoom);
    return true;
}

// Decodes to fresh memory at `values`, which is null before. After a failure `count` tells how many elements
// are there to be freed, the half-decoded one included.
template <class T>
bool_t decodeAllocating(XDR* stream, u_int& count, T*& values) {
    u_int wanted = 0;
    if (!xdr_u_int(stream, &wanted))
        return FALSE;
    u_int room = 0;
    for (count = 0; count < wanted;) {
        if (count == room && !grow(values, room, wanted))
            return FALSE;
        if (!Codec<T>::run(stream, values + count++))
            return FALSE;
    }
    return TRUE;
}

// Frees what a decode allocated inside the elements of a caller's own buffer.
template <class T>
void freeElements(XDR* stream, std::size_t count, T* values) {
    for (std::size_t i = 0; i < count; ++i)
        Codec<T>::run(stream, values + i);
}

// xdr_array itself, but for lists that are not to be freed.
template <class Counted>
bool_t plainArray(XDR* stream, Counted& member) {
    auto& [count, values] = member;
    using Element = std::remove_pointer_t<std::remove_reference_t<decltype(values)>>;
    if (stream->x_op == XDR_FREE && isKept(&values))
        return TRUE;
    char* raw = reinterpret_cast<char*>(values);
    const bool_t done = xdr_array(stream, &raw, &count, ~u_int{0}, sizeof(Element), xdrProcedure<Element>);
    values = reinterpret_cast<Element*>(raw);
    return done;
}

// xdr_array over a record's pair of count and pointer.
template <class Counted>
inline bool_t array(XDR* stream, Counted& member) {
    auto& [count, values] = member;
    using Element = std::remove_pointer_t<std::remove_reference_t<decltype(values)>>;
    std::size_t capacity = 0;
    if constexpr (std::is_same_v<Element, u_int>)
        if (stream->x_op == XDR_ENCODE)
            return encodeWords(stream, count, values);
    if (stream->x_op == XDR_DECODE && values == nullptr)
        return decodeAllocating(stream, count, values);
    if (stream->x_op == XDR_ENCODE || !DecodeGuard::announced(values, capacity))
        return plainArray(stream, member);
    if (stream->x_op == XDR_DECODE)
        return decodeWithin(stream, count, values, capacity);
    freeElements(stream, std::min<std::size_t>(count, capacity), values);
    return TRUE;
}

// xdr_bytes over a record's pair of length and pointer.
template <class Counted>
bool_t opaque(XDR* stream, Counted& member) {
    auto& [length, data] = member;
    return bytes(stream, length, data);
}

} // namespace Orvane::Xdr
