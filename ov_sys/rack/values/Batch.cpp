// How a batch is filled, and what it gives back.
#include "ov_sys/rack/values/Batch.h"

#include <utility>

namespace Orvane {

Batch::Reading Batch::read(RegisterAddress address) {
    operations_.push_back({address, 0, false});
    return {operations_.size() - 1};
}

Batch::Readings Batch::read(RegisterAddress first, std::size_t count) {
    const Readings readings{operations_.size(), count};
    operations_.insert(operations_.end(), count, {first, 0, false});
    for (std::size_t i = 0; i < count; ++i)
        operations_[readings.first + i].address.number += static_cast<std::uint32_t>(i);
    return readings;
}

Batch::Readings Batch::read(const std::vector<RegisterAddress>& addresses) {
    const Readings readings{operations_.size(), addresses.size()};
    for (const RegisterAddress& address : addresses)
        operations_.push_back({address, 0, false});
    return readings;
}

void Batch::write(RegisterAddress address, std::uint32_t value) {
    operations_.push_back({address, value, true});
}

const char* toText(OperationOutcome::State state) noexcept {
    switch (state) {
    case OperationOutcome::State::NotSent:
        return "not sent";
    case OperationOutcome::State::Done:
        return "done";
    case OperationOutcome::State::Refused:
        return "refused";
    case OperationOutcome::State::Unknown:
        return "unknown";
    }
    return "";
}

BatchResult::BatchResult(std::vector<OperationOutcome> outcomes, std::optional<Failure> failure)
    : outcomes_(std::move(outcomes)), failure_(std::move(failure)) {}

std::uint32_t BatchResult::operator[](Batch::Reading reading) const {
    const OperationOutcome& one = outcomes_.at(reading.index);
    if (one.state != OperationOutcome::State::Done)
        throw Failure(*failure_); // there is one as soon as anything is not done
    return one.value;
}

std::vector<std::uint32_t> BatchResult::operator[](Batch::Readings readings) const {
    std::vector<std::uint32_t> values(readings.count);
    for (std::size_t i = 0; i < readings.count; ++i)
        values[i] = (*this)[Batch::Reading{readings.first + i}];
    return values;
}

} // namespace Orvane
