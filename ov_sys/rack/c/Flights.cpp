// Flights and what they started, for C.
#include "ov_sys/rack/c/Failures.h"
#include "ov_sys/rack/c/Handles.h"
#include "ov_sys/rack/c/Values.h"

#include <algorithm>
#include <memory>
#include <type_traits>
#include <utility>

using namespace Orvane::RackC;

namespace {

using Orvane::Pending;

// Starts what the member function of Flight does with these arguments.
template <class Result, class... Wanted, class... Given>
void start(orvane_flight* flight, orvane_phy* phy, const orvane_limits* limits, orvane_pending** pending,
           Pending<Result> (Orvane::Flight::*member)(const Orvane::Phy&, Wanted...), Given&&... given) {
    need({flight, phy});
    auto handle = std::make_unique<orvane_pending>(); // first: what flies has its handle
    handle->result = (flight->flight.*member)(phy->phy, std::forward<Given>(given)..., withinOf(limits));
    if (pending != nullptr)
        *pending = handle.release();
}

// Copies what an operation came to.
struct Copy {
    uint32_t* values;
    size_t count;

    void operator()(const Pending<std::uint32_t>& one) const {
        const std::uint32_t value = one.get();
        give(&value, 1);
    }
    void operator()(const Pending<std::vector<std::uint32_t>>& list) const {
        give(list.get().data(), list.get().size());
    }
    void operator()(const Pending<Orvane::BatchResult>& batch) const {
        if (const auto& failure = batch.get().failure())
            throw Orvane::Failure(*failure);
    }
    void operator()(const Pending<bool>& session) const { session.get(); }

private:
    void give(const std::uint32_t* read, std::size_t size) const {
        if (values == nullptr || size != count)
            refuse("Give room for as many values as there are.");
        std::copy(read, read + size, values);
    }
};

// Runs one of the flight's functions that take nothing.
int move(orvane_flight* flight, orvane_failure* failure, void (Orvane::Flight::*member)()) noexcept {
    return guarded(failure, [&] {
        need({flight});
        (flight->flight.*member)();
    });
}

} // namespace

extern "C" {

int orvane_flight_new(unsigned window, orvane_flight** flight, orvane_failure* failure) {
    return guarded(failure, [&] {
        need({flight});
        *flight = new orvane_flight(window);
    });
}

void orvane_flight_free(orvane_flight* flight) {
    delete flight;
}

int orvane_flight_read(orvane_flight* flight, orvane_phy* phy, orvane_register address,
                       const orvane_limits* limits, orvane_pending** pending, orvane_failure* failure) {
    return guarded(failure, [&] {
        start<std::uint32_t>(flight, phy, limits, pending, &Orvane::Flight::read, addressOf(address));
    });
}

int orvane_flight_write(orvane_flight* flight, orvane_phy* phy, orvane_register address, uint32_t value,
                        const orvane_limits* limits, orvane_pending** pending, orvane_failure* failure) {
    return guarded(failure, [&] {
        start(flight, phy, limits, pending, &Orvane::Flight::write, addressOf(address), value);
    });
}

int orvane_flight_read_list(orvane_flight* flight, orvane_phy* phy, orvane_register first, size_t count,
                            const orvane_limits* limits, orvane_pending** pending, orvane_failure* failure) {
    return guarded(failure, [&] {
        start<std::vector<std::uint32_t>>(flight, phy, limits, pending, &Orvane::Flight::read,
                                          addressOf(first), count);
    });
}

int orvane_flight_run(orvane_flight* flight, orvane_phy* phy, const orvane_operation* operations,
                      size_t count, const orvane_limits* limits, orvane_pending** pending,
                      orvane_failure* failure) {
    return guarded(failure, [&] {
        need({operations});
        start(flight, phy, limits, pending, &Orvane::Flight::run, batchOf(operations, count));
    });
}

int orvane_flight_open(orvane_flight* flight, orvane_phy* phy, const orvane_limits* limits,
                       orvane_pending** pending, orvane_failure* failure) {
    return guarded(failure, [&] { start(flight, phy, limits, pending, &Orvane::Flight::open); });
}

int orvane_flight_close(orvane_flight* flight, orvane_phy* phy, const orvane_limits* limits,
                        orvane_pending** pending, orvane_failure* failure) {
    return guarded(failure, [&] { start(flight, phy, limits, pending, &Orvane::Flight::close); });
}

int orvane_flight_descriptor(const orvane_flight* flight) {
    return flight == nullptr ? -1 : flight->flight.descriptor();
}

size_t orvane_flight_under_way(const orvane_flight* flight) {
    return flight == nullptr ? 0 : flight->flight.underWay();
}

int orvane_flight_step(orvane_flight* flight, orvane_failure* failure) {
    return move(flight, failure, &Orvane::Flight::step);
}

int orvane_flight_wait(orvane_flight* flight, orvane_failure* failure) {
    return move(flight, failure, &Orvane::Flight::wait);
}

int orvane_flight_wait_some(orvane_flight* flight, orvane_failure* failure) {
    return move(flight, failure, &Orvane::Flight::waitSome);
}

int orvane_pending_done(const orvane_pending* pending) {
    if (pending == nullptr)
        return 1;
    return std::visit([](const auto& result) { return result.done() ? 1 : 0; }, pending->result);
}

int orvane_pending_get(orvane_pending* pending, uint32_t* values, size_t count, orvane_failure* failure) {
    return guarded(failure, [&] {
        need({pending});
        std::visit(Copy{values, count}, pending->result);
    });
}

int orvane_pending_outcomes(orvane_pending* pending, orvane_operation* operations, size_t count,
                            orvane_failure* failure) {
    return guarded(failure, [&] {
        need({pending, operations});
        const auto* const batch = std::get_if<Pending<Orvane::BatchResult>>(&pending->result);
        if (batch == nullptr)
            refuse("Only a batch has outcomes.");
        if (batch->get().size() != count)
            refuse("Give as many operations as the batch has.");
        store(batch->get(), operations);
    });
}

void orvane_pending_free(orvane_pending* pending) {
    delete pending;
}

} // extern "C"
