// Copying and comparing records of boards.
#include "ov_sys/Interface/foundation/AddressResponse.h"

#include <utility>

namespace Orvane {

AddressResponse::AddressResponse() = default;

AddressResponse::AddressResponse(std::string name_, std::string address_)
    : name(std::move(name_)), address(std::move(address_)) {}

AddressResponse::AddressResponse(const AddressResponse& other) = default;

AddressResponse::~AddressResponse() = default;

void AddressResponse::assign(std::string name_, std::string address_) {
    name = std::move(name_);
    address = std::move(address_);
}

bool AddressResponse::operator==(const AddressResponse& other) {
    return std::as_const(*this) == other;
}

AddressResponse& AddressResponse::operator=(const AddressResponse& other) {
    if (this == &other || *this == other)
        return *this;
    name = other.name;
    address = other.address;
    return *this;
}

bool operator==(const AddressResponse& a, const AddressResponse& b) {
    return a.name == b.name && a.address == b.address;
}

bool operator<(const AddressResponse& a, const AddressResponse& b) {
    return a.name < b.name;
}

} // namespace Orvane
