// Truncation, noise and replacement of replies.
#include "simulator/board/ReplyBytes.h"

#include <algorithm>
#include <set>

namespace OrvaneSim {
namespace {

constexpr std::size_t kReplyHeader = 24; // of a successful reply, in front of the result
constexpr std::int64_t kMostMadeUp = 60000;

std::size_t limited(std::int64_t value) {
    return static_cast<std::size_t>(std::clamp<std::int64_t>(value, 0, kMostMadeUp));
}

// Changes `count` different bytes, or all there are, at places and by patterns that `dice` decides.
void corrupt(std::string& reply, std::size_t count, Dice dice) {
    std::set<std::size_t> places;
    while (places.size() < std::min(count, reply.size()))
        places.insert(dice.below(reply.size()));
    for (const std::size_t place : places)
        reply[place] = static_cast<char>(static_cast<unsigned char>(reply[place]) ^ (1U + dice.below(255)));
}

void changeTransaction(std::string& reply) {
    if (!reply.empty())
        reply[0] = static_cast<char>(static_cast<unsigned char>(reply[0]) ^ 0x80U);
}

} // namespace

std::string madeUpBytes(std::size_t count, Dice& dice) {
    std::string bytes(count, '\0');
    std::generate(bytes.begin(), bytes.end(), [&] { return static_cast<char>(dice.next() & 0xFFU); });
    return bytes;
}

std::function<void(std::string& reply)> byteChangeOf(const Fault& fault, Dice& dice) {
    const std::size_t count = limited(fault.value);
    switch (fault.kind) {
    case Fault::Kind::TruncateReply:
        return [count](std::string& reply) { reply.resize(std::min(reply.size(), count)); };
    case Fault::Kind::LengthenReply:
        return [tail = madeUpBytes(count, dice)](std::string& reply) { reply += tail; };
    case Fault::Kind::CorruptReply:
        return [count, own = Dice(dice.next())](std::string& reply) { corrupt(reply, count, own); };
    case Fault::Kind::GarbageReply:
        return [garbage = madeUpBytes(count, dice)](std::string& reply) { reply = garbage; };
    case Fault::Kind::ReplyBody:
        return [body = fault.bytes](std::string& reply) {
            reply.resize(std::min(reply.size(), kReplyHeader));
            reply += body;
        };
    case Fault::Kind::WrongTransaction:
        return changeTransaction;
    default:
        return nullptr;
    }
}

} // namespace OrvaneSim
