// What a port's handles share.
#pragma once

#include "ov_sys/rack/core/Board.h"
#include "ov_sys/rack/values/Access.h"

#include <map>
#include <memory>
#include <mutex>
#include <utility>

namespace Orvane::RackCore {

struct PortState {
    PortState(std::shared_ptr<Board> owner, unsigned port, Access asked)
        : board(std::move(owner)), number(port), access(asked) {}

    const std::shared_ptr<Board> board;
    const unsigned number;
    const Access access;
    std::mutex mutex; // guards sessions
    std::map<unsigned, std::shared_ptr<OpenSession>> sessions;
};

} // namespace Orvane::RackCore
