// Boards at addresses that are known: each is asked who it is.
#pragma once

#include "ov_sys/rack/link/Limits.h"
#include "ov_sys/rack/search/Announcement.h"

#include <functional>
#include <netinet/in.h>
#include <vector>

namespace Orvane::RackSearch {

// Asks by TCP, many addresses at the same time, and gives every answer to `told` on the calling thread. One
// that has not answered in two seconds is passed over. Blocks up to limits.end. Trouble is a cancellation.
RackLink::Trouble askAt(const std::vector<in_addr_t>& addresses,
                        const std::function<void(const Answer&)>& told, RackLink::Limits& limits);

} // namespace Orvane::RackSearch
