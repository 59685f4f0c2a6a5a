// A result record that frees what a decode allocated in it.
#pragma once

#include "ov_sys/Interface/rpc_protocol/Codec.h"

namespace Orvane {

// Zeroed at construction. Buffers of the caller that are preset in it must stay announced (DecodeGuard) until
// it is destroyed: create the guards first.
template <class Record>
class WireResult {
public:
    WireResult() = default;
    ~WireResult() {
        if (holdsMemory_)
            freeDecoded(record_);
    }
    WireResult(const WireResult&) = delete;
    WireResult& operator=(const WireResult&) = delete;

    // To be called when the record is known to hold nothing but the caller's buffers: spares the search for
    // more.
    void holdsNothing() noexcept { holdsMemory_ = false; }

    Record* get() noexcept { return &record_; }
    Record* operator->() noexcept { return &record_; }

private:
    Record record_{};
    bool holdsMemory_ = true;
};

} // namespace Orvane
