// The C interface: handles around the C++ objects, exceptions turned into a status and a struct.
#include "ov_sys/rack/Rack.h"

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <initializer_list>
#include <memory>
#include <orvane/rack.h>
#include <string>
#include <system_error>
#include <utility>
#include <vector>

using Orvane::Failure;
using Orvane::FailureKind;
using Orvane::RegisterAddress;

struct orvane_rack {
    Orvane::Rack rack;
};
struct orvane_phy {
    Orvane::Phy phy;
};
struct orvane_cancellation {
    Orvane::Cancellation cancellation;
};
struct orvane_board_list {
    Orvane::Discovery found;
    std::vector<orvane_board> boards;
};

namespace {

static_assert(static_cast<int>(FailureKind::InvalidArgument) + 1 == ORVANE_INVALID_ARGUMENT);
static_assert(static_cast<int>(FailureKind::Cancelled) + 1 == ORVANE_CANCELLED);
static_assert(static_cast<int>(RegisterAddress::Space::Ext32) == ORVANE_EXT32);
static_assert(static_cast<int>(Orvane::Access::Mode::Simple) == ORVANE_SIMPLE);
static_assert(static_cast<int>(Orvane::OperationOutcome::State::Unknown) == ORVANE_OPERATION_UNKNOWN);

template <std::size_t size>
void copy(char (&room)[size], const char* text) noexcept {
    std::snprintf(room, size, "%s", text);
}

int fail(orvane_failure* out, const Failure& failure) noexcept {
    const int kind = static_cast<int>(failure.kind()) + 1;
    if (out == nullptr)
        return kind;
    *out = {};
    out->kind = kind;
    out->code = failure.code();
    out->port = failure.port();
    out->phy = failure.phy();
    out->attempts = failure.attempts();
    out->seconds = std::chrono::duration<double>(failure.spent()).count();
    copy(out->board, failure.board().c_str());
    copy(out->operation, failure.operation().c_str());
    copy(out->location, failure.location().c_str());
    copy(out->message, failure.what());
    return kind;
}

int fail(orvane_failure* out, int kind, const char* message) noexcept {
    if (out != nullptr) {
        *out = {};
        out->kind = kind;
        out->port = out->phy = -1;
        copy(out->message, message);
    }
    return kind;
}

// Runs what a C function is about; no exception leaves.
template <class Action>
int guarded(orvane_failure* out, Action action) noexcept {
    try {
        action();
        return ORVANE_DONE;
    } catch (const Failure& failure) {
        return fail(out, failure);
    } catch (const std::exception& problem) { // no memory, no descriptors, no threads
        return fail(out, ORVANE_OUT_OF_RESOURCES, problem.what());
    }
}

// Throws the Failure of a null where there must be none.
void need(std::initializer_list<const void*> pointers) {
    if (std::find(pointers.begin(), pointers.end(), nullptr) != pointers.end()) {
        Orvane::FailureDetails details;
        details.advice = "A pointer is null.";
        throw Failure(std::move(details));
    }
}

Orvane::Within withinOf(const orvane_limits* limits,
                        std::chrono::nanoseconds usual = std::chrono::seconds(5)) {
    constexpr double kLongest = 1e9; // seconds
    Orvane::Within within = Orvane::within(usual);
    if (limits == nullptr)
        return within;
    const double seconds = std::isnan(limits->seconds) ? 0 : std::clamp(limits->seconds, 0.0, kLongest);
    within.time =
        std::chrono::duration_cast<std::chrono::nanoseconds>(std::chrono::duration<double>(seconds));
    within.repeat = {limits->read_repeats, limits->write_repeats};
    within.heal = limits->heals != 0;
    within.cancellation = limits->cancellation != nullptr ? &limits->cancellation->cancellation : nullptr;
    return within;
}

RegisterAddress addressOf(const orvane_register& address) {
    if (address.space > ORVANE_EXT32) {
        Orvane::FailureDetails details;
        details.advice = "There is no such register space.";
        throw Failure(std::move(details));
    }
    const auto space = static_cast<RegisterAddress::Space>(address.space);
    return {space, space == RegisterAddress::Space::Clause45 ? address.mmd : 0, address.number};
}

Orvane::Access accessOf(const orvane_access& access) {
    const auto mode = static_cast<Orvane::Access::Mode>(std::min<std::uint32_t>(access.mode, ORVANE_SIMPLE));
    return {mode, access.key, access.queues != 0};
}

} // namespace

