// The members that are not decoded or encoded element by element: opaque data, strings and lists of words.
#include "ov_sys/Interface/rpc_protocol/XdrHelpers.h"

#include <algorithm>
#include <arpa/inet.h>
#include <climits>
#include <memory>

namespace Orvane::Xdr {

namespace {

struct FreeMalloced {
    void operator()(char* memory) const noexcept { std::free(memory); }
};
using MallocedBytes = std::unique_ptr<char, FreeMalloced>;

// The zero bytes that fill `length` up to XDR's 4-byte unit.
u_int paddingOf(u_int length) {
    return (4 - length % 4) % 4;
}

bool_t skip(XDR* stream, std::size_t length) {
    char dropped[1024];
    while (length > 0) {
        const std::size_t part = std::min(length, sizeof dropped);
        if (!XDR_GETBYTES(stream, dropped, static_cast<u_int>(part)))
            return FALSE;
        length -= part;
    }
    return TRUE;
}

// Reads `length` bytes and their padding to fresh memory with one more, zero, byte behind them. Null when the
// stream or the memory runs out.
MallocedBytes readBytes(XDR* stream, u_int length) {
    MallocedBytes bytes;
    std::size_t done = 0;
    do {
        const std::size_t part = std::min(length - done, std::max(kFirstAllocation, done));
        char* const memory = static_cast<char*>(std::realloc(bytes.get(), done + part + 1));
        if (memory == nullptr)
            return nullptr;
        static_cast<void>(bytes.release());
        bytes.reset(memory);
        if (!XDR_GETBYTES(stream, memory + done, static_cast<u_int>(part)))
            return nullptr;
        done += part;
        memory[done] = '\0';
    } while (done < length);
    return skip(stream, paddingOf(length)) ? std::move(bytes) : nullptr;
}

// Stores up to `capacity` of `length` bytes and reads past the others and the padding.
bool_t readWithin(XDR* stream, u_int length, char* bytes, std::size_t capacity) {
    const u_int stored = static_cast<u_int>(std::min<std::size_t>(length, capacity));
    return XDR_GETBYTES(stream, bytes, stored) &&
           skip(stream, std::size_t{length} - stored + paddingOf(length));
}

bool_t decodeStringWithin(XDR* stream, char* text, std::size_t capacity) {
    u_int length = 0;
    if (!xdr_u_int(stream, &length))
        return FALSE;
    if (capacity == 0)
        return readWithin(stream, length, text, 0);
    text[std::min<std::size_t>(length, capacity - 1)] = '\0';
    return readWithin(stream, length, text, capacity - 1);
}

// The next `count` words of the stream's own memory, which the caller fills or reads in network order; null
// when they do not lie there in one piece, and then the stream has not moved.
int32_t* wordsInPlace(XDR* stream, std::size_t count) {
    constexpr std::size_t kWord = sizeof(u_int);
    return count > INT_MAX / kWord ? nullptr : XDR_INLINE(stream, static_cast<u_int>(count * kWord));
}

} // namespace

bool_t bytes(XDR* stream, u_int& length, char*& bytes) {
    std::size_t capacity = 0;
    if (stream->x_op == XDR_DECODE && bytes == nullptr) {
        u_int sent = 0;
        if (!xdr_u_int(stream, &sent))
            return FALSE;
        if (sent > 0)
            bytes = readBytes(stream, sent).release();
        length = bytes == nullptr ? 0 : sent;
        return length == sent;
    }
    if (stream->x_op != XDR_ENCODE && DecodeGuard::announced(bytes, capacity)) {
        if (stream->x_op == XDR_FREE)
            return TRUE;
        return xdr_u_int(stream, &length) && readWithin(stream, length, bytes, capacity);
    }
    if (stream->x_op == XDR_FREE && isKept(&bytes))
        return TRUE;
    return xdr_bytes(stream, &bytes, &length, ~u_int{0});
}

bool_t string(XDR* stream, char*& text) {
    std::size_t capacity = 0;
    if (stream->x_op == XDR_DECODE && text == nullptr) {
        u_int length = 0;
        if (!xdr_u_int(stream, &length))
            return FALSE;
        text = readBytes(stream, length).release();
        return text != nullptr;
    }
    if (stream->x_op != XDR_ENCODE && DecodeGuard::announced(text, capacity))
        return stream->x_op == XDR_FREE || decodeStringWithin(stream, text, capacity);
    if (stream->x_op == XDR_FREE && isKept(&text))
        return TRUE;
    return xdr_string(stream, &text, ~u_int{0});
}

bool_t encodeWords(XDR* stream, u_int count, u_int* values) {
    if (!xdr_u_int(stream, &count))
        return FALSE;
    int32_t* const words = wordsInPlace(stream, count);
    if (words == nullptr)
        return std::all_of(values, values + count,
                           [stream](u_int& value) { return xdr_u_int(stream, &value); });
    for (u_int i = 0; i < count; ++i)
        words[i] = static_cast<int32_t>(htonl(values[i]));
    return TRUE;
}

u_int decodeWords(XDR* stream, u_int count, u_int* values) {
    const int32_t* const words = wordsInPlace(stream, count);
    if (words == nullptr)
        return 0;
    for (u_int i = 0; i < count; ++i)
        values[i] = ntohl(static_cast<u_int>(words[i]));
    return count;
}

template <>
bool_t discard<StringArrayEntry>(XDR* stream) {
    char noText[1];
    const DecodeGuard guard(noText, sizeof noText);
    StringArrayEntry entry{noText, 0};
    return xdr_StringArrayEntry(stream, &entry);
}

} // namespace Orvane::Xdr
