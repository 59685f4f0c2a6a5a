// The I2C service of a board.
#pragma once

#include "ov_sys/Interface/foundation/Export.h"
#include "ov_sys/Interface/sessions/SessionWrapper.h"

#include <vector>

namespace Orvane {
namespace I2C {

// Stateless; any number of threads. Every method throws Exceptions::InvalidSession for a null or invalid
// session before anything is sent, and otherwise does, blocks and throws as the function of the same name in
// RPCI2C.h.
class ORVANE_API I2C {
public:
    // As the functions of the same names in RPCI2C.h.
    void write(SessionWrapper session, unsigned char bus, unsigned int address,
               std::vector<unsigned char>& data);
    std::vector<unsigned char> read(SessionWrapper session, unsigned char bus, unsigned int address,
                                    unsigned char command, unsigned int length);
    std::vector<unsigned char> readReg(SessionWrapper session, unsigned char bus, unsigned int address,
                                       unsigned int reg, unsigned char regFormat, unsigned int length);
    void blockWriteRegister(SessionWrapper session, std::vector<unsigned char> const& buses,
                            std::vector<unsigned int> const& addresses, std::vector<unsigned int> const& regs,
                            std::vector<unsigned char>& data, std::vector<unsigned int> const& lengths,
                            std::vector<unsigned int> const& regFormats);
    void blockWriteMask(SessionWrapper session, std::vector<unsigned char> const& buses,
                        std::vector<unsigned int> const& addresses, std::vector<unsigned int> const& regs,
                        std::vector<unsigned char>& data, std::vector<unsigned int> const& lengths,
                        std::vector<unsigned int> const& regFormats, unsigned char mask);
    std::vector<unsigned char>
    blockReadRegister(SessionWrapper session, std::vector<unsigned char> const& buses,
                      std::vector<unsigned int> const& addresses, std::vector<unsigned int> const& regs,
                      std::vector<unsigned int> const& lengths, std::vector<unsigned int> const& regFormats);
};

} // namespace I2C

// The facade for every caller.
extern ORVANE_API I2C::I2C i2c;

} // namespace Orvane
