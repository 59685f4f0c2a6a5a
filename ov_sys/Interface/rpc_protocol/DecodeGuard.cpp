// The announcements of one thread form a list through the guards themselves, so that none is ever allocated.
#include "ov_sys/Interface/rpc_protocol/DecodeGuard.h"

namespace Orvane {

namespace {

// The guards that live in this thread, linked from the newest to the oldest.
thread_local DecodeGuard* innermost = nullptr;

} // namespace

DecodeGuard::DecodeGuard(void* buffer, std::size_t capacity) noexcept
    : buffer_(buffer), capacity_(capacity), outer_(innermost) {
    innermost = this;
}

DecodeGuard::~DecodeGuard() {
    DecodeGuard** link = &innermost;
    while (*link != nullptr && *link != this)
        link = &(*link)->outer_;
    if (*link != nullptr)
        *link = outer_;
}

bool DecodeGuard::announced(const void* buffer, std::size_t& capacity) noexcept {
    if (buffer == nullptr)
        return false;
    for (const DecodeGuard* guard = innermost; guard != nullptr; guard = guard->outer_) {
        if (guard->buffer_ == buffer) {
            capacity = guard->capacity_;
            return true;
        }
    }
    return false;
}

} // namespace Orvane
