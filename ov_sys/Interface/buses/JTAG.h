// The JTAG service of a board.
#pragma once

#include "ov_sys/Interface/foundation/Export.h"
#include "ov_sys/Interface/sessions/SessionWrapper.h"

#include <string>
#include <vector>

namespace Orvane::JTAG {

// Stateless; any number of threads. Every method throws Exceptions::InvalidSession for a null or invalid
// session before anything is sent, and otherwise does, blocks and throws as the function of the same name in
// RPCJTAG.h.
class ORVANE_API JTAG {
public:
    virtual ~JTAG();

    // As the functions of the same names in RPCJTAG.h.
    int maxBytes(SessionWrapper session);
    std::vector<std::string> shiftMulti(SessionWrapper session, std::vector<std::string> first,
                                        std::vector<std::string> second, std::vector<std::string> third);
    std::string shift(SessionWrapper session, std::string first, std::string second, std::string third);
};

} // namespace Orvane::JTAG
