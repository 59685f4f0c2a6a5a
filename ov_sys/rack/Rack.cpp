// Names become ports, searches become lists of boards.
#include "ov_sys/rack/Rack.h"

#include "ov_sys/rack/core/PortState.h"
#include "ov_sys/rack/core/RackState.h"
#include "ov_sys/rack/link/Endpoint.h"
#include "ov_sys/rack/link/PortName.h"

#include <system_error>
#include <utility>

namespace Orvane {

using RackCore::Board;

namespace {

in_addr_t parsed(const std::string& address, const char* operation, const std::string& board) {
    if (const std::optional<in_addr_t> known = RackLink::parseDotted(address))
        return *known;
    FailureDetails details;
    details.board = board;
    details.operation = operation;
    details.location = board.empty() ? '"' + address + '"' : "";
    details.advice = "An address is four numbers with dots between them.";
    throw Failure(std::move(details));
}

} // namespace

Rack::Rack() : state_(std::make_shared<RackCore::RackState>()) {}

Rack::~Rack() {
    state_->end();
}

Port Rack::open(const std::string& name, Access access, const Within& within) {
    const RackLink::PortName parsed = RackLink::PortName::parse(name, "open");
    std::shared_ptr<Board> board = state_->find(parsed.board);
    if (!board) {
        RackLink::Limits limits(within);
        RackLink::Trouble trouble = state_->search({parsed.board}, limits);
        board = state_->find(parsed.board);
        if (!trouble && !board)
            trouble = FailureKind::NoSuchPort;
        if (!board)
            throw RackLink::notFound(trouble, "open", parsed);
    }
    return Port(std::make_shared<RackCore::PortState>(std::move(board), parsed.port, access));
}

Discovery Rack::discover(const Within& within) {
    return discover({}, within);
}

Discovery Rack::discover(const std::function<bool(const FoundBoard&)>& enough, const Within& within) {
    RackLink::Limits limits(within);
    Discovery found;
    if (const RackLink::Trouble trouble = state_->search(limits, found, enough))
        throw RackLink::notFound(trouble, "discover", {});
    return found;
}

Discovery Rack::ask(const std::vector<std::string>& addresses, const Within& within) {
    RackLink::Limits limits(within);
    std::vector<in_addr_t> whom;
    whom.reserve(addresses.size());
    for (const std::string& address : addresses)
        whom.push_back(parsed(address, "ask", {}));
    Discovery found;
    if (const RackLink::Trouble trouble = state_->ask(whom, limits, found))
        throw RackLink::notFound(trouble, "ask", {});
    return found;
}

void Rack::know(const std::string& board, const std::string& address) {
    state_->add(RackLink::PortName::upper(board), parsed(address, "know", board));
}

void Rack::onEvent(EventCallback callback) {
    state_->onEvent(std::move(callback));
}

void Rack::logTo(const std::string& path) {
    try {
        state_->log().begin(path);
    } catch (const std::system_error& problem) {
        FailureDetails details;
        details.operation = "log to";
        details.location = '"' + path + '"';
        details.advice = "The file cannot be opened: " + problem.code().message() + ".";
        throw Failure(std::move(details));
    }
}

void Rack::logTo(LogSink sink) {
    state_->log().begin(std::move(sink));
}

void Rack::endLog() {
    state_->log().end();
}

void Rack::note(std::string_view text) {
    state_->log().note(text);
}

std::map<std::string, BoardCounters> Rack::counters() const {
    std::map<std::string, BoardCounters> all;
    for (const std::shared_ptr<Board>& board : state_->all())
        all.emplace(board->link.board(), board->link.tally().read());
    return all;
}

} // namespace Orvane
