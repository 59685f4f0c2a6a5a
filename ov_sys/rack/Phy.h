// One PHY of a port: its registers, and the session through which they are reached.
#pragma once

#include "ov_sys/Interface/foundation/Export.h"
#include "ov_sys/rack/RoutedPhy.h"
#include "ov_sys/rack/Services.h"
#include "ov_sys/rack/values/Batch.h"
#include "ov_sys/rack/values/Failure.h"
#include "ov_sys/rack/values/RegisterAddress.h"
#include "ov_sys/rack/values/SmbusProtocol.h"
#include "ov_sys/rack/values/Within.h"

#include <cstddef>
#include <cstdint>
#include <functional>
#include <memory>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace Orvane {

class Flight;
class Named;
class RegisterMap;
struct DecodedRegister;
struct Restored;
struct Scope;
struct Snapshot;
namespace RackCore {
class OpenSession;
}

// A handle; copies name the same session, which is closed when the last of them and its Port have ended.
// Every member function blocks up to the limits that it is given, may be called from any thread (calls on one
// board take turns), checks its arguments before anything is sent, and throws Failure. What was not read is
// not returned.
class ORVANE_API Phy {
public:
    // For Port, which gives them out.
    explicit Phy(std::shared_ptr<RackCore::OpenSession> session) noexcept;

    // PHY id, or the SMBus device's address.
    unsigned id() const noexcept;

    // The value of a register: 16 bits, of the 32-bit extension 32.
    std::uint32_t read(RegisterAddress address, const Within& within = {}) const;
    void write(RegisterAddress address, std::uint32_t value, const Within& within = {}) const;
    // Replaces the bits of `mask` by those of `value` and returns what was written. No other call of this
    // process comes between the read and the write.
    std::uint32_t modify(RegisterAddress address, std::uint32_t mask, std::uint32_t value,
                         const Within& within = {}) const;

    // Lists of any length.
    std::vector<std::uint32_t> read(RegisterAddress first, std::size_t count,
                                    const Within& within = {}) const;
    std::vector<std::uint32_t> read(const std::vector<RegisterAddress>& addresses,
                                    const Within& within = {}) const;
    // Throws Failure for arguments that cannot be sent; what went wrong with the board is in the result.
    BatchResult run(const Batch& batch, const Within& within = {}) const;

    // The same PHY by the paths that its indirect registers ask for.
    RoutedPhy routed(const RegisterPaths& paths = {}) const noexcept { return {session_, paths}; }

    // Runs `work` on the calling thread, with no other call of this process on the board in between. `within`
    // bounds the wait for that only.
    void together(const std::function<void()>& work, const Within& within = {}) const;

    // Names, by a register map; <orvane/rack.hpp> has the types, docs/names.md says more.

    // From now on names are those of `map`, for every handle of this session. Does not block.
    void use(const RegisterMap& map) const;
    // The map in use; that of IEEE 802.3 unless another one was said. Does not block.
    RegisterMap map() const;
    // A register or field, to be read or written. Throws Failure for a name that is not there. Does not
    // block.
    Named operator[](std::string_view name) const;
    // Registers and fields that values are of. Does not block.
    std::vector<DecodedRegister>
    decode(const std::vector<std::pair<RegisterAddress, std::uint32_t>>& values) const;
    // Reads every register of a scope that is safe to read, in blocks, those on pages, too.
    Snapshot snapshot(const Scope& scope, const Within& within = {}) const;
    // Writes the writable registers of a snapshot in the map's order and reads them back. Bits that ones
    // clear or that clear themselves are written as 0; registers with side effects are left out.
    Restored restore(const Snapshot& snapshot, const Within& within = {}) const;

    // The board's services, through this PHY's session.
    I2cBus i2c() const noexcept { return I2cBus(session_); }
    GpioLines gpio() const noexcept { return GpioLines(session_); }
    JtagChain jtag() const noexcept { return JtagChain(session_); }
    AdcCapture adc() const noexcept { return AdcCapture(session_); }
    ThermalControl thermal() const noexcept { return ThermalControl(session_); }
    BoardShell shell() const noexcept { return BoardShell(session_); }
    MdioBus mdio() const noexcept { return MdioBus(session_); }

    // Opens the session now; otherwise its first use does.
    void open(const Within& within = {}) const;
    // The next use opens it again.
    void close(const Within& within = {}) const;
    bool isOpen() const;
    // The session's key as the board gave it; 0 when there is none, or the session is not open.
    std::uint16_t key() const;

    // Called after the board lost the session and it was opened again, before the call that noticed goes on:
    // to restore what the board forgot. It may use this PHY, on the thread that calls it; what it throws
    // leaves the call that noticed. Runs on that call's thread, or on the rack's own when a ping noticed.
    void onReopen(std::function<void()> hook) const;
    // The same for a hook that is given this PHY. (A hook that holds a Phy of its own keeps the session
    // open.)
    void onReopen(std::function<void(const Phy& phy)> hook) const;
    void onReopen(std::nullptr_t) const; // none

    // Paged16 at first. For 32-bit registers on SMBus ports.
    void setSmbusProtocol(SmbusProtocol protocol) const noexcept;

private:
    friend class Flight;
    friend class Named;

    // An argument that is refused, as a Failure.
    Failure refusal(const char* operation, const std::string& location, std::string why) const;
    void setMap(std::shared_ptr<const RegisterMap> map) const;
    std::shared_ptr<const RegisterMap> usedMap() const;

    std::shared_ptr<RackCore::OpenSession> session_;
};

} // namespace Orvane
