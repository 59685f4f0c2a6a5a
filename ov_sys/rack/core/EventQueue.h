// Events on their way from wherever they happen to the one callback.
#pragma once

#include "ov_sys/rack/values/Event.h"

#include <functional>
#include <mutex>
#include <vector>

namespace Orvane::RackCore {

// Any thread.
class EventQueue {
public:
    // Keeps the event if there is a callback; true when it does.
    bool push(Event event);
    void setCallback(EventCallback callback);
    // Calls the callback with what has come, in order, under no lock. One thread.
    void deliver();

private:
    std::mutex mutex_; // guards everything below
    EventCallback callback_;
    std::vector<Event> events_;
};

} // namespace Orvane::RackCore
