// Frees what repeated decodes allocated in a record, and nothing that was in it before them.
#pragma once

#include "ov_sys/Interface/foundation/Export.h"

#include <cstddef>
#include <rpc/rpc.h>

namespace Orvane {

// As xdr_free(codec, record), but leaves alone the buffers, with all that is in them, to which the record's
// pointers led in `initial`, a copy of the record of `size` bytes from before the decode: they are the
// caller's. Throws nothing.
ORVANE_API void freeUnlessInitial(xdrproc_t codec, void* record, const void* initial,
                                  std::size_t size) noexcept;

// For the XDR routines: whether freeUnlessInitial() is at work on this thread and is not to free what the
// record's pointer at `member` leads to.
bool isKept(const void* member) noexcept;

} // namespace Orvane
