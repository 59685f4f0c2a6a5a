// The JTAG service's calls.
#pragma once

#include "ov_sys/Interface/foundation/Export.h"

#include <string>
#include <vector>

namespace Orvane {

class PhySession;

// All calls block for the answer, 2 s at most for each attempt and its recovery, and throw as DO_RPC. Any
// number of threads.
namespace JTAG::RPC {

// The largest shift that the board accepts.
ORVANE_API int maxBytes(PhySession& session);

// Shifts several sequences: the data and the two TMS lists. Throws Exceptions::Standard before any call
// unless the lists are equally long. Texts are sent up to their first NUL character, with their full length
// beside them. Each result has the length of the second list's entry: the board's text, NUL characters inside
// it included, cut to that, or, when it is shorter, the text, a NUL character and 'X' to the end; 'X' alone
// where the board sent none.
ORVANE_API std::vector<std::string> shiftMulti(PhySession& session, std::vector<std::string> first,
                                               std::vector<std::string> second,
                                               std::vector<std::string> third);

// The same for one sequence.
ORVANE_API std::string shift(PhySession& session, std::string first, std::string second, std::string third);

} // namespace JTAG::RPC
} // namespace Orvane
