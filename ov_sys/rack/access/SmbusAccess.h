// Registers of a PHY behind an I2C bus of the board.
#pragma once

#include "ov_sys/rack/access/RegisterAccess.h"

#include <array>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <vector>

namespace Orvane::RackAccess {

// The transfers of one access, each to be made only after the success of the one before, and nothing else on
// the device in between. One thread.
class SmbusTransfers {
public:
    // A read.
    SmbusTransfers(const Target& target, const RegisterAddress& address);
    // A write.
    SmbusTransfers(const Target& target, const RegisterAddress& address, std::uint32_t value);
    SmbusTransfers(const SmbusTransfers&) = delete;
    SmbusTransfers& operator=(const SmbusTransfers&) = delete;

    // Null at the end. A call stays as long as this does.
    RackLink::Call* next() noexcept { return next_ < calls_.size() ? calls_[next_++].get() : nullptr; }
    // What was read.
    std::uint32_t value() const noexcept;

private:
    void write(std::vector<u_char> bytes);
    void read(std::uint32_t command, std::size_t place); // two bytes
    void select(const RegisterAddress& address);
    void selectPage(std::uint32_t address);

    RackLink::Session& session_;
    std::array<u_char, 4> bytes_{}; // lowest first
    std::vector<std::unique_ptr<RackLink::Call>> calls_;
    std::size_t next_ = 0;
};

// All of them by the calling thread, under one turn of the board.
RackLink::Trouble run(const Target& target, SmbusTransfers& transfers, RackLink::Limits& limits);

} // namespace Orvane::RackAccess
