// The addresses that the boards of a lab may have.
#pragma once

#include <string>

namespace OrvaneSim {

// Where boards are served: in the private network or on this machine's own addresses. Stateless.
class LabPlace {
public:
    virtual ~LabPlace() = default;
    // Whether a board can be served at a dotted address; false for a text that is none.
    virtual bool contains(const std::string& address) const = 0;
    // The address that the board number `number` (from 1) gets when nothing else is said.
    virtual std::string defaultAddress(unsigned number) const = 0;
    // What `contains` accepts, in words.
    virtual const char* text() const = 0;
};

// 10.83.0.1 to 10.83.127.255, the board side of the private network.
const LabPlace& privatePlace();
// 127.0.0.0/8 and the addresses of this machine's interfaces.
const LabPlace& loopbackPlace();

} // namespace OrvaneSim
