// A register's address as text.
#include "ov_sys/rack/values/RegisterAddress.h"

#include <cstdio>

namespace Orvane {

std::string toText(const RegisterAddress& address) {
    char text[40];
    switch (address.space) {
    case RegisterAddress::Space::Clause45:
        std::snprintf(text, sizeof text, "%u.0x%04X", address.mmd, address.number);
        break;
    case RegisterAddress::Space::Clause22:
        std::snprintf(text, sizeof text, "c22.%u", address.number);
        break;
    case RegisterAddress::Space::Ext32:
        std::snprintf(text, sizeof text, "ext32.0x%08X", address.number);
        break;
    }
    return text;
}

} // namespace Orvane
