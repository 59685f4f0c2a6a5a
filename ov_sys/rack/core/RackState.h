// What a rack consists of: its boards, its thread, its events.
#pragma once

#include "ov_sys/rack/core/Board.h"
#include "ov_sys/rack/core/EventQueue.h"
#include "ov_sys/rack/core/Keeper.h"
#include "ov_sys/rack/link/Limits.h"
#include "ov_sys/rack/log/TransactionLog.h"
#include "ov_sys/rack/values/Discovery.h"

#include <functional>
#include <map>
#include <memory>
#include <mutex>
#include <set>
#include <string>
#include <vector>

namespace Orvane::RackCore {

// Any thread. Owned by the rack and by its boards, so that those who hold a session may outlive the rack.
class RackState : public RackLink::Surroundings, public std::enable_shared_from_this<RackState> {
public:
    RackState();

    void report(const RackLink::BoardLink& link, const RackLink::Session* session, Event::Kind kind,
                Event::Level level, std::string text) override;
    void missing(RackLink::BoardLink& link) override { keeper_.lookFor(link.board()); }
    bool names(in_addr_t from, const std::string& answer, const std::string& board) const override;
    RackLog::TransactionLog& log() noexcept override { return log_; }

    std::vector<std::shared_ptr<Board>> all() const;
    // Null when no address of it is known.
    std::shared_ptr<Board> find(const std::string& name);
    // The board of that name, which is told of its address.
    std::shared_ptr<Board> add(const std::string& name, in_addr_t address);
    // Remembers where boards are that are not in use yet.
    void learn(const std::vector<FoundBoard>& boards);
    // Looks for boards until all have answered, and learns where they are.
    RackLink::Trouble search(std::set<std::string> names, RackLink::Limits& limits);
    // Looks for every board until the limits end, or `enough`, which may be empty, says so of one.
    RackLink::Trouble search(RackLink::Limits& limits, Discovery& found,
                             const std::function<bool(const FoundBoard&)>& enough = {});
    // Asks which boards are at those addresses.
    RackLink::Trouble ask(const std::vector<in_addr_t>& addresses, RackLink::Limits& limits,
                          Discovery& found);
    void onEvent(EventCallback callback) { events_.setCallback(std::move(callback)); }
    // Ends thread and log, and lets the boards go.
    void end();

private:
    in_addr_t addressOf(const std::string& name) const;
    void logFailed(std::string why);

    mutable std::mutex mutex_; // guards boards_ and addresses_
    std::map<std::string, in_addr_t> addresses_;
    std::map<std::string, std::shared_ptr<Board>> boards_;
    EventQueue events_;
    RackLog::TransactionLog log_;
    Keeper keeper_;
};

} // namespace Orvane::RackCore
