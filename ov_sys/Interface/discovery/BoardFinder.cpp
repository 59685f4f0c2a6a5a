// The paced search and what counts as an answer to it.
#include "ov_sys/Interface/discovery/BoardFinder.h"

#include "ov_sys/Interface/discovery/DiscoveryProtocol.h"
#include "ov_sys/Interface/discovery/DottedAddress.h"
#include "ov_sys/Interface/discovery/MulticastBoardResolver.h"
#include "ov_sys/Interface/discovery/SearchLimits.h"
#include "ov_sys/Interface/discovery/TcpBoardResolver.h"
#include "ov_sys/Interface/foundation/HWIHelper.h"

#include <algorithm>
#include <arpa/inet.h>
#include <cerrno>
#include <cstddef>
#include <cstring>
#include <limits>
#include <memory>
#include <netdb.h>
#include <utility>

namespace Orvane {

namespace {

constexpr unsigned kFirstDelayMs = 10;
constexpr unsigned kLongestDelayMs = 250;

// Ends a listener that an exception leaves running.
class ListenerGuard {
public:
    explicit ListenerGuard(MulticastBoardResolver& resolver) : resolver_(resolver) {}
    ListenerGuard(const ListenerGuard&) = delete;
    ListenerGuard& operator=(const ListenerGuard&) = delete;
    ~ListenerGuard() {
        if (resolver_.listener.joinable())
            resolver_.stopListener();
    }

private:
    MulticastBoardResolver& resolver_;
};

// gethostbyname() for any number of threads: null when there is no such host. The result lies in `host` and
// `storage`.
const hostent* lookUp(const std::string& name, hostent& host, std::vector<char>& storage) {
    hostent* result = nullptr;
    int problem = 0;
    storage.resize(1024);
    while (gethostbyname_r(name.c_str(), &host, storage.data(), storage.size(), &result, &problem) == ERANGE)
        storage.resize(storage.size() * 2);
    return result;
}

bool holds(const std::vector<AddressResponse*>& found, const AddressResponse& board) {
    return std::any_of(found.begin(), found.end(),
                       [&](const AddressResponse* each) { return *each == board; });
}

bool printable(const std::string& text) {
    return std::all_of(text.begin(), text.end(), [](char each) { return each >= ' ' && each <= '~'; });
}

// handleReceivedData(), up to `most` records in `found`.
void merge(const std::string& boardType, std::vector<AddressResponse>& replies,
           std::vector<AddressResponse*>& found, std::size_t most) {
    for (AddressResponse& each : replies) {
        const AddressResponse& board = BoardFinder::parseResponce(boardType, each);
        if (board.name.empty() || holds(found, board))
            continue;
        if (found.size() >= most) {
            ++SearchLimits::excess;
            continue;
        }
        auto record = std::make_unique<AddressResponse>(board);
        found.push_back(record.get());
        static_cast<void>(record.release());
    }
    replies.clear();
}

} // namespace

int BoardFinder::find(std::string boardType, std::vector<AddressResponse*>& found, unsigned timeoutMs,
                      unsigned maxCount) {
    return find(std::move(boardType), found, timeoutMs, maxCount, std::atomic<bool>(false));
}

int BoardFinder::find(std::string boardType, std::vector<AddressResponse*>& found, unsigned timeoutMs,
                      unsigned maxCount, const std::atomic<bool>& givenUp) {
    const std::string request = DiscoveryProtocol::request(boardType);
    MulticastBoardResolver resolver(DiscoveryProtocol::kGroup, DiscoveryProtocol::kPort);
    resolver.startListener();
    const ListenerGuard guard(resolver);
    resolver.send(request);

    const std::size_t most = found.size() + SearchLimits::kNew;
    std::vector<AddressResponse> replies;
    unsigned delayMs = kFirstDelayMs;
    unsigned elapsedMs = 0;
    bool lastRound = false;
    while (!lastRound) {
        HWIHelper::mSleep(static_cast<int>(delayMs));
        if (givenUp)
            break;
        if (timeoutMs < elapsedMs) {
            resolver.stopListener();
            lastRound = true;
        }
        resolver.GetReplies(replies);
        merge(boardType, replies, found, most);
        if (found.size() > maxCount) {
            resolver.stopListener();
            break;
        }
        if (delayMs >= kLongestDelayMs)
            resolver.send(request);
        elapsedMs += delayMs;
        delayMs = std::min(2 * delayMs, kLongestDelayMs);
    }
    return 0;
}

bool BoardFinder::findByHostName(std::string host, AddressResponse& out) {
    const std::string name = host.substr(0, host.find(':'));
    in_addr literal{};
    if (inet_aton(name.c_str(), &literal) != 0)
        return false;

    hostent entry{};
    std::vector<char> storage;
    const hostent* resolved = lookUp(name, entry, storage);
    if (resolved == nullptr || resolved->h_addrtype != AF_INET)
        return false;
    std::size_t count = 0;
    for (; resolved->h_addr_list[count] != nullptr; ++count) {
        in_addr address{};
        std::memcpy(&address, resolved->h_addr_list[count], sizeof address);
        out.assign(host, dottedAddress(address));
    }
    return count == 1;
}

AddressResponse& BoardFinder::parseResponce(const std::string& boardType, AddressResponse& reply) {
    std::string key = boardType + "|";
    HWIHelper::str_to_lower(key);
    std::string text = reply.name;
    HWIHelper::str_to_lower(text);
    std::string name = HWIHelper::start_with(text, key) ? text.substr(key.size()) : "";
    // As it was sent: what a letter becomes in lower case is the locale's.
    if (!name.empty() && !printable(reply.name.substr(key.size()))) {
        ++SearchLimits::unprintable;
        name.clear();
    }
    reply.assign(std::move(name), reply.address);
    return reply;
}

void BoardFinder::find_ports(std::string boardType, AddressResponse& board) {
    TcpBoardResolver resolver(board.address, DiscoveryProtocol::kPort, boardType);
    resolver.resolveBoardPorts();
    AddressResponse reply(resolver.reply, board.address);
    board = parseResponce(boardType, reply);
}

void BoardFinder::handleReceivedData(const std::string& boardType, std::vector<AddressResponse>& replies,
                                     std::vector<AddressResponse*>& found) {
    merge(boardType, replies, found, std::numeric_limits<std::size_t>::max());
}

DroppedAnswers BoardFinder::dropped() noexcept {
    return {SearchLimits::unprintable, SearchLimits::excess};
}

} // namespace Orvane
