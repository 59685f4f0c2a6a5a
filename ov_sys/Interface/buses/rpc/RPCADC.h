// The ADC service's calls.
#pragma once

#include "ov_sys/Interface/foundation/Export.h"

#include <string>
#include <vector>

namespace Orvane {

class PhySession;

// All calls block for the answer, 2 s at most for each attempt and its recovery, and throw as DO_RPC. Any
// number of threads.
namespace ADC::RPC {

// The capture itself: prepare it, begin it, end it.
ORVANE_API void initialize(PhySession& session);
ORVANE_API void start(PhySession& session);
ORVANE_API void stop(PhySession& session);

// The channels to capture, a bit each from bit 0 up.
ORVANE_API void setChannelMask(PhySession& session, unsigned mask);
// Names travel with their length and without a terminating NUL.
ORVANE_API void setDumpFile(PhySession& session, std::string name);
ORVANE_API void setEventName(PhySession& session, std::string name);

// As many bytes as the board returned; those beyond `count` are 0, but for a count of 0, which takes them
// all. Throws std::length_error for a negative count.
ORVANE_API std::vector<unsigned char> getData(PhySession& session, int count);
// As many bytes as the board returned; those beyond 256 are 0.
ORVANE_API std::vector<unsigned char> maxADC(PhySession& session);
ORVANE_API std::vector<unsigned char> getEvents(PhySession& session);

} // namespace ADC::RPC
} // namespace Orvane
