// A call whose result's one list is decoded straight into the caller's buffer.
#pragma once

#include "ov_sys/Interface/buses/rpc/CallFrame.h"
#include "ov_sys/Interface/buses/rpc/WireLists.h"
#include "ov_sys/Interface/buses/rpc/WireResult.h"
#include "ov_sys/Interface/rpc_protocol/DecodeGuard.h"

#include <cstddef>
#include <type_traits>

namespace Orvane {

// Runs `stub` through DO_RPC; `list` is the result's counted list, of whose elements up to `capacity` are
// stored into `buffer`. Returns how many the board sent, which may be more or fewer. `buffer` may be null for
// no capacity.
template <class Param, class Result, class List, class Element>
u_int callInto(clnt_stat (*stub)(Param, Result*, CLIENT*), PhySession& session, BoardConnection::clientId id,
               const Param& param, List Result::*list, Element* buffer, std::size_t capacity) {
    const DecodeGuard guard(buffer, capacity);
    WireResult<Result> result;
    auto& [length, values] = result.get()->*list;
    length = static_cast<u_int>(capacity);
    values = reinterpret_cast<std::remove_reference_t<decltype(values)>>(buffer);
    DO_RPC(stub, param, result.get(), session, id);
    return length;
}

} // namespace Orvane
