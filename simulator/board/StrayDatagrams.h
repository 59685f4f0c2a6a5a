// Datagrams that no call asked for.
#pragma once

namespace OrvaneSim {

// A stream of datagrams to the clients whose requests a board saw last.
struct StrayDatagrams {
    enum class Kind {
        WrongTransaction, // a successful reply under an id that nobody waits for
        WrongPort,        // a reply under the id of the last request, from another port
        Short,            // 0 to 3 bytes
        Random,           // 4 to 259 made-up bytes
        Mixed,            // each of these in turn
    };
    static constexpr unsigned kMostPerSecond = 100000;

    Kind kind = Kind::Mixed;
    unsigned perSecond = 100; // 1 to `kMostPerSecond`
    unsigned count = 100;     // after so many to each client the stream ends
};

} // namespace OrvaneSim
