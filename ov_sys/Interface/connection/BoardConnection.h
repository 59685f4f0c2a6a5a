// The set of RPC clients that reach one board, and the way back to a board that was lost.
#pragma once

#include "ov_sys/Interface/connection/RPCClient.h"
#include "ov_sys/Interface/foundation/AddressResponse.h"
#include "ov_sys/Interface/foundation/Export.h"

#include <atomic>
#include <map>
#include <memory>
#include <mutex>
#include <rpc/rpc.h>
#include <string>

namespace Orvane {

// Makes one client for each of the board's services at construction and keeps them until it is destroyed.
// When calls begin to fail it finds the board's present address, points every client at it and tries the
// board with a ping. Any thread may call any member function.
//
// Lock order: problemMutex, addressMutex, each client's handleMutex. clientsMutex is taken by resetClients()
// alone, before the clients' own.
class ORVANE_API BoardConnection {
public:
    // The slots of the services' clients; a fixed type, so that any number is a legal value.
    enum clientId : int {
        SETUP = 0,
        MDIO = 1,
        I2C = 2,
        GPIO = 3,
        KEEPALIVE = 4,
        JTAG = 5,
        ADC = 6,
        THERMAL = 7
    };

    int handles[7] = {};                                    // -1 each; nothing uses them
    std::map<clientId, std::unique_ptr<RPCClient>> clients; // constant after construction
    std::mutex problemMutex;                                // one thread at a time looks for a lost board
    std::mutex clientsMutex;                                // held while all clients are reset
    std::mutex addressMutex;             // guards `host` and the re-pointing of the clients
    std::string name;                    // the board's name in upper case; constant
    std::atomic<bool> interfaceSelected; // set by selectInterface(); PhySession::isRemote() tells it
    std::string host;                    // the board's present address, dotted IPv4 text; may be empty

    // Makes the clients without an address, so that none connects.
    explicit BoardConnection(std::string boardName);
    // Makes the clients for the record's address; those of setup, mdio, i2c, gpio, jtag and keepAlive connect
    // at once. A client that cannot connect is reported and stays unconnected. Blocks as RPCClient::connect()
    // for each.
    explicit BoardConnection(const AddressResponse& board);
    ~BoardConnection();
    BoardConnection(const BoardConnection&) = delete;
    BoardConnection& operator=(const BoardConnection&) = delete;

    // Called by the constructors: upper-cases the name, makes the clients and selects the interface.
    void initialize();
    void setupHandles(); // does nothing
    void resetHandles(); // does nothing
    void selectInterface();

    // The client of a service, never null, but perhaps unconnected; the connection owns it. Throws
    // std::out_of_range for an unknown id.
    RPCClient* getClient(clientId id);
    // Makes every client's handle anew, for the present address. The caller keeps `host` from changing
    // meanwhile.
    void updateClients();
    // Drops every client's handle.
    void resetClients();

    // Looks the board up by name (name service and TCP probe, then a multicast search of up to 4 s) and, when
    // its address has changed, points every client at the new one. Throws Exceptions::NoDevice when the board
    // is not found.
    void updateAddress();
    // Updates the address and pings the board until it answers; returns the ping's milliseconds. Throws
    // Exceptions::NoDevice when the limit is reached, which one failed ping does. Blocks for the search of
    // updateAddress(), 250 ms and the ping's time-out.
    int retrieveConnection();
    // Pings the board, and when it does not answer, retrieves the connection. One thread at a time; others
    // wait. Returns the ping's milliseconds and throws as retrieveConnection().
    int problem();

    // Whether searches for the board are in vain, as its session is being closed: one that is under way
    // throws Exceptions::NoDevice after its present step, 4 s at most for a ping (15 s for the look-up and
    // the TCP probe of a board whose name the system's resolver knows), later ones before their first. Does
    // not block.
    void giveUp(bool inVain) { givenUp_ = inVain; }

    // Pings the board through the setup client and returns the milliseconds. Throws
    // Exceptions::DeviceConnection when it does not answer and Exceptions::InvalidRPCClient when the setup
    // client is not connected.
    int testServer();
    int pingServer(); // the same

    // Sets every client's time-out back to 2 s, and for the transport errors 2 to 5 (result not decoded, not
    // sent, not received, timed out) handles the problem and returns true; false for every other status. The
    // text is not used. Throws as problem().
    bool onRPCCallError(clnt_stat status, std::string text);
    // Reports the status and the last client creation error, then throws Exceptions::Standard "Remote
    // error.".
    [[noreturn]] void onRPCCallFatalError(clnt_stat status);

    // Whether this process runs on the board: the board's name is a word in the first line of the local file
    // /boardInfo/name. Each comparison is shown on the standard output stream.
    bool isLocal();

private:
    AddressResponse findBoard();
    void unlessGivenUp() const;

    std::atomic<bool> givenUp_{false};
};

} // namespace Orvane
