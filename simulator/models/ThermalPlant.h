// The temperature forcing unit of a board and what it heats.
#pragma once

#include <array>
#include <cstddef>

namespace OrvaneSim {

// Four channels that approach their set point while controlled and the ambient temperature otherwise, a
// quarter of the way at each query: time is counted in queries, so that a run repeats. Temperatures are in
// degrees Celsius. Belongs to the loop's thread.
class ThermalPlant {
public:
    static constexpr std::size_t kChannels = 4;
    static constexpr double kLowest = -60;
    static constexpr double kHighest = 200;

    enum State : int { Disconnected = 0, Idle = 1, Settling = 2, Settled = 3 };

    void connect() { connected_ = true; }
    // Ends control on every channel.
    void disconnect();
    bool connected() const { return connected_; }
    // Settled when every controlled channel is within 0.1 degrees of its set point.
    State state() const;

    // `channel` must be less than `kChannels`, here and below.
    void setTarget(std::size_t channel, double celsius) { channels_[channel].target = celsius; }
    // The set point that a channel returns to when its control ends; at first the ambient temperature.
    void setDefaultTarget(std::size_t channel, double celsius) { channels_[channel].defaultTarget = celsius; }
    void startControl(std::size_t channel) { channels_[channel].controlled = true; }
    // Ends control on every channel.
    void stopControl();

    // Takes one step and gives the channel's temperature.
    double query(std::size_t number);
    // Takes steps until the channel has settled and gives its temperature.
    double settle(std::size_t number);
    // The channel's temperature, without a step.
    double temperature(std::size_t channel) const { return channels_[channel].temperature; }

    void setTemperature(std::size_t channel, double celsius) { channels_[channel].temperature = celsius; }

    void setAmbient(double celsius) { ambient_ = celsius; }

private:
    static constexpr double kAmbient = 25;
    struct Channel {
        double temperature = kAmbient;
        double target = kAmbient;
        double defaultTarget = kAmbient;
        bool controlled = false;
    };
    double goal(const Channel& channel) const { return channel.controlled ? channel.target : ambient_; }
    bool hasSettled(const Channel& channel) const;

    std::array<Channel, kChannels> channels_{};
    double ambient_ = kAmbient;
    bool connected_ = false;
};

} // namespace OrvaneSim
