// Steps of the thermal plant.
#include "simulator/models/ThermalPlant.h"

#include <algorithm>
#include <cmath>

namespace OrvaneSim {
namespace {

constexpr double kStep = 0.25; // part of the way that a query goes
constexpr double kNear = 0.1;

} // namespace

bool ThermalPlant::hasSettled(const Channel& channel) const {
    return std::abs(channel.temperature - goal(channel)) < kNear;
}

ThermalPlant::State ThermalPlant::state() const {
    if (!connected_)
        return Disconnected;
    const auto controlled = [](const Channel& channel) { return channel.controlled; };
    if (std::none_of(channels_.begin(), channels_.end(), controlled))
        return Idle;
    const bool settled = std::all_of(channels_.begin(), channels_.end(), [&](const Channel& channel) {
        return !channel.controlled || hasSettled(channel);
    });
    return settled ? Settled : Settling;
}

void ThermalPlant::disconnect() {
    stopControl();
    connected_ = false;
}

void ThermalPlant::stopControl() {
    for (Channel& channel : channels_) {
        channel.controlled = false;
        channel.target = channel.defaultTarget;
    }
}

double ThermalPlant::query(std::size_t number) {
    Channel& channel = channels_[number];
    channel.temperature += (goal(channel) - channel.temperature) * kStep;
    return channel.temperature;
}

double ThermalPlant::settle(std::size_t number) {
    while (!hasSettled(channels_[number]))
        query(number);
    return channels_[number].temperature;
}

} // namespace OrvaneSim
