// The list that a search adds to, with an owner.
#pragma once

#include "ov_sys/Interface/foundation/AddressResponse.h"

#include <initializer_list>
#include <vector>

namespace OrvaneTest {

// Frees the records that a search leaves to its caller.
class Found {
public:
    Found() = default;
    // Holds copies of `records` from the start.
    Found(std::initializer_list<Orvane::AddressResponse> records) {
        for (const Orvane::AddressResponse& each : records)
            list.push_back(new Orvane::AddressResponse(each));
    }
    Found(const Found&) = delete;
    Found& operator=(const Found&) = delete;
    ~Found() {
        for (const Orvane::AddressResponse* each : list)
            delete each;
    }

    // Copies of what the list holds now.
    std::vector<Orvane::AddressResponse> records() const {
        std::vector<Orvane::AddressResponse> copies;
        for (const Orvane::AddressResponse* each : list)
            copies.push_back(*each);
        return copies;
    }

    std::vector<Orvane::AddressResponse*> list;
};

} // namespace OrvaneTest
