// The GPIO service's calls.
#pragma once

#include "ov_sys/Interface/foundation/Export.h"

#include <vector>

namespace Orvane {

class PhySession;

// All calls block for the answer, 2 s at most for each attempt and its recovery, and throw as DO_RPC. Lines
// are named by one-byte indexes; states, output enables and bit-bang values are one byte each. Any number of
// threads.
namespace GPIO::RPC {

// Each list is sent with its own length.
ORVANE_API void set(PhySession& session, std::vector<unsigned char> const& indexes,
                    std::vector<unsigned char> const& states);
// As many enables as indexes are sent: missing ones are 0, surplus ones are not sent.
ORVANE_API void enableOutput(PhySession& session, std::vector<unsigned char> const& indexes,
                             std::vector<unsigned char> const& enables);
// One state for each index, whatever the board returned: 0 where it sent none.
ORVANE_API std::vector<unsigned char> read(PhySession& session, std::vector<unsigned char> const& indexes);
// As many bytes as the board returned; those beyond the indexes are 0.
ORVANE_API std::vector<unsigned char> readOutputEnable(PhySession& session,
                                                       std::vector<unsigned char> const& indexes);
ORVANE_API void setDefault(PhySession& session, std::vector<unsigned char> const& indexes);
ORVANE_API void reset(PhySession& session);
// Throws Exceptions::Standard before any call unless the lists are equally long. Returns as many bytes as the
// board returned; those beyond the lists' length are 0.
ORVANE_API std::vector<unsigned char> bitBang(PhySession& session, std::vector<unsigned char> const& first,
                                              std::vector<unsigned char> const& second,
                                              std::vector<unsigned char> const& third);

} // namespace GPIO::RPC
} // namespace Orvane
