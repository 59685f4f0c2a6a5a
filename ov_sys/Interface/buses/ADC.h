// The ADC service of a board.
#pragma once

#include "ov_sys/Interface/foundation/Export.h"
#include "ov_sys/Interface/sessions/SessionWrapper.h"

#include <string>
#include <vector>

namespace Orvane::ADC {

// Stateless; any number of threads. Every method throws Exceptions::InvalidSession for a null or invalid
// session before anything is sent, and otherwise does, blocks and throws as the function of the same name in
// RPCADC.h.
class ORVANE_API ADC {
public:
    virtual ~ADC();

    // As the functions of the same names in RPCADC.h.
    void initialize(SessionWrapper session);
    void start(SessionWrapper session);
    void stop(SessionWrapper session);
    void setChannelMask(SessionWrapper session, unsigned mask);
    void setDumpFile(SessionWrapper session, std::string name);
    void setEventName(SessionWrapper session, std::string name);
    std::vector<unsigned char> getData(SessionWrapper session, int count);
    std::vector<unsigned char> maxADC(SessionWrapper session);
    std::vector<unsigned char> getEvents(SessionWrapper session);
};

} // namespace Orvane::ADC
