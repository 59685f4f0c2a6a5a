// One procedure at work: the board, the session and the memory that a reply is built in.
#pragma once

#include "simulator/board/BoardParts.h"
#include "simulator/engine/RpcCall.h"
#include "simulator/protocol/Records.h"

#include <algorithm>
#include <cstddef>
#include <memory_resource>
#include <rpc/rpc.h>
#include <type_traits>

namespace OrvaneSim {

/// What a procedure is given beside its argument. Lives for the length of one request.
struct Service {
    BoardParts& board;
    RpcCall& call;
    std::pmr::memory_resource& memory;
    /// The caller's session; null only for procedures that need none.
    const Session* session = nullptr;

    /// Room for `count` elements of a reply, all zero, gone with the request.
    template <class Element>
    Element* room(std::size_t count) const {
        static_assert(std::is_trivially_destructible_v<Element>);
        auto* elements =
            static_cast<Element*>(memory.allocate(count * sizeof(Element) + 1, alignof(Element)));
        for (std::size_t i = 0; i < count; ++i)
            new (elements + i) Element();
        return elements;
    }

    /// Copies bytes into a counted list of a reply.
    template <class Element, class Container>
    void fill(u_int& count, Element*& elements, const Container& bytes) const {
        count = static_cast<u_int>(std::min<std::size_t>(bytes.size(), SIM_LIST_LIMIT));
        elements = room<Element>(count);
        for (std::size_t i = 0; i < count; ++i)
            elements[i] = static_cast<Element>(bytes[i]);
    }
};

/// A program of a board and the dispatch function that rpcgen made for it.
struct Program {
    const char* name;
    std::uint32_t number;
    std::uint32_t version;
    void (*dispatch)(svc_req*, SVCXPRT*);
};

} // namespace OrvaneSim
