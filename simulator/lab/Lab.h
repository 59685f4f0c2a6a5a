// Simulated boards in the calling process, for tests: start them, script faults, read what they were asked.
#pragma once

#include "simulator/board/Fault.h"
#include "simulator/board/Request.h"
#include "simulator/models/AnalogueInputs.h"
#include "simulator/models/CommandTable.h"
#include "simulator/models/MdioPorts.h"
#include "simulator/models/PathTroubles.h"

#include <chrono>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace OrvaneSim {

struct BoardOptions {
    /// IPv4 address; empty for the next free one: 10.83.0.1 and up in a private network, else 127.0.0.2 and
    /// up.
    std::string address;
    std::string serial = "01A2";
    /// Device names; empty for serial:0 and serial:1.
    std::vector<std::string> devices;
    /// What the board name line begins with.
    std::string firstWord = "host";
    /// Whatever the board makes up follows from this number.
    std::uint64_t seed = 1;
    /// Runs remote commands in a real shell of this machine instead of answering them from a table.
    bool allowShell = false;
};

class Lab;

/// One board of a lab. Its member functions may be called from any thread; those that reach into the board
/// wait for the lab's thread. Owned by the lab.
class Board {
public:
    ~Board();
    Board(const Board&) = delete;
    Board& operator=(const Board&) = delete;

    const std::string& address() const;
    const std::string& serial() const;
    /// First word and device names, as sent in discovery.
    std::string nameLine() const;

    /// The newest requests (up to 100,000 or 32 MiB of arguments) in arrival order, those that met a fault
    /// included; the port mapper's only when asked for by name.
    std::vector<Request> requests(const std::string& program = "") const;
    std::vector<Request> requestsOf(const std::string& procedure) const;
    void forgetRequests();
    /// The first request, recorded or yet to come, that `predicate` accepts; the port mapper's are shown to
    /// it too. Blocks up to `limit`, then throws std::runtime_error. `predicate` runs on the calling thread.
    Request waitFor(const std::function<bool(const Request&)>& predicate,
                    std::chrono::milliseconds limit = std::chrono::seconds(10)) const;

    /// Registers of the PHY at address `phy` (0 to 31) of port `device`; for Clause 45 `address` is
    /// (MMD << 16) | register. They need no session and are not recorded.
    void setRegister(Space space, unsigned device, unsigned phy, std::uint32_t address, std::uint32_t value);
    std::uint32_t registerValue(Space space, unsigned device, unsigned phy, std::uint32_t address) const;

    /// Makes the board's indirect register paths (mailbox, SerDes bridge, MMD 10 window) go wrong, from the
    /// next access on; `{}` puts them right.
    void setPathTroubles(const PathTroubles& troubles);

    // What surrounds the board's devices. Numbers that do not exist throw std::out_of_range.

    /// Level on a general-purpose line (0 to 31), as the board reads it.
    bool gpioLevel(std::size_t line) const;
    /// What the outside drives on a line that is no output; low at first.
    void driveGpio(std::size_t line, bool level);
    /// Wires an input to an output line, so that it follows it while that output is enabled.
    void wireGpio(std::size_t output, std::size_t input);
    /// What an analogue input (0 to 7) sees; a sine at first.
    void setWaveform(std::size_t channel, const Waveform& waveform);
    /// Name of the capture's dump file, empty when none was set. No file is written.
    std::string adcDumpFile() const;
    /// Temperature, in degrees Celsius, that channels without control approach; 25 at first.
    void setAmbientTemperature(double celsius);
    /// The 256 bytes of the EEPROM of an I2C bus (0 to 9).
    std::vector<std::uint8_t> eeprom(unsigned bus) const;
    /// Replaces the EEPROM's first bytes, up to 256.
    void setEeprom(unsigned bus, const std::vector<std::uint8_t>& bytes);
    /// Identification registers of the JTAG chain, the device next to TDO first.
    std::vector<std::uint32_t> jtagIdentifications() const;
    /// Outcome of a remote command, for a board without shell.
    void setCommand(const std::string& command, const CommandOutcome& outcome);

    /// Adds a fault behind those that wait already.
    void inject(const Fault& fault);
    void clearFaults();

    /// Closes every socket: calls are refused and discovery goes unheard. A stopped board stays stopped.
    void stop();
    /// Serves again, at new ports; sessions, registers and faults are as they were. Throws std::system_error
    /// when the address is taken.
    void start();

    /// Ends every session without telling the clients.
    void forgetSessions();
    std::size_t sessionCount() const;

    /// Multicast requests heard while serving, for whichever board they were; of `discoveryRequests` what
    /// followed "ZRDISCOVER?". One search is heard once per host interface and repetition.
    std::size_t discoveryCount() const;
    std::vector<std::string> discoveryRequests() const;
    /// TCP probes received, what followed "ZRDISCOVER?".
    std::vector<std::string> probeRequests() const;

    /// Answers every multicast request and TCP probe, whatever its word, with these texts (sent as they are,
    /// NUL bytes included; a probe gets them one after the other); none restores the usual answer.
    void setDiscoveryReplies(std::optional<std::vector<std::string>> texts);
    /// Answers every TCP probe with these pieces, 5 ms apart, before the connection ends; none restores the
    /// usual answer.
    void setProbeChunks(std::optional<std::vector<std::string>> chunks);

private:
    friend class Lab;
    struct Inside;
    explicit Board(std::unique_ptr<Inside> inside);
    std::unique_ptr<Inside> inside_;
};

/// A set of boards served by one thread of the calling process, on the board side of the private network if
/// the process is in one. Its member functions may be called from any thread.
class Lab {
public:
    /// Throws std::system_error when the thread or its sockets cannot be had.
    Lab();
    /// Stops every board; all `Board` references end.
    ~Lab();
    Lab(const Lab&) = delete;
    Lab& operator=(const Lab&) = delete;

    /// Starts a board and returns when it answers. The reference is good as long as the lab. Throws
    /// std::invalid_argument for a serial number or address that the lab has already or that is none, and
    /// std::system_error when the address cannot be served.
    Board& add(const BoardOptions& options = {});

    /// The board with a serial number. Throws std::out_of_range when there is none.
    Board& board(const std::string& serial);

    /// Every board in the order of adding.
    std::vector<Board*> boards();

private:
    struct Inside;
    std::unique_ptr<Inside> inside_;
};

} // namespace OrvaneSim
