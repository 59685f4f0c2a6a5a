// What a board offers beside its PHYs: lines, EEPROM, JTAG chain, ADC, temperature forcing unit, commands.
#include "examples/demo/Sections.h"

#include <algorithm>
#include <array>
#include <cstdio>
#include <orvane/orvane.hpp>

namespace Demo {

namespace {

using Bytes = std::vector<unsigned char>;
using Session = Orvane::SessionWrapper;

std::string celsius(float temperature) {
    std::array<char, 32> text{};
    std::snprintf(text.data(), text.size(), "%.2f C", static_cast<double>(temperature));
    return text.data();
}

// Sends bits out of one line and samples the other after each.
void gpioLoop(Report& report, Session session) {
    constexpr unsigned char kOutput = 0;
    constexpr unsigned char kInput = 16;
    const Bytes bits{1, 0, 1, 1, 0, 0, 1, 0};
    Bytes lines;
    Bytes states;
    Bytes sampleOnly;
    std::string sent;
    for (const unsigned char bit : bits) {
        sent += bit != 0 ? '1' : '0';
        lines.insert(lines.end(), {kOutput, kInput});
        states.insert(states.end(), {bit, 0});
        sampleOnly.insert(sampleOnly.end(), {0, 1});
    }

    const Stopwatch watch;
    Orvane::GPIO::GPIO gpio;
    gpio.enableOutput(session, {kOutput}, {1});
    const Bytes levels = gpio.bitBang(session, lines, states, sampleOnly);
    gpio.setDefault(session, {kOutput});
    const std::string time = duration(watch.elapsed());

    std::string received;
    for (std::size_t i = 1; i < levels.size(); i += 2)
        received += levels[i] != 0 ? '1' : '0';
    report.row({"gpio", "line 0 sends " + sent, received,
                received == sent ? "looped to line 16" : "no loop to line 16", time});
}

void eeprom(Report& report, Session session) {
    constexpr unsigned char kBus = 0;
    constexpr unsigned kEeprom = 0x50;
    constexpr unsigned kPlace = 0x40;
    const Stopwatch reading;
    const Bytes serial = Orvane::i2c.readReg(session, kBus, kEeprom, 0, 1, 6);
    report.row({"i2c", "EEPROM on bus 0, bytes 0 to 5", std::string(serial.begin(), serial.end()),
                "serial number", duration(reading.elapsed())});

    Bytes page{kPlace, 0xC0, 0xFF, 0xEE};
    Orvane::i2c.write(session, kBus, kEeprom, page);
    const Stopwatch readingBack;
    const Bytes back = Orvane::i2c.readReg(session, kBus, kEeprom, kPlace, 1, 3);
    std::uint32_t word = 0;
    for (const unsigned char byte : back)
        word = word << 8U | byte;
    report.readback("EEPROM, bytes 64 to 66", word, 0xC0FFEE, 6, duration(readingBack.elapsed()));
}

// After a reset of the chain its first device shifts out its identification, low bit first.
void jtagIdCode(Report& report, Session session) {
    constexpr const char* kToShiftDr = "111110100";
    constexpr const char* kToIdle = "10";
    const std::string zeros(32, '0');
    const std::string lastClockLeaves = std::string(31, '0') + "1";

    const Stopwatch watch;
    const std::vector<std::string> results =
        Orvane::JTAG::JTAG().shiftMulti(session, {"", zeros}, {kToShiftDr, lastClockLeaves}, {"", kToIdle});
    const std::string time = duration(watch.elapsed());

    const std::string bits(results[1].rbegin(), results[1].rend());
    const auto id = static_cast<std::uint32_t>(std::stoul(bits, nullptr, 2));
    report.row({"jtag", "first device of the chain", hex(id, 8), "id code", time});
    if ((id & 1U) == 0)
        report.failure("an id code has its lowest bit set");
}

// One character for each sample, upwards.
void plot(const Report& report, const Bytes& samples) {
    constexpr unsigned kRows = 8;
    constexpr unsigned kStep = 256 / kRows;
    for (unsigned row = kRows; row-- > 0;) {
        std::string line(samples.size(), ' ');
        for (std::size_t i = 0; i < samples.size(); ++i)
            if (samples[i] / kStep == row)
                line[i] = '*';
        report.row({"", "|" + line, "", "", ""});
    }
}

void adcCapture(Report& report, Session session) {
    constexpr int kSamples = 70;
    const Stopwatch watch;
    Orvane::ADC::ADC adc;
    adc.initialize(session);
    adc.setChannelMask(session, 1);
    adc.start(session);
    const Bytes samples = adc.getData(session, kSamples);
    const Bytes maxima = adc.maxADC(session);
    adc.stop(session);
    const std::string time = duration(watch.elapsed());

    report.row({"adc", std::to_string(samples.size()) + " samples of channel 0",
                maxima.empty() ? "" : std::to_string(maxima.front()), "highest of them", time});
    plot(report, samples);
}

void settlingTemperature(Report& report, Session session) {
    constexpr unsigned kChannel = 0;
    constexpr float kTarget = 85;
    Orvane::Thermal::Thermal thermal;
    thermal.connect(session);
    thermal.setTemperature(session, kChannel, kTarget, 1);
    std::string way;
    for (int i = 0; i < 3; ++i)
        way += celsius(thermal.getTemperature(session, kChannel)) + (i < 2 ? ", " : "");
    report.row({"heat", way, "", "on the way to " + celsius(kTarget), ""});

    const Stopwatch watch;
    const float settled = thermal.getSettledTemperature(session, kChannel);
    report.row({"heat", "channel 0", celsius(settled), "settled", duration(watch.elapsed())});
    thermal.stopControl(session);
    thermal.disconnect(session);
}

void command(Report& report, Session session) {
    const Stopwatch watch;
    Orvane::CommandResult result{};
    Orvane::Setup::Setup().runCommand(session, "hostname", 5, result);
    const std::string time = duration(watch.elapsed());
    result.output.erase(std::remove(result.output.begin(), result.output.end(), '\n'), result.output.end());
    report.row({"run", "hostname", result.output, "exit code " + std::to_string(result.exitCode), time});
}

} // namespace

void boardServices(Report& report, const Port& port) {
    report.section("Board services", "what the board has beside its PHYs");
    const Session session(HW_Interface_Object.getPhySession(port.name, kPhy));
    gpioLoop(report, session);
    eeprom(report, session);
    jtagIdCode(report, session);
    adcCapture(report, session);
    settlingTemperature(report, session);
    command(report, session);
}

} // namespace Demo
