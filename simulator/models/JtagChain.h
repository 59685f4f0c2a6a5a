// A JTAG chain: the test access port's states and the devices that it shifts through.
#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

namespace OrvaneSim {

// Devices in one chain, data entering at the last and leaving from the first. Each knows two instructions: 1
// selects its 32-bit identification register (also after reset), every other one its bypass bit. Belongs to
// the loop's thread.
class JtagChain {
public:
    struct Device {
        unsigned instructionBits;
        std::uint32_t identification; // bit 0 is 1
    };

    explicit JtagChain(const std::vector<Device>& devices);

    // One clock with these levels; returns the level of TDO during it (high outside of shifting).
    bool clock(bool tms, bool tdi);

    const std::vector<Device>& devices() const { return devices_; }

private:
    enum class State : std::uint8_t {
        Reset,
        Idle,
        SelectDr,
        CaptureDr,
        ShiftDr,
        Exit1Dr,
        PauseDr,
        Exit2Dr,
        UpdateDr,
        SelectIr,
        CaptureIr,
        ShiftIr,
        Exit1Ir,
        PauseIr,
        Exit2Ir,
        UpdateIr,
    };
    static State next(State state, bool tms);
    void capture(bool instruction);
    void update();
    void enter(State state);

    std::vector<Device> devices_;
    std::vector<std::uint32_t> instructions_;
    std::vector<bool> shifting_; // the register between TDI (back) and TDO (front)
    State state_ = State::Reset;
};

} // namespace OrvaneSim