extern "C" {

orvane_limits orvane_default_limits(void) {
    const Orvane::Within usual;
    return {std::chrono::duration<double>(usual.time).count(), usual.repeat.reads, usual.repeat.writes, 1,
            nullptr};
}

int orvane_rack_new(orvane_rack** rack, orvane_failure* failure) {
    return guarded(failure, [&] {
        need({rack});
        *rack = new orvane_rack;
    });
}

void orvane_rack_free(orvane_rack* rack) {
    delete rack;
}

int orvane_rack_know(orvane_rack* rack, const char* board, const char* address, orvane_failure* failure) {
    return guarded(failure, [&] {
        need({rack, board, address});
        rack->rack.know(board, address);
    });
}

int orvane_rack_discover(orvane_rack* rack, const orvane_limits* limits, orvane_board_list** boards,
                         orvane_failure* failure) {
    return guarded(failure, [&] {
        need({rack, boards});
        auto list = std::make_unique<orvane_board_list>();
        list->found = rack->rack.discover(withinOf(limits, std::chrono::seconds(1)));
        for (const Orvane::FoundBoard& one : list->found.boards)
            list->boards.push_back(
                {one.serial.c_str(), one.address.c_str(), one.ports.data(), one.ports.size()});
        *boards = list.release();
    });
}

size_t orvane_board_list_size(const orvane_board_list* boards) {
    return boards == nullptr ? 0 : boards->boards.size();
}

size_t orvane_board_list_malformed(const orvane_board_list* boards) {
    return boards == nullptr ? 0 : boards->found.malformed;
}

const orvane_board* orvane_board_list_at(const orvane_board_list* boards, size_t index) {
    return index < orvane_board_list_size(boards) ? &boards->boards[index] : nullptr;
}

void orvane_board_list_free(orvane_board_list* boards) {
    delete boards;
}

int orvane_rack_phy(orvane_rack* rack, const char* port, orvane_access access, unsigned id,
                    const orvane_limits* limits, orvane_phy** phy, orvane_failure* failure) {
    return guarded(failure, [&] {
        need({rack, port, phy});
        *phy = new orvane_phy{rack->rack.open(port, accessOf(access), withinOf(limits)).phy(id)};
    });
}

void orvane_phy_free(orvane_phy* phy) {
    delete phy;
}

int orvane_phy_open(orvane_phy* phy, const orvane_limits* limits, orvane_failure* failure) {
    return guarded(failure, [&] {
        need({phy});
        phy->phy.open(withinOf(limits));
    });
}

int orvane_phy_close(orvane_phy* phy, const orvane_limits* limits, orvane_failure* failure) {
    return guarded(failure, [&] {
        need({phy});
        phy->phy.close(withinOf(limits));
    });
}

int orvane_phy_read(orvane_phy* phy, orvane_register address, const orvane_limits* limits, uint32_t* value,
                    orvane_failure* failure) {
    return guarded(failure, [&] {
        need({phy, value});
        *value = phy->phy.read(addressOf(address), withinOf(limits));
    });
}

int orvane_phy_write(orvane_phy* phy, orvane_register address, uint32_t value, const orvane_limits* limits,
                     orvane_failure* failure) {
    return guarded(failure, [&] {
        need({phy});
        phy->phy.write(addressOf(address), value, withinOf(limits));
    });
}

int orvane_phy_modify(orvane_phy* phy, orvane_register address, uint32_t mask, uint32_t value,
                      const orvane_limits* limits, uint32_t* written, orvane_failure* failure) {
    return guarded(failure, [&] {
        need({phy});
        const std::uint32_t whole = phy->phy.modify(addressOf(address), mask, value, withinOf(limits));
        if (written != nullptr)
            *written = whole;
    });
}

int orvane_phy_read_list(orvane_phy* phy, orvane_register first, size_t count, const orvane_limits* limits,
                         uint32_t* values, orvane_failure* failure) {
    return guarded(failure, [&] {
        need({phy, values});
        const std::vector<std::uint32_t> read = phy->phy.read(addressOf(first), count, withinOf(limits));
        std::copy(read.begin(), read.end(), values);
    });
}

int orvane_phy_run(orvane_phy* phy, orvane_operation* operations, size_t count, const orvane_limits* limits,
                   orvane_failure* failure) {
    return guarded(failure, [&] {
        need({phy, operations});
        Orvane::Batch batch;
        for (size_t i = 0; i < count; ++i)
            if (operations[i].writes != 0)
                batch.write(addressOf(operations[i].address), operations[i].value);
            else
                batch.read(addressOf(operations[i].address));
        const Orvane::BatchResult done = phy->phy.run(batch, withinOf(limits));
        for (size_t i = 0; i < count; ++i) {
            const Orvane::OperationOutcome& outcome = done.outcome(i);
            operations[i].state = static_cast<int>(outcome.state);
            operations[i].code = outcome.code;
            if (outcome.state == Orvane::OperationOutcome::State::Done)
                operations[i].value = outcome.value;
        }
        if (done.failure())
            throw *done.failure();
    });
}

int orvane_cancellation_new(orvane_cancellation** cancellation, orvane_failure* failure) {
    return guarded(failure, [&] {
        need({cancellation});
        *cancellation = new orvane_cancellation;
    });
}

void orvane_cancellation_cancel(orvane_cancellation* cancellation) {
    cancellation->cancellation.cancel();
}

void orvane_cancellation_reset(orvane_cancellation* cancellation) {
    cancellation->cancellation.reset();
}

void orvane_cancellation_free(orvane_cancellation* cancellation) {
    delete cancellation;
}

} // extern "C"
