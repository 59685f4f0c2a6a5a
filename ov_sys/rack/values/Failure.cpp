// The sentence of a failure, and the advice for each kind.
#include "ov_sys/rack/values/Failure.h"

#include <cstdio>
#include <cstring>
#include <utility>

namespace Orvane {
namespace {

const char* adviceFor(FailureKind kind) noexcept {
    switch (kind) {
    case FailureKind::InvalidArgument:
        return "Correct the argument; nothing was sent.";
    case FailureKind::NoSuchPort:
        return "Check the name, the board's power and that it is on a network of this host.";
    case FailureKind::Unreachable:
        return "Check the board's power and network.";
    case FailureKind::TimedOut:
        return "Whether it was executed is not known: read back before repeating what has side effects.";
    case FailureKind::Refused:
        return "Wait for its holder to close it, or use the holder's key.";
    case FailureKind::Busy:
        return "Try again later, or allow more time.";
    case FailureKind::LostSession:
        return "Open the port again, or allow healing.";
    case FailureKind::BadReply:
        return "Whether it was executed is not known; check the board's software.";
    case FailureKind::BoardError:
        return "The board answered; look up its code.";
    case FailureKind::Cancelled:
        return "What was already sent may have been executed.";
    }
    return "";
}

// Where it happened: "OV0001:0 PHY 3", as far as known.
std::string place(const FailureDetails& details) {
    std::string text = details.board;
    if (details.port >= 0)
        text += ":" + std::to_string(details.port);
    if (details.phy >= 0)
        text += " PHY " + std::to_string(details.phy);
    return text;
}

std::string nameOf(int code) {
    if (code == 0)
        return {};
    const char* const name = strerrorname_np(-code);
    return name != nullptr ? name : std::to_string(code);
}

std::string sentence(const FailureDetails& details) {
    std::string text = place(details);
    if (!details.operation.empty())
        text += (text.empty() ? "" : ": ") + details.operation;
    if (!details.location.empty())
        text += " " + details.location;
    text += (text.empty() ? "" : ": ") + std::string(toText(details.kind));
    if (details.code != 0)
        text += ", " + nameOf(details.code) + " (" + std::to_string(details.code) + ")";
    if (details.attempts > 0) {
        char effort[80];
        std::snprintf(effort, sizeof effort, " after %u attempt%s in %.3f s", details.attempts,
                      details.attempts == 1 ? "" : "s", static_cast<double>(details.spent.count()) / 1e6);
        text += effort;
    }
    return text + ". " + details.advice;
}

} // namespace

struct Failure::Said {
    FailureDetails details;
    std::string text;
};

const char* toText(FailureKind kind) noexcept {
    switch (kind) {
    case FailureKind::InvalidArgument:
        return "invalid argument";
    case FailureKind::NoSuchPort:
        return "no such port";
    case FailureKind::Unreachable:
        return "unreachable";
    case FailureKind::TimedOut:
        return "timed out";
    case FailureKind::Refused:
        return "refused";
    case FailureKind::Busy:
        return "busy";
    case FailureKind::LostSession:
        return "session lost";
    case FailureKind::BadReply:
        return "bad reply";
    case FailureKind::BoardError:
        return "board error";
    case FailureKind::Cancelled:
        return "cancelled";
    }
    return "unknown failure";
}

Failure::Failure(FailureDetails details) {
    if (details.advice.empty())
        details.advice = adviceFor(details.kind);
    std::string text = sentence(details);
    said_ = std::make_shared<const Said>(Said{std::move(details), std::move(text)});
}

const char* Failure::what() const noexcept {
    return said_->text.c_str();
}

std::string Failure::codeName() const {
    return nameOf(code());
}

const FailureDetails& Failure::details() const noexcept {
    return said_->details;
}

} // namespace Orvane
