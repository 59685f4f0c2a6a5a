// States and registers of the JTAG chain.
#include "simulator/models/JtagChain.h"

#include <array>

namespace OrvaneSim {
namespace {

constexpr std::uint32_t kIdentify = 1;
constexpr unsigned kIdentificationBits = 32;

void append(std::vector<bool>& bits, std::uint32_t value, unsigned count) {
    for (unsigned i = 0; i < count; ++i)
        bits.push_back(((value >> i) & 1U) != 0);
}

} // namespace

JtagChain::JtagChain(const std::vector<Device>& devices)
    : devices_(devices), instructions_(devices.size(), kIdentify) {}

JtagChain::State JtagChain::next(State state, bool tms) {
    // For each state in order: where it goes with TMS low and with TMS high.
    static constexpr std::array<std::array<State, 2>, 16> table{{
        {State::Idle, State::Reset},         // Reset
        {State::Idle, State::SelectDr},      // Idle
        {State::CaptureDr, State::SelectIr}, // SelectDr
        {State::ShiftDr, State::Exit1Dr},    // CaptureDr
        {State::ShiftDr, State::Exit1Dr},    // ShiftDr
        {State::PauseDr, State::UpdateDr},   // Exit1Dr
        {State::PauseDr, State::Exit2Dr},    // PauseDr
        {State::ShiftDr, State::UpdateDr},   // Exit2Dr
        {State::Idle, State::SelectDr},      // UpdateDr
        {State::CaptureIr, State::Reset},    // SelectIr
        {State::ShiftIr, State::Exit1Ir},    // CaptureIr
        {State::ShiftIr, State::Exit1Ir},    // ShiftIr
        {State::PauseIr, State::UpdateIr},   // Exit1Ir
        {State::PauseIr, State::Exit2Ir},    // PauseIr
        {State::ShiftIr, State::UpdateIr},   // Exit2Ir
        {State::Idle, State::SelectDr},      // UpdateIr
    }};
    return table[static_cast<std::size_t>(state)][tms ? 1 : 0];
}

void JtagChain::capture(bool instruction) {
    shifting_.clear();
    for (std::size_t i = 0; i < devices_.size(); ++i) {
        if (instruction)
            append(shifting_, 1, devices_[i].instructionBits); // the standard's fixed pattern ...01
        else if (instructions_[i] == kIdentify)
            append(shifting_, devices_[i].identification, kIdentificationBits);
        else
            append(shifting_, 0, 1);
    }
}

void JtagChain::update() {
    std::size_t position = 0;
    for (std::size_t i = 0; i < devices_.size(); ++i) {
        instructions_[i] = 0;
        for (unsigned bit = 0; bit < devices_[i].instructionBits; ++bit)
            instructions_[i] |= static_cast<std::uint32_t>(shifting_[position++]) << bit;
    }
}

void JtagChain::enter(State state) {
    state_ = state;
    if (state == State::Reset)
        instructions_.assign(devices_.size(), kIdentify);
    else if (state == State::CaptureDr || state == State::CaptureIr)
        capture(state == State::CaptureIr);
    else if (state == State::UpdateIr)
        update();
}

bool JtagChain::clock(bool tms, bool tdi) {
    bool tdo = true;
    if (state_ == State::ShiftDr || state_ == State::ShiftIr) {
        tdo = shifting_.front();
        shifting_.erase(shifting_.begin());
        shifting_.push_back(tdi);
    }
    enter(next(state_, tms));
    return tdo;
}

} // namespace OrvaneSim
