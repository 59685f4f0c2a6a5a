// Requests by session, and their waits.
#include "simulator/models/MdioInterrupts.h"

#include <algorithm>
#include <cerrno>
#include <utility>

namespace OrvaneSim {

void MdioInterrupts::request(std::uint32_t session, const PhyAddress& phy) {
    const auto found = requests_.find(session);
    if (found != requests_.end() && found->second.phy.device == phy.device &&
        found->second.phy.phy == phy.phy)
        return;
    release(session);
    requests_[session].phy = phy;
}

int MdioInterrupts::pending(std::uint32_t session) const {
    const auto found = requests_.find(session);
    return found == requests_.end() ? -EINVAL : found->second.pending;
}

void MdioInterrupts::wait(std::uint32_t session, std::chrono::milliseconds time, Answer answer) {
    const std::uint64_t number = ++lastWait_;
    requests_.at(session).waiting.emplace(number, std::move(answer));
    if (timer_)
        timer_(time, [this, session, number] { giveUp(session, number); });
}

void MdioInterrupts::giveUp(std::uint32_t session, std::uint64_t wait) {
    const auto found = requests_.find(session);
    if (found == requests_.end())
        return;
    if (auto late = found->second.waiting.extract(wait))
        late.mapped()(0);
}

void MdioInterrupts::answerAll(Request& request, int count) {
    for (const auto& [number, answer] : std::exchange(request.waiting, {}))
        answer(count);
}

int MdioInterrupts::processed(std::uint32_t session, std::uint32_t count) {
    const auto found = requests_.find(session);
    if (found == requests_.end())
        return -EINVAL;
    int& pending = found->second.pending;
    pending -= static_cast<int>(std::min<std::uint32_t>(count, static_cast<std::uint32_t>(pending)));
    return 0;
}

int MdioInterrupts::release(std::uint32_t session) {
    const auto found = requests_.find(session);
    if (found == requests_.end())
        return -EINVAL;
    Request ended = std::move(found->second);
    requests_.erase(found);
    answerAll(ended, -ECANCELED);
    return 0;
}

void MdioInterrupts::clear() {
    while (!requests_.empty())
        release(requests_.begin()->first);
}

void MdioInterrupts::raise(const PhyAddress& phy) {
    for (auto& [session, request] : requests_)
        if (request.phy.device == phy.device && request.phy.phy == phy.phy)
            answerAll(request, ++request.pending);
}

} // namespace OrvaneSim
