// Calls on many boards at once, driven by one thread.
#pragma once

#include "ov_sys/rack/core/Board.h"
#include "ov_sys/rack/link/Drive.h"

#include <functional>
#include <memory>
#include <vector>

namespace Orvane::RackCore {

// Takes the turn of each board, starts its calls, and leaves when they are done. One thread.
class Fleet {
public:
    explicit Fleet(const Within& within) : limits_(within) {}
    // Ends what is still under way.
    ~Fleet();
    Fleet(const Fleet&) = delete;
    Fleet& operator=(const Fleet&) = delete;

    // `call` belongs to the caller and must outlive the fleet, or its end.
    void add(const std::shared_ptr<Board>& board, RackLink::Call& call);

    // Until every call is done or the limits end; `stop`, if given, is asked at every step. With `yields` a
    // board whose turn somebody else waits for is left at once, its calls cancelled. Throws std::bad_alloc
    // only.
    void run(bool yields = false, const std::function<bool()>& stop = {});

private:
    struct Member {
        std::shared_ptr<Board> board;
        std::vector<RackLink::Call*> calls;
        bool hasTurn = false;
        bool done = false;
    };

    bool step(bool yields);
    void begin(Member& member);
    void end(Member& member, RackLink::Trouble why);
    static bool allDone(const Member& member) noexcept;
    void wait();

    RackLink::Limits limits_;
    std::vector<Member> members_;
    std::vector<pollfd> watched_;
};

} // namespace Orvane::RackCore
