// The GPIO service of a board.
#pragma once

#include "ov_sys/Interface/foundation/Export.h"
#include "ov_sys/Interface/sessions/SessionWrapper.h"

#include <vector>

namespace Orvane::GPIO {

// Stateless; any number of threads. Every method throws Exceptions::InvalidSession for a null or invalid
// session before anything is sent, and otherwise does, blocks and throws as the function of the same name in
// RPCGPIO.h.
class ORVANE_API GPIO {
public:
    // As the functions of the same names in RPCGPIO.h.
    void set(SessionWrapper session, std::vector<unsigned char> const& indexes,
             std::vector<unsigned char> const& states);
    void enableOutput(SessionWrapper session, std::vector<unsigned char> const& indexes,
                      std::vector<unsigned char> const& enables);
    std::vector<unsigned char> read(SessionWrapper session, std::vector<unsigned char> const& indexes);
    std::vector<unsigned char> readOutputEnable(SessionWrapper session,
                                                std::vector<unsigned char> const& indexes);
    void setDefault(SessionWrapper session, std::vector<unsigned char> const& indexes);
    void reset(SessionWrapper session);
    std::vector<unsigned char> bitBang(SessionWrapper session, std::vector<unsigned char> const& first,
                                       std::vector<unsigned char> const& second,
                                       std::vector<unsigned char> const& third);
};

} // namespace Orvane::GPIO
