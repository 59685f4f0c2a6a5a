// Register accesses of one PHY that are carried out together, in order.
#pragma once

#include "ov_sys/Interface/foundation/Export.h"
#include "ov_sys/rack/values/Failure.h"
#include "ov_sys/rack/values/RegisterAddress.h"

#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>
#include <vector>

namespace Orvane {

// A list of any length and any mix; how it is cut into what a board takes at once is no concern of its maker.
// A plain value; one thread.
class ORVANE_API Batch {
public:
    // A read or a write.
    struct Operation {
        RegisterAddress address;
        std::uint32_t value; // to be written
        bool writes;
    };
    // Names one read in the results of the batch.
    struct Reading {
        std::size_t index;
    };
    // Several in a row: the first one and how many.
    struct Readings {
        std::size_t first;
        std::size_t count;
    };

    // One register.
    Reading read(RegisterAddress address);
    // `count` registers from `first` on.
    Readings read(RegisterAddress first, std::size_t count);
    Readings read(const std::vector<RegisterAddress>& addresses);
    void write(RegisterAddress address, std::uint32_t value);

    // The operations, in order.
    std::size_t size() const noexcept { return operations_.size(); }
    const std::vector<Operation>& operations() const noexcept { return operations_; }
    void clear() noexcept { operations_.clear(); }

private:
    std::vector<Operation> operations_;
};

// What became of one operation.
struct OperationOutcome {
    enum class State : std::uint8_t {
        NotSent, // certainly not executed
        Done,    // executed; `value` is what was read or written
        Refused, // the board answered `code`, for it and for all that it was sent with
        Unknown, // sent, and no usable answer: it may have been executed
    };

    State state = State::NotSent; // good in any case
    std::uint32_t value = 0;      // for Done only
    int code = 0;                 // for Refused: a negative errno value
};

// In words, e.g. "not sent". Never null.
ORVANE_API const char* toText(OperationOutcome::State state) noexcept;

// The outcomes of a batch. A plain value; one thread.
class ORVANE_API BatchResult {
public:
    // `failure` empty: every operation was done.
    BatchResult(std::vector<OperationOutcome> outcomes, std::optional<Failure> failure);

    // Whether every operation was done.
    bool complete() const noexcept { return !failure_; }
    // The first thing that went wrong. No block was begun after it; reads may have been under way beside it.
    const std::optional<Failure>& failure() const noexcept { return failure_; }
    // Throws std::out_of_range.
    const OperationOutcome& outcome(std::size_t index) const { return outcomes_.at(index); }
    std::size_t size() const noexcept { return outcomes_.size(); }

    // What was read. Throws the Failure when it was not, std::out_of_range for another batch's.
    std::uint32_t operator[](Batch::Reading reading) const;
    std::vector<std::uint32_t> operator[](Batch::Readings readings) const;

private:
    std::vector<OperationOutcome> outcomes_;
    std::optional<Failure> failure_;
};

} // namespace Orvane
