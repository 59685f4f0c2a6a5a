// A bounded check that a board's port mapper answers, made before the RPC library asks it.
#pragma once

#include <string>

namespace Orvane {

// True when the port mapper (port 111) at `host`, dotted IPv4 text, answers over `protocol` ("udp" or "tcp")
// within two seconds. Otherwise false, with the reason in this thread's rpc_createerr. The RPC library itself
// would wait a minute or more for a silent port mapper, with all signals masked, and does not survive every
// refusal. Any thread; does not throw.
bool probePortMapper(const std::string& host, const std::string& protocol) noexcept;

} // namespace Orvane
