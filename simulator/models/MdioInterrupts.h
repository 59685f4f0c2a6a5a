// Interrupts of a board's PHYs: who asked for them, what was raised, who waits.
#pragma once

#include "simulator/models/MdioPorts.h"

#include <chrono>
#include <cstdint>
#include <functional>
#include <map>
#include <utility>

namespace OrvaneSim {

// Each session may ask for the interrupts of one PHY. Those that its PHY raises are counted until it says
// that it has dealt with them, and end its wait. Belongs to the loop's thread.
class MdioInterrupts {
public:
    // Told how many have come and were not dealt with, or a negative errno value.
    using Answer = std::function<void(int count)>;
    // Runs a task after a time.
    using Timer = std::function<void(std::chrono::milliseconds time, std::function<void()> task)>;

    // Without a timer a wait lasts until an interrupt comes.
    void use(Timer timer) { timer_ = std::move(timer); }

    // In place of what the session asked for before; asking once more for the same PHY changes nothing.
    void request(std::uint32_t session, const PhyAddress& phy);
    // How many have come and were not dealt with; -EINVAL: the session asked for none.
    int pending(std::uint32_t session) const;
    // Calls `answer` once: when one comes, when the session lets go (-ECANCELED), or after `time` with 0.
    void wait(std::uint32_t session, std::chrono::milliseconds time, Answer answer);
    // So many are dealt with. Returns 0, or -EINVAL.
    int processed(std::uint32_t session, std::uint32_t count);
    // The session lets go, or ends. Returns 0, or -EINVAL.
    int release(std::uint32_t session);
    // All sessions do.
    void clear();

    // The PHY raises one.
    void raise(const PhyAddress& phy);

private:
    struct Request {
        PhyAddress phy;
        int pending = 0;
        std::map<std::uint64_t, Answer> waiting; // by the number of the wait
    };
    static void answerAll(Request& request, int count);
    void giveUp(std::uint32_t session, std::uint64_t wait);

    std::map<std::uint32_t, Request> requests_; // by session
    std::uint64_t lastWait_ = 0;
    Timer timer_;
};

} // namespace OrvaneSim
