// How boards become known, are found again, and end with their rack.
#include "ov_sys/rack/core/RackState.h"

#include "ov_sys/rack/link/Endpoint.h"
#include "ov_sys/rack/search/Asking.h"
#include "ov_sys/rack/search/Search.h"

#include <algorithm>
#include <utility>

namespace Orvane::RackCore {

RackState::RackState()
    : log_([this](std::string why) { logFailed(std::move(why)); }),
      keeper_([this] { return all(); }, events_, *this) {}

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
    if (log_.on())
        log_.event(event);
    if (events_.push(std::move(event)) || kind == Event::Kind::Opened)
        keeper_.wake();
}

void RackState::logFailed(std::string why) {
    Event event;
    event.time = std::chrono::system_clock::now();
    event.kind = Event::Kind::LogFailed;
    event.level = Event::Level::Warning;
    event.text = std::move(why);
    if (events_.push(std::move(event)))
        keeper_.wake();
}

bool RackState::names(in_addr_t from, const std::string& answer, const std::string& board) const {
    const std::vector<FoundBoard> boards = RackSearch::boardsOf({from, answer});
    return std::any_of(boards.begin(), boards.end(),
                       [&](const FoundBoard& one) { return one.serial == board; });
}

std::vector<std::shared_ptr<Board>> RackState::all() const {
    std::vector<std::shared_ptr<Board>> list;
    const std::lock_guard<std::mutex> lock(mutex_);
    for (const auto& entry : boards_)
        list.push_back(entry.second);
    return list;
}

std::shared_ptr<Board> RackState::find(const std::string& name) {
    {
        const std::lock_guard<std::mutex> lock(mutex_);
        const auto found = boards_.find(name);
        if (found != boards_.end())
            return found->second;
    }
    const in_addr_t address = addressOf(name);
    return address != 0 ? add(name, address) : nullptr;
}

in_addr_t RackState::addressOf(const std::string& name) const {
    const std::lock_guard<std::mutex> lock(mutex_);
    const auto found = addresses_.find(name);
    return found == addresses_.end() ? 0 : found->second;
}

std::shared_ptr<Board> RackState::add(const std::string& name, in_addr_t address) {
    const std::lock_guard<std::mutex> lock(mutex_);
    addresses_[name] = address;
    std::shared_ptr<Board>& place = boards_[name];
    if (!place)
        place = std::make_shared<Board>(name, address, shared_from_this());
    else
        place->link.found(address);
    return place;
}

void RackState::learn(const std::vector<FoundBoard>& boards) {
    const std::lock_guard<std::mutex> lock(mutex_);
    for (const FoundBoard& one : boards)
        addresses_[one.serial] = RackLink::parseDotted(one.address).value_or(0);
}

RackLink::Trouble RackState::search(std::set<std::string> names, RackLink::Limits& limits) {
    RackSearch::Search search([&](const RackSearch::Answer& answer) {
        for (const FoundBoard& one : RackSearch::boardsOf(answer))
            names.erase(one.serial);
        return names.empty();
    });
    const RackLink::Trouble trouble = search.run(limits);
    learn(search.result().boards);
    return trouble;
}

RackLink::Trouble RackState::search(RackLink::Limits& limits, Discovery& found,
                                    const std::function<bool(const FoundBoard&)>& enough) {
    RackSearch::Search search([&](const RackSearch::Answer& answer) {
        bool over = false;
        if (enough)
            for (const FoundBoard& one : RackSearch::boardsOf(answer))
                over = enough(one) || over;
        return over;
    });
    const RackLink::Trouble trouble = search.run(limits);
    found = search.result();
    learn(found.boards);
    return trouble;
}

RackLink::Trouble RackState::ask(const std::vector<in_addr_t>& addresses, RackLink::Limits& limits,
                                 Discovery& found) {
    std::set<RackSearch::Answer> answers;
    const auto told = [&](const RackSearch::Answer& answer) { answers.insert(answer); };
    const RackLink::Trouble trouble = RackSearch::askAt(addresses, told, limits);
    found = RackSearch::discoveryOf(answers);
    learn(found.boards);
    return trouble;
}

void RackState::end() {
    keeper_.stop();
    log_.end();
    const std::lock_guard<std::mutex> lock(mutex_);
    boards_.clear(); // which own what they are part of
}

} // namespace Orvane::RackCore
