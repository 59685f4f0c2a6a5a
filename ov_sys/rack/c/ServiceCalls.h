// The shape of a C function that hands its arguments to a member of one of a PHY's services.
#pragma once

#include "ov_sys/rack/c/Failures.h"
#include "ov_sys/rack/c/Handles.h"
#include "ov_sys/rack/c/Values.h"

#include <algorithm>
#include <chrono>
#include <cstddef>
#include <cstdint>
#include <string>
#include <utility>
#include <vector>

namespace Orvane::RackC {

// What every such function takes, and what null limits stand for.
struct Edge {
    orvane_phy* phy = nullptr;
    const orvane_limits* limits = nullptr;
    orvane_failure* failure = nullptr;
    Within usual{};
};
inline constexpr Within kRepeated{};
inline constexpr Within kOnce = Within{}.once();

// Arguments of the caller's that become lists and texts behind the guard; null is refused there.
struct List {
    const std::uint8_t* first;
    std::size_t count;
};
struct Text {
    const char* characters;
};

inline std::vector<std::uint8_t> made(const List& list) {
    need({list.first});
    return {list.first, list.first + list.count};
}
inline std::string made(const Text& text) {
    need({text.characters});
    return text.characters;
}
std::vector<I2cBus::Transfer> made(const std::pair<const orvane_i2c_transfer*, std::size_t>& transfers);
template <class Value>
Value made(Value value) noexcept {
    return value;
}

// Results go where the caller says.
inline void give(const std::vector<std::uint8_t>& bytes, std::uint8_t* to) noexcept {
    std::copy(bytes.begin(), bytes.end(), to);
}
inline void give(const std::vector<std::uint8_t>& bytes, orvane_bytes** to) {
    *to = new orvane_bytes{std::string(bytes.begin(), bytes.end())};
}
inline void give(std::chrono::microseconds time, double* to) noexcept {
    *to = std::chrono::duration<double>(time).count();
}
template <class Value, class Wanted>
void give(const Value& value, Wanted* to) noexcept {
    *to = static_cast<Wanted>(value);
}

// Calls a member without a result.
template <class Service, class Member, class... Given>
int call(const Edge& edge, Service (Phy::*service)() const, Member member, const Given&... given) noexcept {
    return guarded(edge.failure, [&] {
        need({edge.phy});
        ((edge.phy->phy.*service)().*member)(made(given)..., withinOf(edge.limits, edge.usual));
    });
}

// Calls one whose result goes to `to`.
template <class To, class Service, class Member, class... Given>
int callInto(To* to, const Edge& edge, Service (Phy::*service)() const, Member member,
             const Given&... given) noexcept {
    return guarded(edge.failure, [&] {
        need({edge.phy, to});
        give(((edge.phy->phy.*service)().*member)(made(given)..., withinOf(edge.limits, edge.usual)), to);
    });
}

} // namespace Orvane::RackC
