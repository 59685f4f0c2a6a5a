// Conversion of lists of words where they lie in the message.
#include "simulator/protocol/WordArrays.h"

#include <climits>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <endian.h>

namespace {

constexpr u_int kWord = sizeof(std::uint32_t);

// The place of so many words in the message; null when they do not stand, or fit, there.
char* inside(XDR* stream, u_int count) {
    return count > INT_MAX / kWord ? nullptr : reinterpret_cast<char*>(XDR_INLINE(stream, count * kWord));
}

// Words at any address to words at any other.
template <class Order>
void convert(char* to, const char* from, std::size_t count, Order order) {
    for (std::size_t i = 0; i < count; ++i) {
        std::uint32_t word = 0;
        std::memcpy(&word, from + i * kWord, kWord);
        word = order(word);
        std::memcpy(to + i * kWord, &word, kWord);
    }
}

bool decodeWords(XDR* stream, char** words, u_int* count, u_int most) {
    if (!xdr_u_int(stream, count) || *count > most)
        return false;
    if (*count == 0)
        return true;
    const char* const sent = inside(stream, *count);
    if (sent == nullptr)
        return false;
    if (*words == nullptr)
        *words = static_cast<char*>(std::malloc(std::size_t{*count} * kWord));
    if (*words == nullptr)
        return false;
    convert(*words, sent, *count, [](std::uint32_t word) { return be32toh(word); });
    return true;
}

bool encodeWords(XDR* stream, const char* words, u_int* count, u_int most) {
    if (*count > most || !xdr_u_int(stream, count))
        return false;
    if (*count == 0)
        return true;
    char* const sent = inside(stream, *count);
    if (sent == nullptr)
        return false;
    convert(sent, words, *count, [](std::uint32_t word) { return htobe32(word); });
    return true;
}

} // namespace

bool_t orvane_sim_xdr_array(XDR* stream, char** elements, u_int* count, u_int most, u_int size,
                            xdrproc_t element) {
    if (element != reinterpret_cast<xdrproc_t>(xdr_u_int))
        return xdr_array(stream, elements, count, most, size, element);
    switch (stream->x_op) {
    case XDR_DECODE:
        return decodeWords(stream, elements, count, most) ? TRUE : FALSE;
    case XDR_ENCODE:
        return encodeWords(stream, *elements, count, most) ? TRUE : FALSE;
    case XDR_FREE:
        break;
    }
    std::free(*elements);
    *elements = nullptr;
    return TRUE;
}
