// orvane adc capture: samples drawn and saved.
#include "tools/orvane/verbs/Capture.h"

#include "tools/orvane/board/Numbers.h"
#include "tools/orvane/cli/Service.h"
#include "tools/orvane/output/Plot.h"

#include <cerrno>
#include <cmath>
#include <fmt/format.h>
#include <fstream>

namespace OrvaneTool {
namespace {

constexpr unsigned kChannels = 32;

struct Options : ServiceOptions {
    std::string channels = "1";
    unsigned samples = 256;
    std::string file;
};

// What each channel saw, in the order of the channels.
struct Samples {
    std::vector<unsigned> channels;
    std::vector<std::vector<double>> values;
};

Samples capture(ServiceCall& call, unsigned mask, unsigned count) {
    Samples result;
    for (unsigned channel = 0; channel < kChannels; ++channel)
        if ((mask >> channel & 1U) != 0)
            result.channels.push_back(channel);
    const std::size_t width = result.channels.size();
    Orvane::ADC::ADC adc;
    const auto bytes = call.attempt([&] {
        adc.initialize(call.session());
        adc.setChannelMask(call.session(), mask);
        adc.start(call.session());
        auto data = adc.getData(call.session(), static_cast<int>(count * width));
        adc.stop(call.session());
        return data;
    });
    result.values.resize(width);
    for (std::size_t i = 0; i < bytes.size(); ++i)
        result.values[i % width].push_back(bytes[i]);
    return result;
}

void draw(ServiceCall& call, const Samples& samples) {
    constexpr unsigned kBesideCurve = 12;
    const unsigned width = call.out().width();
    const Axis axis{0, 255, width > kBesideCurve ? width - kBesideCurve : 1, 16, 0};
    for (std::size_t i = 0; i < samples.channels.size(); ++i) {
        call.out().print("channel {}, {} samples\n", samples.channels[i], samples.values[i].size());
        call.out().write(plot(samples.values[i], axis, std::nan("")));
    }
}

void record(ServiceCall& call, const Samples& samples) {
    for (std::size_t i = 0; i < samples.channels.size(); ++i)
        for (std::size_t place = 0; place < samples.values[i].size(); ++place)
            call.put(call.record("sample")
                         .put("channel", samples.channels[i])
                         .put("place", place)
                         .put("value", static_cast<unsigned>(samples.values[i][place])));
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

void save(const std::string& path, const Samples& samples) {
    std::ofstream file(path, std::ios::binary | std::ios::trunc);
    file << (endsWith(path, ".pgm") ? pictureOf(samples) : csvOf(samples));
    if (!file.flush())
        throw Failure(fmt::format("{}: cannot write: {}", path, errorText(errno)));
}

int run(Context& context, const Options& options) {
    const auto mask = numberAs<unsigned>(options.channels, 0xFFFFFFFF, "the channel mask");
    if (mask == 0)
        throw UsageError("the channel mask names no channel");
    if (!options.file.empty() && !endsWith(options.file, ".csv") && !endsWith(options.file, ".pgm"))
        throw UsageError(fmt::format("'{}' must end with .csv or .pgm", options.file));
    ServiceCall call(context, options, "adc capture", "channel place value");
    const Samples samples = capture(call, mask, options.samples);
    call.isText() ? draw(call, samples) : record(call, samples);
    if (!options.file.empty())
        save(options.file, samples);
    return kSuccess;
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
    verb.add_option("-o,--output", options->file, "Save the samples: .csv, or .pgm, a picture")
        ->type_name("FILE");
    setAction(verb, context, options, run);
}

} // namespace OrvaneTool
