// An event as a line of text.
#include "ov_sys/rack/values/Event.h"

#include <ostream>

namespace Orvane {

const char* toText(Event::Kind kind) noexcept {
    switch (kind) {
    case Event::Kind::Opened:
        return "opened";
    case Event::Kind::Lost:
        return "lost";
    case Event::Kind::Retried:
        return "retried";
    case Event::Kind::Moved:
        return "moved";
    case Event::Kind::Reopened:
        return "reopened";
    case Event::Kind::PingLost:
        return "ping lost";
    case Event::Kind::Closed:
        return "closed";
    case Event::Kind::LogFailed:
        return "log failed";
    }
    return "unknown event";
}

std::ostream& operator<<(std::ostream& out, const Event& event) {
    out << event.board;
    if (event.port >= 0)
        out << ':' << event.port;
    if (event.phy >= 0)
        out << " PHY " << event.phy;
    out << (event.board.empty() ? "" : ": ") << toText(event.kind);
    return event.text.empty() ? out : out << ", " << event.text;
}

} // namespace Orvane
