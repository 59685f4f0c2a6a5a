// Events in their order, to the callback that stands when they are delivered.
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
    const std::lock_guard<std::mutex> lock(mutex_);
    callback_ = std::move(callback);
}

void EventQueue::deliver() {
    std::vector<Event> events;
    EventCallback callback;
    {
        const std::lock_guard<std::mutex> lock(mutex_);
        events.swap(events_);
        callback = callback_;
    }
    if (callback)
        for (const Event& event : events)
            callback(event);
}

} // namespace Orvane::RackCore
