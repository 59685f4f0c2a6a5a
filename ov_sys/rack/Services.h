// A board's services beside its registers, through the session of a PHY.
#pragma once

#include "ov_sys/Interface/foundation/Export.h"
#include "ov_sys/rack/values/Failure.h"
#include "ov_sys/rack/values/Within.h"

#include <chrono>
#include <cstdint>
#include <map>
#include <memory>
#include <string>
#include <vector>

namespace Orvane {

namespace RackCore {
class OpenSession;
}

// All classes here are handles that share the session of the Phy that gave them out; what is said there of
// blocking, threads and failures holds here, too. A reply with another number of values than asked for is a
// failure. Operations that the board should not execute twice are sent once unless `within` says otherwise.

// I2C buses of the board, 0 to 9. Device addresses have 7 bits.
class ORVANE_API I2cBus {
public:
    // One transfer of a block. `bytes`: what to write. `format`: bytes of the register number, 0 to 4.
    struct Transfer {
        std::uint8_t bus;
        std::uint32_t device;
        std::uint32_t reg;
        std::uint32_t format;
        std::uint32_t length; // bytes to read; for writes as many as there are
        std::vector<std::uint8_t> bytes{};
    };

    // For Phy, which gives them out.
    explicit I2cBus(std::shared_ptr<RackCore::OpenSession> session) noexcept;

    // Writes bytes to a device.
    void write(std::uint8_t bus, std::uint32_t device, const std::vector<std::uint8_t>& bytes,
               const Within& within = Within{}.once()) const;
    // Writes the byte `command`, then reads 1 to 255 bytes.
    std::vector<std::uint8_t> read(std::uint8_t bus, std::uint32_t device, std::uint8_t command,
                                   std::uint32_t length, const Within& within = Within{}.once()) const;
    // The same with a register number of `format` bytes.
    std::vector<std::uint8_t> readRegister(std::uint8_t bus, std::uint32_t device, std::uint32_t reg,
                                           std::uint8_t format, std::uint32_t length,
                                           const Within& within = Within{}.once()) const;
    // All transfers in one call, in order, until the first that fails. readBlock: the bytes of all reads.
    std::vector<std::uint8_t> readBlock(const std::vector<Transfer>& transfers,
                                        const Within& within = Within{}.once()) const;
    void writeBlock(const std::vector<Transfer>& transfers, const Within& within = Within{}.once()) const;
    // Changes the bits of `mask` only.
    void writeBlockMasked(const std::vector<Transfer>& transfers, std::uint8_t mask,
                          const Within& within = Within{}.once()) const;

private:
    std::shared_ptr<RackCore::OpenSession> session_;
};

// General-purpose lines, by their indexes; states are 0 or 1, a byte each.
class ORVANE_API GpioLines {
public:
    using Bytes = std::vector<std::uint8_t>; // one for each line

    // For Phy, which gives them out.
    explicit GpioLines(std::shared_ptr<RackCore::OpenSession> session) noexcept;

    // Levels of the lines.
    Bytes read(const Bytes& lines, const Within& within = {}) const;
    // As many states as lines.
    void write(const Bytes& lines, const Bytes& states, const Within& within = {}) const;
    void enableOutput(const Bytes& lines, const Bytes& enables, const Within& within = {}) const;
    Bytes outputEnables(const Bytes& lines, const Within& within = {}) const;
    void setDefault(const Bytes& lines, const Within& within = {}) const;
    void reset(const Within& within = {}) const;
    // Three lists of one length, as the board's service defines them; as many states back.
    Bytes bitBang(const Bytes& first, const Bytes& second, const Bytes& third,
                  const Within& within = Within{}.once()) const;

private:
    std::shared_ptr<RackCore::OpenSession> session_;
};

// The board's JTAG chain.
class ORVANE_API JtagChain {
public:
    // Texts of "0" and "1"; the result is as long as `tms`.
    struct Shift {
        std::string data;
        std::string tms;
        std::string lastTms;
    };

    // For Phy, which gives them out.
    explicit JtagChain(std::shared_ptr<RackCore::OpenSession> session) noexcept;

    // The longest shift that the board accepts, in bytes.
    unsigned maxBytes(const Within& within = {}) const;
    std::string shift(const Shift& shift, const Within& within = Within{}.once()) const;
    std::vector<std::string> shift(const std::vector<Shift>& shifts,
                                   const Within& within = Within{}.once()) const;

private:
    std::shared_ptr<RackCore::OpenSession> session_;
};

// The board's capture of analogue inputs. Over TCP.
class ORVANE_API AdcCapture {
public:
    using Bytes = std::vector<std::uint8_t>; // samples, or text

    // For Phy, which gives them out.
    explicit AdcCapture(std::shared_ptr<RackCore::OpenSession> session) noexcept;

