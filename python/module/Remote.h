// Holds what talks to boards when it is let go.
#pragma once

#include "python/module/Calls.h"
#include "python/module/Fork.h"

#include <memory>
#include <stdexcept>
#include <string>
#include <utility>

namespace OrvanePython {

// The value lives in the process that made it: a child that came by fork() can neither use it nor end it, for
// its sockets and its session are the parent's. All members want the GIL.
template <class Held>
class Remote {
public:
    explicit Remote(Held held) : held_(std::make_unique<Held>(std::move(held))) {}
    ~Remote() { drop(); }
    Remote(const Remote&) = delete;
    Remote& operator=(const Remote&) = delete;

    // A copy, so that a call keeps it while another thread closes it. Throws std::runtime_error when it is
    // closed, or another process's.
    Held get() const {
        if (generation_ != generation())
            throw std::runtime_error("opened before fork(): a child process opens its boards itself");
        if (!held_)
            throw std::runtime_error("closed");
        return *held_;
    }
    bool usable() const noexcept { return held_ && generation_ == generation(); }
    // Lets go; waits as the end of the value does.
    void drop() {
        if (generation_ != generation())
            return leave(); // its parent's to end
        if (std::unique_ptr<Held> last = std::move(held_))
            outside([own = std::move(last)]() mutable { own.reset(); });
    }
    // Never ends the value.
    void leave() noexcept { static_cast<void>(held_.release()); }

private:
    std::unique_ptr<Held> held_;
    const unsigned generation_ = generation();
};

} // namespace OrvanePython
