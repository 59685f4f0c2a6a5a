// Lets Ctrl-C end a call that the main thread waits in.
#pragma once

#include "ov_sys/rack/values/Within.h"

#include <csignal>

namespace OrvanePython {

// While one lives, SIGINT cancels the call and then does what it did before. Made and destroyed with the GIL,
// by any thread; does nothing on others than the main one, which alone is told of signals, nor where SIGINT
// is ignored or left to the system. Those of calls within calls (hooks) share the outermost one's handler.
class Interruptible {
public:
    // Gives `limits` a cancellation unless it has one, which is cancelled then.
    explicit Interruptible(Orvane::Within& limits);
    ~Interruptible();
    Interruptible(const Interruptible&) = delete;
    Interruptible& operator=(const Interruptible&) = delete;

    // Throws what the program's own handlers of signals throw, KeyboardInterrupt as a rule.
    static void raise();

    // Of the thread that loads the module: `thread` is the main one's pthread_t.
    static void begin(unsigned long thread) noexcept;
    // In a child: its cancellation would be its parent's. The caller is the main thread from now on.
    static void forget() noexcept;

private:
    bool installed_ = false;
};

} // namespace OrvanePython
