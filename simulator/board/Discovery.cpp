// Texts of the discovery exchange.
#include "simulator/board/Discovery.h"

#include "simulator/board/ReplyBytes.h"

namespace OrvaneSim {
namespace {

constexpr std::string_view kRequest = "ZRDISCOVER?";
constexpr std::size_t kMostRemembered = 10000;

} // namespace

std::optional<std::string> discoveryWord(std::string_view message) {
    if (message.substr(0, kRequest.size()) != kRequest)
        return std::nullopt;
    return std::string(message.substr(kRequest.size()));
}

void DiscoveryResponder::remember(std::deque<std::string>& heard, const std::string& word) {
    heard.push_back(word);
    if (heard.size() > kMostRemembered)
        heard.pop_front();
}

DiscoveryResponder::Replies DiscoveryResponder::repliesTo(const std::string& word, FaultQueue& faults) {
    {
        const std::lock_guard<std::mutex> lock(heardMutex_);
        remember(requests_, word);
    }
    if (!replies_ && !name_.answersTo(word))
        return {};
    std::vector<std::string> texts =
        replies_ ? *replies_ : std::vector<std::string>{word + "|" + name_.line()};
    const auto fault = faults.take("discovery", "");
    if (!fault)
        return {texts};
    if (fault->kind == Fault::Kind::DelayReply)
        return {texts, std::chrono::milliseconds(fault->value)};
    if (fault->kind == Fault::Kind::DuplicateReply) {
        const std::size_t count = texts.size();
        for (std::size_t i = 0; i < count; ++i)
            texts.push_back(texts[i]);
        return {texts};
    }
    const auto change = byteChangeOf(*fault, faults.dice());
    if (!change)
        return {};
    for (std::string& text : texts)
        change(text);
    return {texts};
}

std::optional<DiscoveryResponder::Replies> DiscoveryResponder::probeReplyTo(const std::string& word,
                                                                            FaultQueue& faults) {
    {
        const std::lock_guard<std::mutex> lock(heardMutex_);
        remember(probes_, word);
    }
    const auto fault = faults.take("probe", "");
    if (fault && fault->kind == Fault::Kind::Silent)
        return std::nullopt;
    const bool late = fault && fault->kind == Fault::Kind::DelayReply;
    const auto change = fault ? byteChangeOf(*fault, faults.dice()) : nullptr;
    const bool changed = chunks_ || replies_;
    if ((!changed && !name_.answersTo(word)) || (fault && !change && !late))
        return Replies{};
    std::vector<std::string> pieces{word + "|" + name_.line()};
    if (changed)
        pieces = chunks_ ? *chunks_ : *replies_;
    if (change)
        for (std::string& piece : pieces)
            change(piece);
    return Replies{pieces, std::chrono::milliseconds(late ? fault->value : 0)};
}

std::vector<std::string> DiscoveryResponder::requestsHeard() const {
    const std::lock_guard<std::mutex> lock(heardMutex_);
    return {requests_.begin(), requests_.end()};
}

std::vector<std::string> DiscoveryResponder::probesHeard() const {
    const std::lock_guard<std::mutex> lock(heardMutex_);
    return {probes_.begin(), probes_.end()};
}

} // namespace OrvaneSim
