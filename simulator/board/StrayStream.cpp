// The stray datagrams' bytes and pace.
#include "simulator/board/StrayStream.h"

#include "simulator/board/ReplyBytes.h"

#include <algorithm>
#include <arpa/inet.h>

namespace OrvaneSim {
namespace {

using Kind = StrayDatagrams::Kind;

constexpr unsigned kTicksPerSecond = 1000; // at most; what is due beyond that leaves together
constexpr std::size_t kShortest = 4;       // of random datagrams
constexpr std::size_t kRandomSizes = 256;

} // namespace

StrayStream::StrayStream(EventLoop& loop, RpcServer& server, std::uint64_t& sent, const StrayDatagrams& what,
                         Dice dice)
    : loop_(loop), server_(server), sent_(sent), what_(what), dice_(dice), left_(what.count) {
    what_.perSecond = std::clamp(what_.perSecond, 1U, StrayDatagrams::kMostPerSecond);
    tick();
}

void StrayStream::tick() {
    const auto& peers = server_.recentPeers();
    const unsigned due = std::max(1U, what_.perSecond / kTicksPerSecond);
    for (unsigned i = 0; i < due && left_ > 0 && !peers.empty(); ++i, --left_)
        for (const sockaddr_in& peer : peers)
            sendOne(peer);
    if (left_ == 0)
        return;
    const unsigned ticks = std::min(what_.perSecond, kTicksPerSecond);
    loop_.after(std::chrono::microseconds(1000000 / ticks), life_, [this] { tick(); });
}

// A successful reply whose result is one word 0.
std::string StrayStream::reply(std::uint32_t transaction) {
    constexpr std::uint32_t kReplyDirection = 1;
    std::string bytes;
    for (const std::uint32_t word : {transaction, kReplyDirection, 0U, 0U, 0U, 0U, 0U}) {
        const std::uint32_t raw = htonl(word);
        bytes.append(reinterpret_cast<const char*>(&raw), sizeof raw);
    }
    return bytes;
}

void StrayStream::sendOne(const sockaddr_in& peer) {
    const Kind kind = what_.kind == Kind::Mixed ? static_cast<Kind>(turn_++ % 4) : what_.kind;
    std::string bytes;
    switch (kind) {
    case Kind::WrongTransaction:
        bytes = reply(server_.lastTransaction() ^ 0x80000000U);
        break;
    case Kind::WrongPort:
        bytes = reply(server_.lastTransaction());
        break;
    case Kind::Short:
        bytes = madeUpBytes(dice_.below(kShortest), dice_);
        break;
    case Kind::Random:
    case Kind::Mixed:
        bytes = madeUpBytes(kShortest + dice_.below(kRandomSizes), dice_);
        break;
    }
    server_.sendDatagram(peer, bytes, kind == Kind::WrongPort);
    ++sent_;
}

} // namespace OrvaneSim
