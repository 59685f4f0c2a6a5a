// Sampling of waveforms.
#include "simulator/models/AnalogueInputs.h"

#include <algorithm>
#include <cmath>

namespace OrvaneSim {
namespace {

constexpr double kTurn = 6.283185307179586;
constexpr std::uint32_t kAllChannels = (1U << AnalogueInputs::kChannels) - 1;

double valueAt(const Waveform& waveform, std::uint64_t sample) {
    const unsigned period = std::max(1U, waveform.period);
    const double phase = static_cast<double>(sample % period) / period;
    switch (waveform.shape) {
    case Waveform::Shape::Sine:
        return waveform.offset + waveform.amplitude * std::sin(kTurn * phase);
    case Waveform::Shape::Ramp:
        return waveform.offset + waveform.amplitude * phase;
    case Waveform::Shape::Constant:
        break;
    }
    return waveform.offset;
}

} // namespace

void AnalogueInputs::initialize() {
    mask_ = 1;
    dumpFile_.clear();
    start();
    stop();
}

void AnalogueInputs::start() {
    running_ = true;
    sample_ = 0;
    channel_ = 0;
    maxima_.fill(0);
    events_.clear();
}

std::uint8_t AnalogueInputs::sample(std::size_t channel) const {
    return static_cast<std::uint8_t>(
        std::lround(std::clamp(valueAt(waveforms_[channel], sample_), 0.0, 255.0)));
}

void AnalogueInputs::advance() {
    if (++channel_ == kChannels) {
        channel_ = 0;
        ++sample_;
    }
}

std::vector<std::uint8_t> AnalogueInputs::take(std::size_t count) {
    std::vector<std::uint8_t> bytes;
    if (!running_ || (mask_ & kAllChannels) == 0)
        return bytes;
    while (bytes.size() < count) {
        if (enabled(channel_)) {
            bytes.push_back(sample(channel_));
            maxima_[channel_] = std::max(maxima_[channel_], bytes.back());
        }
        advance();
    }
    return bytes;
}

std::vector<std::uint8_t> AnalogueInputs::maxima() const {
    std::vector<std::uint8_t> bytes;
    for (std::size_t channel = 0; channel < kChannels; ++channel)
        if (enabled(channel))
            bytes.push_back(maxima_[channel]);
    return bytes;
}

void AnalogueInputs::addEvent(const std::string& name) {
    events_ += std::to_string(sample_) + " " + name + "\n";
}

} // namespace OrvaneSim
