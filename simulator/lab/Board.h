// One simulated board of a lab: its state, its requests, its faults.
#pragma once

#include "simulator/board/Action.h"
#include "simulator/board/CallCounts.h"
#include "simulator/board/Fault.h"
#include "simulator/board/Request.h"
#include "simulator/board/StrayDatagrams.h"
#include "simulator/models/AnalogueInputs.h"
#include "simulator/models/CommandTable.h"
#include "simulator/models/MdioPorts.h"
#include "simulator/models/PathTroubles.h"

#include <chrono>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace OrvaneSim {

struct BoardOptions {
    // IPv4 address; empty for the next free one: 10.83.0.1 and up in a private network, else 127.0.0.2 and
    // up.
    std::string address;
    std::string serial = "01A2";
    // Device names; empty for serial:0 and serial:1.
    std::vector<std::string> devices;
    // What the board name line begins with.
    std::string firstWord = "host";
    // Whatever the board makes up follows from this number.
    std::uint64_t seed = 1;
    // Runs remote commands in a real shell of this machine instead of answering them from a table: as nobody
    // when this process is root's. Only at a loopback address or in a private network; Lab::add() throws
    // std::invalid_argument elsewhere, and std::runtime_error when the shell could only be root's.
    bool allowShell = false;
    // How many of its requests the board keeps for `requests`; the counts go on without.
    std::size_t keptRequests = 100000;
};

class Lab;

// One board of a lab. Its member functions may be called from any thread; those that reach into the board
// wait for the lab's thread. Owned by the lab.
class Board {
public:
    ~Board();
    Board(const Board&) = delete;
    Board& operator=(const Board&) = delete;

    std::string address() const;
    const std::string& serial() const;
    // First word and device names, as sent in discovery.
    std::string nameLine() const;

    // The newest requests (up to 100,000 or 32 MiB of arguments) in arrival order, those that met a fault
    // included; the port mapper's only when asked for by name.
    std::vector<Request> requests(const std::string& program = "") const;
    std::vector<Request> requestsOf(const std::string& procedure) const;
    void forgetRequests();
    // The first request, recorded or yet to come, that `predicate` accepts; the port mapper's are shown to
    // it too. Blocks up to `limit`, then throws std::runtime_error. `predicate` runs on the calling thread.
    Request waitFor(const std::function<bool(const Request&)>& predicate,
                    std::chrono::milliseconds limit = std::chrono::seconds(10)) const;

    // Calls `observer` on the lab's thread with every request from now on, the port mapper's too, after its
    // fault was decided and before it is executed. The observer may use the board and must not block.
    void onRequest(std::function<void(const Request&)> observer);

    // Requests of a procedure counted from the board's making on, whatever was forgotten; zeros when there
    // were none.
    CallCounts counts(const std::string& procedure) const;
    // How often a procedure was run.
    std::uint64_t executions(const std::string& procedure) const { return counts(procedure).executed; }
    // The counts of every procedure that was asked for, by its name.
    std::map<std::string, CallCounts> counts() const;
    // Stray datagrams sent so far.
    std::uint64_t straysSent() const;

    // Registers of the PHY at address `phy` (0 to 31) of port `device`; for Clause 45 `address` is
    // (MMD << 16) | register. They need no session and are not recorded.
    void setRegister(Space space, unsigned device, unsigned phy, std::uint32_t address, std::uint32_t value);
    std::uint32_t registerValue(Space space, unsigned device, unsigned phy, std::uint32_t address) const;

    // Every register that was ever written or set, and their replacement by others: those left out are then
    // as never written.
    std::vector<RegisterValue> registers() const;
    void replaceRegisters(const std::vector<RegisterValue>& values);

    // Makes a PHY's registers behave as a map declares (<orvane/lab_maps.h> reads one), in place of the map
    // that it had. Registers that were written go on with what they hold, the others begin with their reset
    // values. Setting a register is then what the PHY does: a latching bit holds what it was.
    void useMap(const UseMap& map);

    // Has the PHY at address `phy` of port `device` raise an MDIO interrupt, for the sessions that asked for
    // its interrupts.
    void raiseInterrupt(unsigned device, unsigned phy);

