// What callers of the C interface hand in, and what they get back, beside the C++ values for it.
#pragma once

#include "ov_sys/rack/RoutedPhy.h"
#include "ov_sys/rack/values/Access.h"
#include "ov_sys/rack/values/Batch.h"
#include "ov_sys/rack/values/RegisterAddress.h"
#include "ov_sys/rack/values/Within.h"

#include <cstddef>
#include <orvane/rack.h>

namespace Orvane::RackC {

// Null stands for `usual`.
Within withinOf(const orvane_limits* limits, const Within& usual = {}) noexcept;

// Null stands for the usual ways.
RegisterPaths pathsOf(const orvane_paths* paths) noexcept;

// Throw Failure for what is none.
RegisterAddress addressOf(const orvane_register& address);
Access accessOf(const orvane_access& access);
Batch batchOf(const orvane_operation* operations, std::size_t count);

// Sets what became of `operations`; throws the failure of a batch that is not complete.
void store(const BatchResult& result, orvane_operation* operations);

} // namespace Orvane::RackC
