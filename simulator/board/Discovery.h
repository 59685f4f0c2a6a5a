// How boards answer requests for discovery: what is said, over multicast and over TCP.
#pragma once

#include "simulator/board/BoardName.h"
#include "simulator/board/FaultQueue.h"

#include <chrono>
#include <cstdint>
#include <deque>
#include <mutex>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace OrvaneSim {

// UDP port of discovery requests and replies, TCP port of the probe.
constexpr std::uint16_t kDiscoveryPort = 12345;

// The word of a discovery request; none when the message is no request.
std::optional<std::string> discoveryWord(std::string_view message);

// What one board hears and says in discovery. Belongs to the loop's thread, but for the lists of requests
// heard, which any thread may read.
class DiscoveryResponder {
public:
    explicit DiscoveryResponder(BoardName name) : name_(std::move(name)) {}

    const BoardName& name() const { return name_; }

    // What is said, and how long after it was asked for.
    struct Replies {
        std::vector<std::string> texts;
        std::chrono::milliseconds delay{0};
    };

    // Replies to a multicast request for `word`, in order; usually one, or none when another board is meant.
    Replies repliesTo(const std::string& word, FaultQueue& faults);

    // Pieces of the answer to a TCP probe for `word`, to be sent apart from each other before the connection
    // is closed; none when the connection is to stay open without an answer.
    std::optional<Replies> probeReplyTo(const std::string& word, FaultQueue& faults);

    // Answers every multicast request and probe, whatever its word, with these texts; none restores the
    // usual reply.
    void setReplies(std::optional<std::vector<std::string>> texts) { replies_ = std::move(texts); }

    // Answers every probe with these pieces; none restores the usual reply.
    void setProbeChunks(std::optional<std::vector<std::string>> chunks) { chunks_ = std::move(chunks); }

    // Words of the requests heard, answered or not.
    std::vector<std::string> requestsHeard() const;
    std::vector<std::string> probesHeard() const;

private:
    static void remember(std::deque<std::string>& heard, const std::string& word);

    BoardName name_;
    std::optional<std::vector<std::string>> replies_;
    std::optional<std::vector<std::string>> chunks_;
    mutable std::mutex heardMutex_; // guards requests_ and probes_
    std::deque<std::string> requests_;
    std::deque<std::string> probes_;
};

} // namespace OrvaneSim
