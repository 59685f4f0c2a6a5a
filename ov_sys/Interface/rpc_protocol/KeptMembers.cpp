// Compares a record's members with those that it had before the decode.
#include "ov_sys/Interface/rpc_protocol/KeptMembers.h"

#include <cstdint>
#include <cstring>

namespace Orvane {
namespace {

struct Record {
    std::uintptr_t begin;
    const char* initial;
    std::size_t size;
};

// The record that this thread frees at the moment; XDR routines have no argument for it.
thread_local const Record* current = nullptr;

} // namespace

void freeUnlessInitial(xdrproc_t codec, void* record, const void* initial, std::size_t size) noexcept {
    const Record kept{reinterpret_cast<std::uintptr_t>(record), static_cast<const char*>(initial), size};
    const Record* const outer = current;
    current = &kept;
    xdr_free(codec, record);
    current = outer;
}

bool isKept(const void* member) noexcept {
    if (current == nullptr)
        return false;
    const std::uintptr_t offset = reinterpret_cast<std::uintptr_t>(member) - current->begin;
    return offset < current->size && std::memcmp(member, current->initial + offset, sizeof(void*)) == 0;
}

} // namespace Orvane