    // Makes the board's indirect register paths (mailbox, SerDes bridge, MMD 10 window) go wrong, from the
    // next access on; `{}` puts them right.
    void setPathTroubles(const PathTroubles& troubles);

    // What surrounds the board's devices. Numbers that do not exist throw std::out_of_range.

    // Level on a general-purpose line (0 to 31), as the board reads it.
    bool gpioLevel(std::size_t line) const;
    // What the outside drives on a line that is no output; low at first.
    void driveGpio(std::size_t line, bool level);
    // Wires an input to an output line, so that it follows it while that output is enabled.
    void wireGpio(std::size_t output, std::size_t input);
    // What an analogue input (0 to 7) sees; a sine at first.
    void setWaveform(std::size_t channel, const Waveform& waveform);
    // Name of the capture's dump file, empty when none was set. No file is written.
    std::string adcDumpFile() const;
    // Temperature, in degrees Celsius, that channels without control approach; 25 at first.
    void setAmbientTemperature(double celsius);
    // Temperature of a channel (0 to 3), in degrees Celsius; 25 at first.
    void setTemperature(std::size_t channel, double celsius);
    // The 256 bytes of the EEPROM of an I2C bus (0 to 9).
    std::vector<std::uint8_t> eeprom(unsigned bus) const;
    // Replaces the EEPROM's first bytes, up to 256.
    void setEeprom(unsigned bus, const std::vector<std::uint8_t>& bytes);
    // Identification registers of the JTAG chain, the device next to TDO first.
    std::vector<std::uint32_t> jtagIdentifications() const;
    // Outcome of a remote command, for a board without shell.
    void setCommand(const std::string& command, const CommandOutcome& outcome);

    // Does what an action says; the member functions below do the same one by one. On the lab's thread (in
    // an observer) what opens or closes sockets is done as soon as the request that is being served is
    // answered.
    void apply(const Action& action);

    // Adds a fault behind those that wait already.
    void inject(const Fault& fault);
    void clearFaults();
    // Faults that wait, what is left of their counts.
    std::vector<Fault> faults() const;

    // Begins a stream of stray datagrams, in place of one that still flows. One ends when the board stops.
    void sendStrays(const StrayDatagrams& what);

    // Closes every socket: calls are refused and discovery goes unheard. A stopped board stays stopped.
    void stop();
    // Goes on with open sockets, but hears nothing, discovery neither, until `start`.
    void hang();
    // Serves again, after `stop` at other ports; sessions, registers and faults are as they were. Throws
    // std::system_error when the address is taken.
    void start();
    // Stops and serves again at other ports, with its sessions or without.
    void restart(bool forgetSessions = false);
    // Goes on at another address and at other ports. Throws std::invalid_argument for a text that is no
    // address or an address of the lab's boards, std::system_error for one that cannot be had; the board
    // then serves where it did.
    void moveTo(const std::string& address);
    // Closes the port mapper's sockets, so that it refuses, until they are opened again.
    void closePortMapper();
    void openPortMapper();

    // Ends every session without telling the clients.
    void forgetSessions();
    std::size_t sessionCount() const;

    // Multicast requests heard while serving, for whichever board they were; of `discoveryRequests` what
    // followed "ZRDISCOVER?". One search is heard once per host interface and repetition.
    std::size_t discoveryCount() const;
    std::vector<std::string> discoveryRequests() const;
    // TCP probes received, what followed "ZRDISCOVER?".
    std::vector<std::string> probeRequests() const;

    // Answers every multicast request and TCP probe, whatever its word, with these texts (sent as they are,
    // NUL bytes included; a probe gets them one after the other); none restores the usual answer.
    void setDiscoveryReplies(std::optional<std::vector<std::string>> texts);
    // Answers every TCP probe with these pieces, 5 ms apart, before the connection ends; none restores the
    // usual answer.
    void setProbeChunks(std::optional<std::vector<std::string>> chunks);

private:
    friend class Lab;
    struct Impl;
    explicit Board(std::unique_ptr<Impl> impl);
    void disturb(std::function<void()> work);
    std::unique_ptr<Impl> impl_;
};

} // namespace OrvaneSim
