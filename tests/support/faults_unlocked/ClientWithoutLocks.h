// Client handles, and a board behind them, that are no part of libtirpc and share no lock.
#pragma once

#include <cstdint>

namespace OrvaneFaults {

/// The host name under which clnt_create() of this program finds the board.
constexpr const char* kInProcessHost = "in-process";

/// The value that the board's register has.
std::uint32_t inProcessValue(std::uint32_t address);

} // namespace OrvaneFaults
