// Finds boards: by multicast search, by host name, by asking one address.
#pragma once

#include "ov_sys/Interface/foundation/AddressResponse.h"
#include "ov_sys/Interface/foundation/Export.h"

#include <atomic>
#include <cstdint>
#include <string>
#include <vector>

namespace Orvane {

// What the searches of this process left out, since it began.
struct DroppedAnswers {
    std::uint64_t unprintable; // answers of the type asked for with a name beyond printable ASCII
    std::uint64_t excess;      // answers and devices beyond what one search, or memory, takes in
};

// Keeps no state but the count of what was dropped: every operation may run on several threads at once, each
// with its own arguments.
class ORVANE_API BoardFinder {
public:
    // Searches all local IPv4 networks for the boards that answer to `boardType` (a type word, serial number
    // or device name; empty for every board) and appends those that `found` does not hold yet, by name and
    // address. Names are lower case. The caller owns the appended records (delete). Returns 0.
    //
    // Blocks in rounds of 10, 20, 40, 80, 160 and then always 250 ms, the request being repeated after each
    // round of 250 ms. Ends with the first round that leaves more than `maxCount` records in `found`, or with
    // the one before which more than `timeoutMs` milliseconds were slept. Appends 1,024 records at most;
    // dropped() counts the others.
    //
    // Throws Exceptions::Standard when the host has no IPv4 address, and std::system_error when a thread
    // cannot be started or when count and time-out end the search in the same round; what was found stays in
    // `found`.
    static int find(std::string boardType, std::vector<AddressResponse*>& found, unsigned timeoutMs,
                    unsigned maxCount);
    // The same; ends with the first round at whose end `givenUp` is set, what came in that round not
    // counting.
    static int find(std::string boardType, std::vector<AddressResponse*>& found, unsigned timeoutMs,
                    unsigned maxCount, const std::atomic<bool>& givenUp);

    // Resolves the part of `host` before the first ":" to IPv4 addresses. For each, `out` becomes the whole
    // `host` and the address, so the last one stays. True exactly when there is one address; false for
    // several, for none, and for dotted addresses, which are not looked up. Blocks as long as the system's
    // resolver does.
    static bool findByHostName(std::string host, AddressResponse& out);

    // Strips the type word and "|" from the reply text in `reply.name`, all in lower case, and returns
    // `reply`. The name becomes empty when the reply is of another type or names no board, or when the name
    // holds a byte that is not printable ASCII (0x20 to 0x7E), which dropped() counts; the address stays.
    static AddressResponse& parseResponce(const std::string& boardType, AddressResponse& reply);

    // Asks the board at `board.address` for its name over TCP. `board.name` becomes the parsed name, or empty
    // when there was no answer of this type. Blocks as TcpBoardResolver::Search() does.
    static void find_ports(std::string boardType, AddressResponse& board);

    // Parses each reply, appends a copy of every accepted one that `found` does not hold yet, by name and
    // address, and empties `replies`. The caller owns the appended records (delete).
    static void handleReceivedData(const std::string& boardType, std::vector<AddressResponse>& replies,
                                   std::vector<AddressResponse*>& found);

    // What was left out up to now, by all searches together. Throws nothing.
    static DroppedAnswers dropped() noexcept;
};

} // namespace Orvane
