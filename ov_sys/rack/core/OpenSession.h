// A session that somebody holds; it is closed on its board when nobody does any more.
#pragma once

#include "ov_sys/rack/access/RegisterAccess.h"
#include "ov_sys/rack/values/SmbusProtocol.h"

#include <atomic>
#include <functional>
#include <memory>
#include <mutex>
#include <string>
#include <utility>

namespace Orvane {
class RegisterMap;
}

namespace Orvane::RackCore {

class Board;

// Any thread; calls on one board take turns.
class OpenSession {
public:
    OpenSession(std::shared_ptr<Board> board, unsigned port, unsigned phy, Access access);
    ~OpenSession();
    OpenSession(const OpenSession&) = delete;
    OpenSession& operator=(const OpenSession&) = delete;

    // Throws a Failure of `operation` at `location` when there is trouble.
    void check(RackLink::Trouble trouble, const char* operation, const std::string& location,
               const RackLink::Limits& limits) const;
    Failure failure(RackLink::Trouble trouble, const char* operation, const std::string& location,
                    const RackLink::Limits& limits, std::string advice = {}) const;
    // Throws what RackAccess::objection() has to say.
    void object(const char* operation, const RegisterAddress& address, std::uint32_t value,
                const RackLink::Limits& limits) const {
        const bool usual = address.space == RegisterAddress::Space::Clause45;
        if (!usual || !address.valid() || value > address.limit())
            objectAtLength(operation, address, value, limits);
    }

    void open(RackLink::Limits& limits);
    // Does nothing when it is not open.
    void close(RackLink::Limits& limits);
    // As closed, whatever the board thinks. For the holder of the turn.
    void forget();
    void setHook(std::function<void()> hook);
    bool isOpen();
    std::uint16_t key();

    RackAccess::Target target() noexcept;
    RackLink::BoardLink& link() noexcept;
    RackLog::TransactionLog& log() noexcept { return link().log(); }
    RackLog::Place place() noexcept { return link().place(state_); }
    const std::shared_ptr<Board>& board() const noexcept { return board_; }
    RackLink::Session& state() noexcept { return state_; }
    void setSmbus(SmbusProtocol protocol) noexcept { smbus_.store(protocol, std::memory_order_relaxed); }

    // Kept for the rooms above, which know what it is; null at first. Any thread.
    void setMap(std::shared_ptr<const RegisterMap> map) {
        const std::lock_guard<std::mutex> lock(mapMutex_);
        map_.swap(map);
    }
    std::shared_ptr<const RegisterMap> map() const {
        const std::lock_guard<std::mutex> lock(mapMutex_);
        return map_;
    }

private:
    void objectAtLength(const char* operation, const RegisterAddress& address, std::uint32_t value,
                        const RackLink::Limits& limits) const;

    const std::shared_ptr<Board> board_;
    std::atomic<SmbusProtocol> smbus_{SmbusProtocol::Paged16};
    RackLink::Session state_;
    mutable std::mutex mapMutex_; // guards map_
    std::shared_ptr<const RegisterMap> map_;
};

} // namespace Orvane::RackCore
