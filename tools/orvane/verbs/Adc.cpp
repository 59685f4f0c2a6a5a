// orvane adc: captures of a board's analogue inputs.
#include "tools/orvane/board/Numbers.h"
#include "tools/orvane/cli/Service.h"
#include "tools/orvane/verbs/Capture.h"
#include "tools/orvane/verbs/Verbs.h"

#include <array>
#include <fmt/format.h>
#include <sstream>

namespace OrvaneTool {
namespace {

using Orvane::AdcCapture;

// An operation without arguments or result.
template <void (AdcCapture::*Method)(const Orvane::Within&) const>
void plain(ServiceCall& call) {
    call.attempt([&] { (call.phy().adc().*Method)(call.once()); });
}

template <void (AdcCapture::*Method)(const std::string&, const Orvane::Within&) const>
void named(ServiceCall& call) {
    call.attempt([&] { (call.phy().adc().*Method)(call.word(0), call.once()); });
}

void mask(ServiceCall& call) {
    const auto bits = numberAs<unsigned>(call.word(0), 0xFFFFFFFF, "the mask");
    call.attempt([&] { call.phy().adc().setChannelMask(bits, call.once()); });
}

void putNumbers(ServiceCall& call, const char* kind, const std::vector<unsigned char>& numbers) {
    for (std::size_t i = 0; i < numbers.size(); ++i) {
        call.put(call.record(kind).put("place", i).put("value", numbers[i]));
        if (call.isText())
            call.out().print("{}\n", numbers[i]);
    }
}

void data(ServiceCall& call) {
    const auto count = numberAs<std::uint32_t>(call.word(0), 0x7FFFFFFF, "the count");
    const auto bytes = call.attempt([&] { return call.phy().adc().data(count, call.once()); });
    putNumbers(call, "sample", bytes);
}

void maxima(ServiceCall& call) {
    putNumbers(call, "maximum", call.attempt([&] { return call.phy().adc().maxAdc(call.once()); }));
}

void events(ServiceCall& call) {
    const auto bytes = call.attempt([&] { return call.phy().adc().events(call.once()); });
    const std::string text(bytes.begin(), bytes.end());
    if (call.isText())
        return call.out().relay(text);
    std::istringstream lines(text);
    for (std::string line; std::getline(lines, line);)
        call.put(call.record("mark").put("text", line));
}

constexpr std::array<Operation, 9> kOperations{{
    {"init", "", 0, 0, "Put the converter into its first state", plain<&AdcCapture::initialize>},
    {"mask", "MASK", 1, 1, "Choose the channels of a capture, one bit each", mask},
    {"start", "", 0, 0, "Start a capture", plain<&AdcCapture::start>},
    {"stop", "", 0, 0, "Stop the capture", plain<&AdcCapture::stop>},
    {"data", "COUNT", 1, 1, "Print the next samples of the running capture", data, "place value"},
    {"max", "", 0, 0, "Print each channel's largest sample", maxima, "place value"},
    {"event", "NAME", 1, 1, "Mark the next sample with a name", named<&AdcCapture::setEventName>},
    {"events", "", 0, 0, "Print the marks", events, "text"},
    {"dump-file", "NAME", 1, 1, "Name the file on the board that samples go to",
     named<&AdcCapture::setDumpFile>},
}};

} // namespace

void addAdc(CLI::App& app, Context& context) {
    CLI::App& service =
        addService(app, {"adc", "Capture a board's analogue inputs",
                         "  orvane adc capture OV0001:0\n"
                         "  orvane adc capture OV0001:0 --channels 0x3 --samples 500 -o both.csv\n"
                         "  orvane adc capture OV0001:0 -o curve.pgm && pnmtopng curve.pgm > curve.png\n"});
    addCapture(service, context);
    for (const Operation& operation : kOperations)
        addOperation(service, context, operation);
}

} // namespace OrvaneTool
