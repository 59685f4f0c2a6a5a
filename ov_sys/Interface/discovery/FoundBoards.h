// Owner of the records that a board search hands out.
#pragma once

#include "ov_sys/Interface/foundation/AddressResponse.h"

#include <vector>

namespace Orvane {

// Pass `records` to BoardFinder::find(); the destructor deletes what it found. One thread.
struct FoundBoards {
    std::vector<AddressResponse*> records;

    FoundBoards() = default;
    ~FoundBoards() {
        for (const AddressResponse* record : records)
            delete record;
    }
    FoundBoards(const FoundBoards&) = delete;
    FoundBoards& operator=(const FoundBoards&) = delete;
};

} // namespace Orvane
