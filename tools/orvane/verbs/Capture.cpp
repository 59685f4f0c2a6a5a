// orvane adc capture: samples drawn and saved.
#include "tools/orvane/verbs/Capture.h"

#include "tools/orvane/board/Gap.h"
#include "tools/orvane/board/Numbers.h"
#include "tools/orvane/cli/Service.h"
#include "tools/orvane/output/OutputFile.h"
#include "tools/orvane/output/Plot.h"

#include <algorithm>
#include <chrono>
#include <cmath>
#include <fmt/format.h>
#include <utility>

namespace OrvaneTool {
namespace {

constexpr unsigned kChannels = 32;

struct Options : ServiceOptions {
    std::string channels = "1";
    unsigned samples = 256;
    std::string file;
    bool force = false;
    bool strict = false;
};

// A gap, and how many samples of each channel were there before it.
struct PlacedGap {
    std::size_t place;
    Gap gap;
};

// What each channel saw, in the order of the channels.
struct Samples {
    std::vector<unsigned> channels;
    std::vector<std::vector<double>> values;
    std::vector<PlacedGap> gaps;
};

// One capture, which is begun again by a board that lost it.
class Capture {
public:
    Capture(ServiceCall& call, unsigned mask) : call_(call), mask_(mask) {
        for (unsigned channel = 0; channel < kChannels; ++channel)
            if ((mask >> channel & 1U) != 0)
                samples_.channels.push_back(channel);
    }

    Samples run(std::size_t count) {
        const std::size_t width = samples_.channels.size();
        while (bytes_.size() < count * width)
            call_.attempt([&] { readSome(count * width); });
        call_.attempt([&] { call_.phy().adc().stop(call_.once()); });
        samples_.values.resize(width);
        for (std::size_t i = 0; i < bytes_.size(); ++i)
            samples_.values[i % width].push_back(bytes_[i]);
        return std::move(samples_);
    }

private:
    void readSome(std::size_t total) {
        constexpr std::size_t kAtOnce = 32768;
        constexpr std::chrono::milliseconds kPause{100};
        const std::size_t before = bytes_.size();
        const auto gap = throughGaps(call_.context(), kPause, [&] {
            begin();
            const auto some = call_.phy().adc().data(
                static_cast<std::uint32_t>(std::min(total - bytes_.size(), kAtOnce)), call_.once());
            running_ = true;
            bytes_.insert(bytes_.end(), some.begin(), some.end());
        });
        const std::size_t width = samples_.channels.size();
        if (gap)
            samples_.gaps.push_back({before / width, *gap});
        if (bytes_.size() == before)
            throw Failure(fmt::format("{}: adc capture: the board has no more samples: {} of {}",
                                      call_.device(), before / width, total / width));
    }

    void begin() {
        if (std::exchange(running_, false))
            return;
        bytes_.resize(bytes_.size() - bytes_.size() % samples_.channels.size()); // the first channel is next
        const Orvane::AdcCapture adc = call_.phy().adc();
        adc.initialize(call_.once());
        adc.setChannelMask(mask_, call_.once());
        adc.start(call_.once());
    }

    ServiceCall& call_;
    unsigned mask_;
    Samples samples_;
    std::vector<std::uint8_t> bytes_; // of all channels, in turns
    bool running_ = false;            // as far as the last answer tells
};

void draw(ServiceCall& call, const Samples& samples) {
    constexpr unsigned kBesideCurve = 12;
    const unsigned width = call.out().width();
    const Axis axis{0, 255, width > kBesideCurve ? width - kBesideCurve : 1, 16, 0};
    for (std::size_t i = 0; i < samples.channels.size(); ++i) {
        call.out().print("channel {}, {} samples\n", samples.channels[i], samples.values[i].size());
        call.out().write(plot(samples.values[i], axis, std::nan("")));
    }
    for (const PlacedGap& each : samples.gaps)
        call.out().print("{}, before sample {}\n", each.gap.text(), each.place);
}

void record(ServiceCall& call, const Samples& samples) {
    for (std::size_t i = 0; i < samples.channels.size(); ++i)
        for (std::size_t place = 0; place < samples.values[i].size(); ++place)
            call.put(call.record("sample")
                         .put("channel", samples.channels[i])
                         .put("place", place)
                         .put("value", static_cast<unsigned>(samples.values[i][place])));
    for (const PlacedGap& each : samples.gaps) {
        Record gap = call.record("gap");
        gap.put("place", each.place);
        each.gap.addTo(gap);
        call.put(gap);
    }
}

std::string csvOf(const Samples& samples) {
    std::string text = "sample";
    for (const unsigned channel : samples.channels)
        text += fmt::format(",channel{}", channel);
    text += '\n';
    for (std::size_t row = 0; row < samples.values[0].size(); ++row) {
        text += std::to_string(row);
        for (const auto& column : samples.values)
            text += row < column.size() ? fmt::format(",{}", column[row]) : ",";
        text += '\n';
    }
    return text;
}

// A picture, 256 high, a column for each sample, black on white: a portable greymap.
std::string pictureOf(const Samples& samples) {
    constexpr std::size_t kHeight = 256;
    const std::size_t width = samples.values[0].size();
    std::string pixels(width * kHeight, '\xFF');
    for (const auto& curve : samples.values)
        for (std::size_t x = 0; x < curve.size() && x < width; ++x)
            pixels[(kHeight - 1 - static_cast<std::size_t>(curve[x])) * width + x] = '\0';
    return fmt::format("P5\n{} {}\n255\n", width, kHeight) + pixels;
}

bool endsWith(const std::string& text, const std::string& end) {
    return text.size() >= end.size() && text.compare(text.size() - end.size(), end.size(), end) == 0;
}

int run(Context& context, const Options& options) {
    const auto mask = numberAs<unsigned>(options.channels, 0xFFFFFFFF, "the channel mask");
    if (mask == 0)
        throw UsageError("the channel mask names no channel");
    if (!options.file.empty() && !endsWith(options.file, ".csv") && !endsWith(options.file, ".pgm"))
        throw UsageError(fmt::format("'{}' must end with .csv or .pgm", options.file));
    if (!options.file.empty())
        requireNewFile(options.file, options.force);
    ServiceCall call(context, options, "adc capture", "channel place value from until");
    const Samples samples = Capture(call, mask).run(options.samples);
    call.isText() ? draw(call, samples) : record(call, samples);
    if (!options.file.empty())
        writeFile(options.file, endsWith(options.file, ".pgm") ? pictureOf(samples) : csvOf(samples),
                  options.force);
    return options.strict && !samples.gaps.empty() ? kFailed : kSuccess;
}

} // namespace

void addCapture(CLI::App& service, Context& context) {
    CLI::App& verb = addVerb(service, {"capture", "Capture, draw and save samples", ""});
    auto options = std::make_shared<Options>();
    addServiceOptions(verb, context, *options);
    verb.add_option("--channels", options->channels, "Mask of the channels (1)")->type_name("MASK");
    verb.add_option("--samples", options->samples, "Samples of each channel (256)")
        ->type_name("N")
        ->check(CLI::Range(1U, 1000000U).description(""));
    verb.add_option("-o,--output", options->file, "Save the samples, 0 to 255: .csv, or .pgm, a picture")
        ->type_name("FILE");
    verb.add_flag("--force", options->force, "Overwrite the file");
    verb.add_flag("--strict", options->strict, "End with status 1 when the board did not answer for a while");
    setAction(verb, context, options, run);
}

} // namespace OrvaneTool
