// Events on their way from wherever they happen to the one callback.
#pragma once

#include "ov_sys/rack/values/Event.h"

#include <condition_variable>
#include <deque>
#include <memory>
#include <mutex>
#include <thread>

namespace Orvane::RackCore {

// Any thread.
class EventQueue {
public:
    // Keeps the event if there is a callback; true when it does.
    bool push(Event event);
    // Returns when the former callback runs no more, unless it is that callback who asks. Events that are
    // still waiting are for the new one.
    void setCallback(EventCallback callback);
    // Calls the callback with what has come, in order, under no lock. One thread.
    void deliver();

private:
    using Shared = std::shared_ptr<const EventCallback>;

    std::mutex mutex_; // guards everything below
    std::condition_variable returned_;
    std::thread::id running_; // the thread that a callback runs on
    Shared callback_;         // null: none
    std::deque<Event> events_;
};

} // namespace Orvane::RackCore
