// Callers' lists as the wire records want them: a count and a pointer.
#pragma once

#include <rpc/rpc.h>
#include <vector>

namespace Orvane {

// XDR takes pointers to non-const for encoding too, but only reads through them.
template <class Element>
Element* wirePointer(std::vector<Element> const& list) {
    return const_cast<Element*>(list.data()); // NOLINT(cppcoreguidelines-pro-type-const-cast)
}

template <class Element>
u_int wireLength(std::vector<Element> const& list) {
    return static_cast<u_int>(list.size());
}

} // namespace Orvane
