// Leads from a wire type to its XDR routine, so that templates can encode, decode and free it.
#pragma once

#include "ov_sys/Interface/rpc_protocol/Records.h"

#include <cstdarg>
#include <type_traits>

namespace Orvane {

// Codec<T>::run(stream, value) is the XDR routine of a wire record or of one of the scalars below, with the
// contract given in Records.h. Other types have no codec.
template <class T>
struct Codec;

#define ORVANE_CODEC(Type, routine)                                                                          \
    template <>                                                                                              \
    struct Codec<Type> {                                                                                     \
        static bool_t run(XDR* stream, Type* value) { return routine(stream, value); }                       \
    };
ORVANE_CODEC(int, xdr_int)
ORVANE_CODEC(u_int, xdr_u_int)
ORVANE_CODEC(char, xdr_char)
ORVANE_CODEC(u_char, xdr_u_char)
#define ORVANE_RECORD_CODEC(Record) ORVANE_CODEC(Record, xdr_##Record)
ORVANE_WIRE_RECORDS(ORVANE_RECORD_CODEC)
#undef ORVANE_RECORD_CODEC
#undef ORVANE_CODEC

// Whether T is one of the wire records (and not a scalar or any other type).
template <class T>
struct IsWireRecord : std::false_type {};

#define ORVANE_IS_WIRE_RECORD(Record)                                                                        \
    template <>                                                                                              \
    struct IsWireRecord<Record> : std::true_type {};
ORVANE_WIRE_RECORDS(ORVANE_IS_WIRE_RECORD)
#undef ORVANE_IS_WIRE_RECORD

// Codec<T>::run in the form that libtirpc takes as an xdrproc_t; the argument after the stream is a T*.
template <class T>
bool_t xdrProcedure(XDR* stream, ...) {
    va_list arguments;
    va_start(arguments, stream);
    T* value = va_arg(arguments, T*);
    va_end(arguments);
    return Codec<T>::run(stream, value);
}

// Frees what a decode, also one that failed, allocated in a wire record and nulls those pointers; counts and
// announced buffers (see DecodeGuard.h) stay. Does nothing for any other type. Throws nothing.
template <class T>
void freeDecoded([[maybe_unused]] T& record) noexcept {
    if constexpr (IsWireRecord<T>::value)
        xdr_free(xdrProcedure<T>, &record);
}

} // namespace Orvane
