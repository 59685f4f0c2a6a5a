// The values that registers must have, and the calls that compare them.
#include "tests/faults/scenarios/CheckedCalls.h"

#include "ov_sys/Interface/buses/rpc/RPCMDIO.h"
#include "ov_sys/Interface/buses/rpc/RPCSetup.h"
#include "ov_sys/Interface/foundation/AddressResponse.h"
#include "ov_sys/Interface/foundation/Exceptions.h"

#include <algorithm>
#include <chrono>
#include <cstdio>

namespace OrvaneFaults {
namespace {

namespace Exceptions = Orvane::Exceptions;

constexpr unsigned kFirstRegister = 0x1C100; // MMD 1, registers that nothing else gives a meaning
constexpr unsigned kRegisters = 64;
constexpr unsigned kSequence = 0x1C200;
constexpr unsigned kCheck = 0x1C201;

std::uint16_t valueOf(unsigned board, unsigned index) {
    return static_cast<std::uint16_t>(OrvaneSim::Dice(board * 1000003ULL + index).next());
}

std::uint16_t checkOf(std::uint16_t sequence) {
    return static_cast<std::uint16_t>(~sequence);
}

} // namespace

void prepareRegisters(OrvaneSim::Board& board, unsigned number) {
    using OrvaneSim::Space;
    for (unsigned i = 0; i < kRegisters; ++i)
        board.setRegister(Space::C45, kPort, kPhy, kFirstRegister + i, valueOf(number, i));
    board.setRegister(Space::C45, kPort, kPhy, kSequence, 0);
    board.setRegister(Space::C45, kPort, kPhy, kCheck, checkOf(0));
}

std::unique_ptr<Orvane::PhySession> openSession(const std::string& serial, const std::string& address,
                                                bool keepAlive) {
    Orvane::MdioExclusive mode{};
    mode.phyAddress = kPhy;
    mode.deviceIndex = kPort;
    mode.simple = 1;
    mode.shared = 1;
    std::unique_ptr<Orvane::PhySession> session(
        new Orvane::PhySession(Orvane::AddressResponse(serial, address), mode));
    try {
        Orvane::Setup::openConnection(*session);
    } catch (...) {
        session->abandon();
        throw;
    }
    if (keepAlive)
        session->startKeepAlive();
    return session;
}

Outcomes& Outcomes::operator+=(const Outcomes& other) {
    calls += other.calls;
    good += other.good;
    remoteErrors += other.remoteErrors;
    invalidSessions += other.invalidSessions;
    otherDocumented += other.otherDocumented;
    wrong += other.wrong;
    slowestMs = std::max(slowestMs, other.slowestMs);
    return *this;
}

template <class Call>
bool CheckedCalls::judge(Call call) {
    const auto start = std::chrono::steady_clock::now();
    bool good = false;
    ++outcomes_.calls;
    try {
        good = call();
        ++(good ? outcomes_.good : outcomes_.wrong);
    } catch (const Exceptions::Standard& problem) {
        ++(problem.text == "Remote error." ? outcomes_.remoteErrors : outcomes_.wrong);
    } catch (const Exceptions::InvalidSession&) {
        ++outcomes_.invalidSessions;
    } catch (const Exceptions::NoDevice&) {
        ++outcomes_.otherDocumented;
    } catch (const Exceptions::InvalidRPCClient&) {
        ++outcomes_.otherDocumented;
    } catch (const Exceptions::DeviceConnection&) {
        ++outcomes_.otherDocumented;
    } catch (const std::exception&) {
        ++outcomes_.wrong;
    }
    const std::chrono::duration<double, std::milli> took = std::chrono::steady_clock::now() - start;
    outcomes_.slowestMs = std::max(outcomes_.slowestMs, took.count());
    return good;
}

bool CheckedCalls::read(Orvane::PhySession& session) {
    const auto index = static_cast<unsigned>(dice_.below(kRegisters));
    return judge(
        [&] { return Orvane::MDIO::RPC::read(session, kFirstRegister + index) == valueOf(number_, index); });
}

void CheckedCalls::write(Orvane::PhySession& session) {
    ++tried_;
    if (judge([&] {
            Orvane::MDIO::RPC::blockWrite(session, {kSequence, kCheck}, {tried_, checkOf(tried_)});
            return true;
        }))
        confirmed_ = tried_;
}

// What is there was confirmed last, or tried since.
bool CheckedCalls::readBack(Orvane::PhySession& session) {
    return judge([&] {
        const auto words = Orvane::MDIO::RPC::blockRead(session, {kSequence, kCheck});
        const auto sequence = static_cast<std::uint16_t>(words[0]);
        const auto age = static_cast<std::uint16_t>(tried_ - sequence);
        return words[1] == checkOf(sequence) && age <= static_cast<std::uint16_t>(tried_ - confirmed_);
    });
}

void CheckedCalls::one(Orvane::PhySession& session) {
    constexpr unsigned kCycle = 8;
    switch (step_++ % kCycle) {
    case 3:
        return write(session);
    case 4:
        readBack(session);
        return;
    default:
        read(session);
    }
}

} // namespace OrvaneFaults
