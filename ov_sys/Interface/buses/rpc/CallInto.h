// A call whose result's one list is decoded straight into the caller's buffer.
#pragma once

#include "ov_sys/Interface/buses/rpc/CallFrame.h"
#include "ov_sys/Interface/buses/rpc/WireLists.h"
#include "ov_sys/Interface/buses/rpc/WireResult.h"
#include "ov_sys/Interface/rpc_protocol/DecodeGuard.h"

#include <algorithm>
#include <cstddef>
#include <type_traits>

namespace Orvane {

// Runs `stub` through DO_RPC; `list` is the result's counted list, of whose elements up to `capacity` are
// stored into `buffer`. Elements that the board does not send are zero. Returns how many it sent, which may
// be more or fewer. `buffer` may be null for no capacity.
template <class Param, class Result, class List, class Element>
u_int callInto(clnt_stat (*stub)(Param, Result*, CLIENT*), PhySession& session, BoardConnection::clientId id,
               const Param& param, List Result::*list, Element* buffer, std::size_t capacity) {
    static_assert(std::is_scalar_v<Element>, "elements that hold memory of their own would have to be freed");
    const DecodeGuard guard(buffer, capacity);
    WireResult<Result> result;
    auto& [length, values] = result.get()->*list;
    length = static_cast<u_int>(capacity);
    values = reinterpret_cast<std::remove_reference_t<decltype(values)>>(buffer);
    DO_RPC(stub, param, result.get(), session, id);
    if (buffer != nullptr)
        result.holdsNothing();
    // A busy reply before the last may have filled more of the buffer than the last one did.
    std::fill(buffer + std::min<std::size_t>(length, capacity), buffer + capacity, Element{});
    return length;
}

} // namespace Orvane
