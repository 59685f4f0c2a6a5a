// The analogue inputs of a board and its capture of them.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

namespace OrvaneSim {

// What an analogue input sees, in units of the converter (0 to 255).
struct Waveform {
    enum class Shape { Constant, Ramp, Sine };
    Shape shape = Shape::Sine;
    double offset = 128;    // middle of a sine, start of a ramp, level of a constant
    double amplitude = 100; // peak of a sine above its middle, height of a ramp
    unsigned period = 64;   // in samples; at least 1
};

// Eight inputs sampled in step. A capture runs from start to stop; its samples come one byte for each
// enabled channel in ascending order, then the next sample. Belongs to the loop's thread.
class AnalogueInputs {
public:
    static constexpr std::size_t kChannels = 8;

    // Back to power-on: channel 0 enabled, no events, no dump file, not running.
    void initialize();
    // Starts from sample 0, with fresh maxima and no events.
    void start();
    void stop() { running_ = false; }

    void setChannelMask(std::uint32_t mask) { mask_ = mask; }
    // The next `count` bytes of the capture; none while it does not run or no channel is enabled.
    std::vector<std::uint8_t> take(std::size_t count);
    // The largest value of each enabled channel since the start.
    std::vector<std::uint8_t> maxima() const;

    // Marks the next sample with a name.
    void addEvent(const std::string& name);
    // One line for each event: number of the sample, a blank, the name.
    const std::string& events() const { return events_; }

    void setDumpFile(const std::string& name) { dumpFile_ = name; }
    // The name only; a simulated board writes no file.
    const std::string& dumpFile() const { return dumpFile_; }

    // `channel` must be less than `kChannels`.
    void setWaveform(std::size_t channel, const Waveform& waveform) { waveforms_[channel] = waveform; }

private:
    std::uint8_t sample(std::size_t channel) const;
    bool enabled(std::size_t channel) const { return ((mask_ >> channel) & 1U) != 0; }
    void advance();

    std::array<Waveform, kChannels> waveforms_{};
    std::array<std::uint8_t, kChannels> maxima_{};
    std::uint32_t mask_ = 1;
    bool running_ = false;
    std::uint64_t sample_ = 0;
    std::size_t channel_ = 0; // of the next byte
    std::string events_;
    std::string dumpFile_;
};

} // namespace OrvaneSim
