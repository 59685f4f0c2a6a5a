// Events in their order, each to the callback that stands when its turn comes.
#include "ov_sys/rack/core/EventQueue.h"

#include <utility>

namespace Orvane::RackCore {

bool EventQueue::push(Event event) {
    const std::lock_guard<std::mutex> lock(mutex_);
    if (!callback_)
        return false;
    events_.push_back(std::move(event));
    return true;
}

void EventQueue::setCallback(EventCallback callback) {
    Shared next = callback ? std::make_shared<const EventCallback>(std::move(callback)) : nullptr;
    std::unique_lock<std::mutex> lock(mutex_);
    callback_.swap(next); // the former one ends behind the lock
    if (!callback_)
        events_.clear();
    if (running_ != std::this_thread::get_id())
        returned_.wait(lock, [this] { return running_ == std::thread::id(); });
    lock.unlock();
}

void EventQueue::deliver() {
    std::unique_lock<std::mutex> lock(mutex_);
    while (callback_ && !events_.empty()) {
        Shared callback = callback_;
        const Event event = std::move(events_.front());
        events_.pop_front();
        running_ = std::this_thread::get_id();
        lock.unlock();
        (*callback)(event);
        callback.reset();
        lock.lock();
        running_ = {};
        returned_.notify_all();
    }
}

} // namespace Orvane::RackCore
