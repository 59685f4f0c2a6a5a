// The sessions that clients hold on a board.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <memory>

namespace OrvaneSim {

enum class OpenMode { Exclusive, Concurrent, Simple };

struct Session {
    unsigned deviceIndex = 0;
    unsigned phyAddress = 0;
    OpenMode mode = OpenMode::Simple;
    std::uint32_t key = 0;
};

// Grants and forgets sessions. An exclusive session keeps every other one from its port (device index and
// PHY address) and is granted only on a free port; whoever brings the holder's key, if that is not 0,
// passes. Concurrent and simple sessions share a port. A client that asks without key for an exclusive or
// concurrent session is given one; a simple session without key stays without. Ids are 1 to 255, the longest
// unused first. Belongs to the loop's thread.
class Sessions {
public:
    // Outcome of an open: `error` 0 and the session, or a negative errno value.
    struct Opening {
        int error = 0;
        unsigned id = 0;
        std::uint32_t key = 0;
    };

    Opening open(Session wanted);

    // The id of a session in an identity word, its low 8 bits.
    static unsigned idOf(std::uint32_t identity) { return identity % kIds; }

    // The session that an identity word names; null when there is none. The pointer is
    // good until the next open or close.
    const Session* find(std::uint32_t identity) const;

    // Forgets the session of an identity word; false when there is none.
    bool close(std::uint32_t identity);

    void clear();
    std::size_t count() const { return count_; }

private:
    static constexpr unsigned kIds = 256; // id 0 is never given
    bool keptOut(const Session& wanted) const;
    std::uint32_t makeKey();

    std::array<std::unique_ptr<Session>, kIds> sessions_;
    std::size_t count_ = 0;
    unsigned lastId_ = 0;
    std::uint32_t lastKey_ = 0x4FFF;
};

} // namespace OrvaneSim
