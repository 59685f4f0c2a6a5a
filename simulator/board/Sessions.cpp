// Who may open what on a board.
#include "simulator/board/Sessions.h"

#include <algorithm>
#include <cerrno>

namespace OrvaneSim {

bool Sessions::keptOut(const Session& wanted) const {
    return std::any_of(sessions_.begin(), sessions_.end(), [&](const std::unique_ptr<Session>& held) {
        if (!held || held->deviceIndex != wanted.deviceIndex || held->phyAddress != wanted.phyAddress)
            return false;
        const bool conflict = held->mode == OpenMode::Exclusive || wanted.mode == OpenMode::Exclusive;
        return conflict && (wanted.key == 0 || wanted.key != held->key);
    });
}

std::uint32_t Sessions::makeKey() {
    // Clients keep 16 bits of a key; 0 would mean none.
    lastKey_ = lastKey_ >= 0xFFFF ? 1 : lastKey_ + 1;
    return lastKey_;
}

Sessions::Opening Sessions::open(Session wanted) {
    if (keptOut(wanted))
        return {-EACCES, 0, 0};
    if (count_ == kIds - 1)
        return {-ENOSPC, 0, 0};
    do
        lastId_ = lastId_ % (kIds - 1) + 1;
    while (sessions_[lastId_]);
    if (wanted.key == 0 && wanted.mode != OpenMode::Simple)
        wanted.key = makeKey();
    sessions_[lastId_] = std::make_unique<Session>(wanted);
    ++count_;
    return {0, lastId_, wanted.key};
}

const Session* Sessions::find(std::uint32_t identity) const {
    return sessions_[idOf(identity)].get();
}

bool Sessions::close(std::uint32_t identity) {
    auto& session = sessions_[idOf(identity)];
    if (!session)
        return false;
    session.reset();
    --count_;
    return true;
}

void Sessions::clear() {
    for (auto& session : sessions_)
        session.reset();
    count_ = 0;
}

} // namespace OrvaneSim
