// One call of a procedure: the board, the session and the memory that a reply is built in.
#pragma once

#include "simulator/board/BoardParts.h"
#include "simulator/board/Program.h"
#include "simulator/engine/RpcCall.h"
#include "simulator/protocol/Records.h"

#include <algorithm>
#include <cstddef>
#include <memory_resource>
#include <new>
#include <type_traits>

namespace OrvaneSim {

// What a procedure is given beside its argument. Lives for the length of one request.
struct ProcedureCall {
    BoardParts& board;
    RpcCall& rpc;
    const Program& program;
    const Procedure& procedure;
    std::pmr::memory_resource& memory;
    // The caller's session; null only for procedures that need none.
    const Session* session = nullptr;

    // Allocates `count` elements of a reply, all zero, gone with the request.
    template <class Element>
    Element* allocate(std::size_t count) const {
        static_assert(std::is_trivially_destructible_v<Element>);
        auto* elements =
            static_cast<Element*>(memory.allocate(count * sizeof(Element) + 1, alignof(Element)));
        for (std::size_t i = 0; i < count; ++i)
            new (elements + i) Element();
        return elements;
    }

    // Copies bytes into a counted list of a reply.
    template <class Element, class Container>
    void fill(u_int& count, Element*& elements, const Container& bytes) const {
        count = static_cast<u_int>(std::min<std::size_t>(bytes.size(), SIM_LIST_LIMIT));
        elements = allocate<Element>(count);
        for (std::size_t i = 0; i < count; ++i)
            elements[i] = static_cast<Element>(bytes[i]);
    }
};

} // namespace OrvaneSim
