// A discovered board: its name and where it is reached.
#pragma once

#include "ov_sys/Interface/foundation/Export.h"

#include <string>

namespace Orvane {

// A plain value; concurrent use of one record is the users' to guard. Nothing throws but std::bad_alloc.
class ORVANE_API AddressResponse {
public:
    // The name as the board answers discovery; discovery's inner steps also keep interface names and raw
    // reply texts here.
    std::string name;
    // The board's host address as dotted IPv4 text.
    std::string address;

    // Both texts empty.
    AddressResponse();
    AddressResponse(std::string name, std::string address);
    AddressResponse(const AddressResponse& other);
    ~AddressResponse();

    // Replaces both texts.
    void assign(std::string name, std::string address);

    // Equal when both texts are, byte for byte. Not const: beside the free operator a const member would make
    // every comparison ambiguous.
    bool operator==(const AddressResponse& other);

    // Changes nothing when the records are already equal; otherwise copies the name, then the address.
    AddressResponse& operator=(const AddressResponse& other);
};

// Equal when both names and both addresses are, byte for byte.
ORVANE_API bool operator==(const AddressResponse& a, const AddressResponse& b);

// Orders by the name alone, bytewise, so that a sorted set of boards holds one entry per name: records that
// differ in the address only are equivalent here, yet not equal.
ORVANE_API bool operator<(const AddressResponse& a, const AddressResponse& b);

} // namespace Orvane
