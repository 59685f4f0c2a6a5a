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
    ~WireResult() { freeDecoded(record_); }
    WireResult(const WireResult&) = delete;
    WireResult& operator=(const WireResult&) = delete;

    Record* get() noexcept { return &record_; }
    Record* operator->() noexcept { return &record_; }

private:
    Record record_{};
};

} // namespace Orvane