    // Back to power-on, and a capture from its start to its stop.
    void initialize(const Within& within = Within{}.once()) const;
    void start(const Within& within = Within{}.once()) const;
    void stop(const Within& within = Within{}.once()) const;
    // One bit for each channel.
    void setChannelMask(std::uint32_t mask, const Within& within = Within{}.once()) const;
    void setDumpFile(const std::string& name, const Within& within = Within{}.once()) const;
    void setEventName(const std::string& name, const Within& within = Within{}.once()) const;
    // Up to `count` bytes; what was read is gone from the board.
    Bytes data(std::uint32_t count, const Within& within = Within{}.once()) const;
    Bytes maxAdc(const Within& within = Within{}.once()) const;
    Bytes events(const Within& within = Within{}.once()) const;

private:
    std::shared_ptr<RackCore::OpenSession> session_;
};

// The board's temperature control. Degrees Celsius.
class ORVANE_API ThermalControl {
public:
    // For Phy, which gives them out.
    explicit ThermalControl(std::shared_ptr<RackCore::OpenSession> session) noexcept;

    // Takes hold of the temperature control, and lets it go, which ends control on every channel.
    void connect(const Within& within = {}) const;
    void disconnect(const Within& within = {}) const;
    // As the board's service numbers them.
    int state(const Within& within = {}) const;
    float temperature(unsigned channel, const Within& within = {}) const;
    // Answered when it has settled: allow for it.
    float settledTemperature(unsigned channel, const Within& within = {}) const;
    void setTemperature(unsigned channel, float celsius, std::uint8_t flag = 0,
                        const Within& within = {}) const;
    void setDefaultTemperature(unsigned channel, float celsius, std::uint8_t flag = 0,
                               const Within& within = {}) const;
    void startControl(unsigned channel, const Within& within = {}) const;
    void stopControl(const Within& within = {}) const;

private:
    std::shared_ptr<RackCore::OpenSession> session_;
};

// Commands on the board itself, and whether it answers. Over TCP.
class ORVANE_API BoardShell {
public:
    // What a command came to.
    struct Outcome {
        int status = 0; // exit status
        std::string output;
        std::string errors;
    };

    // For Phy, which gives them out.
    explicit BoardShell(std::shared_ptr<RackCore::OpenSession> session) noexcept;

    // Runs a command, which the board ends after `limit` (whole seconds; Failure with ETIMEDOUT). Blocks for
    // 5 s longer at most, or until it is cancelled; the command goes on then. Other calls on the board wait.
    Outcome run(const std::string& command, std::chrono::seconds limit,
                const Cancellation* cancellation = nullptr) const;
    // The time that an answer took.
    std::chrono::microseconds ping(const Within& within = {}) const;
    // The same through the session, which is opened if need be, by the setup service, over TCP.
    std::chrono::microseconds pingSession(const Within& within = {}) const;
    // The same by the service that keeps sessions alive, over UDP.
    std::chrono::microseconds pingKeepAlive(const Within& within = {}) const;

    // What the board has on record for one of its codes. The numbers are the board's own.
    struct ErrorRecord {
        unsigned kind = 0; // 0 to 255
        int detail = 0;    // any number
    };
    // The record of a code, a negative errno value; all 0 when the board has none.
    ErrorRecord errorRecord(int code, const Within& within = {}) const;

    // The ports at which the board's port mapper says that its services are, by name ("mdio", "setup", ...);
    // those that it does not run are left out.
    std::map<std::string, std::uint16_t> services(const Within& within = {}) const;
    // Where the board is, dotted. Does not block.
    std::string address() const;

private:
    std::shared_ptr<RackCore::OpenSession> session_;
};

// How the board talks to a PHY over MDIO, and what of it is no plain register access. For MDIO ports.
class ORVANE_API MdioBus {
public:
    // For Phy, which gives them out.
    explicit MdioBus(std::shared_ptr<RackCore::OpenSession> session) noexcept;

    // The switches of the bus.
    void flush(const Within& within = {}) const;
    // Lets writes reach every PHY of the port; the board's documents also call it broadcast.
    void setSingleWire(bool on, const Within& within = {}) const;
    // Bits of preamble; the board must echo them.
    void setPreambleCount(std::uint32_t count, const Within& within = {}) const;

    // Words of the 32-bit extension at its address register, which the first two move on before the access.
    std::uint32_t readNext(const Within& within = Within{}.once()) const;
    void writeNext(std::uint32_t value, const Within& within = Within{}.once()) const;
    std::uint32_t readCurrent(const Within& within = {}) const;
    void writeCurrent(std::uint32_t value, const Within& within = {}) const;

    // Interrupts, as the board's service defines the numbers; each returns the board's.
    int requestInterrupt(std::uint8_t first, std::uint8_t second, int third, int fourth,
                         const Within& within = {}) const;
    int waitForInterrupt(std::uint32_t value, const Within& within = Within{}.once()) const;
    int interruptProcessed(std::uint32_t value, const Within& within = {}) const;
    int releaseInterrupt(std::uint32_t value, const Within& within = {}) const;

private:
    std::shared_ptr<RackCore::OpenSession> session_;
};

} // namespace Orvane
