#include "ov_sys/rack/core/RackState.h"

#include <utility>

namespace Orvane::RackCore {

RackState::RackState()
    : keeper_([this] { return all(); }, [](const std::string&) { return in_addr_t{0}; }, events_, *this) {}

void RackState::report(const RackLink::BoardLink& link, const RackLink::Session* session, Event::Kind kind,
                       Event::Level level, std::string text) {
    Event event;
    event.time = std::chrono::system_clock::now();
    event.board = link.board();
    if (session != nullptr) {
        event.port = static_cast<int>(session->port);
        event.phy = static_cast<int>(session->phy);
    }
    event.kind = kind;
    event.level = level;
    event.text = std::move(text);
    if (events_.push(std::move(event)) || kind == Event::Kind::Opened)
        keeper_.wake();
}

std::vector<std::shared_ptr<Board>> RackState::all() const {
    std::vector<std::shared_ptr<Board>> list;
    const std::lock_guard<std::mutex> lock(mutex_);
    for (const auto& entry : boards_)
        list.push_back(entry.second);
    return list;
}

std::shared_ptr<Board> RackState::find(const std::string& name) const {
    const std::lock_guard<std::mutex> lock(mutex_);
    const auto found = boards_.find(name);
    return found == boards_.end() ? nullptr : found->second;
}

std::shared_ptr<Board> RackState::add(const std::string& name, in_addr_t address) {
    const std::lock_guard<std::mutex> lock(mutex_);
    std::shared_ptr<Board>& place = boards_[name];
    if (!place)
        place = std::make_shared<Board>(name, address, shared_from_this());
    else
        place->link.found(address);
    return place;
}

void RackState::end() {
    keeper_.stop();
    const std::lock_guard<std::mutex> lock(mutex_);
    boards_.clear(); // which own what they are part of
}

} // namespace Orvane::RackCore
