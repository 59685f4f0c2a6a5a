// A board under the flat interface, and what the interface made of a call.
#pragma once

#include "simulator/lab/Lab.h"
#include "tests/support/Place.h"

#include <gtest/gtest.h>
#include <orvane/orvane.h>
#include <string>
#include <type_traits>
#include <utility>
#include <vector>

namespace OrvaneTest {

// What a log begins with.
constexpr const char* kHeader = "adapter,phy,op,mmd,address,value,\n";

// Runs `call` and returns its result, 0 when it has none.
template <class Call>
unsigned long long valueOf(Call&& call) {
    if constexpr (std::is_void_v<decltype(call())>) {
        call();
        return 0;
    } else {
        return static_cast<unsigned long long>(call());
    }
}

// A call with fixed arguments, for tables.
template <auto function, auto... arguments>
unsigned long long call() {
    return valueOf([] { return function(arguments...); });
}

// What a call returned, logged behind the header, and wrote to the standard streams.
struct Outcome {
    unsigned long long result = 0;
    std::string log;
    std::string error;
    std::string output;
};

bool operator==(const Outcome& left, const Outcome& right);
std::ostream& operator<<(std::ostream& out, const Outcome& outcome);

// While one lives, the flat interface logs to memory.
class LogInMemory {
public:
    LogInMemory();
    ~LogInMemory();
    LogInMemory(const LogInMemory&) = delete;
    LogInMemory& operator=(const LogInMemory&) = delete;

    // The log so far, without its header.
    std::string text();

private:
    char* text_ = nullptr;
    std::size_t size_ = 0;
    std::FILE* stream_;
};

template <class Call>
Outcome outcomeOf(Call&& call) {
    Outcome outcome;
    LogInMemory log;
    testing::internal::CaptureStderr();
    testing::internal::CaptureStdout();
    outcome.result = valueOf(call);
    std::fflush(stdout);
    outcome.output = testing::internal::GetCapturedStdout();
    outcome.error = testing::internal::GetCapturedStderr();
    outcome.log = log.text();
    return outcome;
}

// The flat interface on one board whose devices 01A2:0 to 01A2:7 are the open adapters 0 to 7. Adapter 2 is
// the default adapter and 7 the default PHY id. Every class of registers is delegated, as after each
// HW_Initialize(). No session is open.
class FlatInterface : public testing::Test {
protected:
    FlatInterface();
    ~FlatInterface() override;

    // Turns every delegation of the default adapter off.
    static void delegateNothing();

    // The calls of all programs but setup and keep-alive that the board was asked for, in order, as Frame
    // makes them.
    std::vector<std::string> frames() const;

    // One PHY's registers, beside the bus.
    void setRegister(unsigned adapter, unsigned phy, unsigned mmd, unsigned reg, unsigned value);
    unsigned registerOf(unsigned adapter, unsigned phy, unsigned mmd, unsigned reg) const;

    OrvaneSim::Lab lab;
    OrvaneSim::Board& board;
};

constexpr unsigned kDefaultAdapter = 2;
constexpr unsigned kDefaultPhy = 7;
constexpr unsigned kAdapters = 8;

// The PHY argument that carries an adapter.
constexpr int phyOn(unsigned adapter, unsigned phy) {
    return static_cast<int>(0x80000000U | adapter << 16U | phy);
}

// PHY 6 on adapter 3 as a PHY argument, 2147680262 in records.
constexpr int kCarrying = phyOn(3, 6);

// The texts that FlatInterface::frames() gives for calls to one PHY.
struct Frame {
    unsigned adapter;
    unsigned phy;

    std::string read(unsigned mmd, unsigned reg) const;
    std::string write(unsigned mmd, unsigned reg, unsigned value) const;
    std::string read22(unsigned reg) const;
    std::string write22(unsigned reg, unsigned value) const;
    std::string read32(unsigned address) const;
    std::string write32(unsigned address, unsigned value) const;
    // A call with the rest of its arguments as a list.
    std::string call(unsigned procedure, const std::vector<std::string>& arguments = {}) const;
    // A block of the address words as they are sent.
    std::string block(unsigned procedure, const std::vector<std::pair<unsigned, unsigned>>& writes,
                      const std::vector<unsigned>& reads, const std::vector<unsigned>& runs) const;

private:
    unsigned prefix() const;
};

// The PHYs that accesses go to: by PHY argument alone, by adapter 3, by kCarrying, and by the default PHY id.
constexpr Frame kOnDefault{kDefaultAdapter, kPhy};
constexpr Frame kOnExplicit{3, kPhy};
constexpr Frame kOnCarried{3, 6};
constexpr Frame kOnDefaultPhy{kDefaultAdapter, kDefaultPhy};

} // namespace OrvaneTest
