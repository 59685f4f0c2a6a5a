// State and requests of a lab's board, for any thread.
#include "simulator/lab/Board.h"

#include "simulator/lab/BoardInside.h"
#include "simulator/models/RegisterPaths.h"

#include <algorithm>
#include <stdexcept>
#include <utility>

namespace OrvaneSim {
namespace {

void checkBelow(std::size_t number, std::size_t limit) {
    if (number >= limit)
        throw std::out_of_range(std::to_string(number) + " is not below " + std::to_string(limit));
}

} // namespace

Board::Board(std::unique_ptr<Inside> inside) : inside_(std::move(inside)) {}
Board::~Board() = default;

std::string Board::address() const {
    return inside_->loop.call([this] { return inside_->board->address(); });
}
const std::string& Board::serial() const {
    return inside_->serial;
}
std::string Board::nameLine() const {
    return inside_->board->voice().name().line();
}

std::vector<Request> Board::requests(const std::string& program) const {
    return inside_->board->parts().requests.select([&](const Request& request) {
        return program.empty() ? request.program != "portmap" : request.program == program;
    });
}

std::vector<Request> Board::requestsOf(const std::string& procedure) const {
    return inside_->board->parts().requests.select(
        [&](const Request& request) { return request.procedure == procedure; });
}

void Board::forgetRequests() {
    inside_->board->parts().requests.clear();
}

Request Board::waitFor(const std::function<bool(const Request&)>& predicate,
                       std::chrono::milliseconds limit) const {
    return inside_->board->parts().requests.waitFor(predicate, limit);
}

void Board::onRequest(std::function<void(const Request&)> observer) {
    inside_->withParts([&](BoardParts& parts) { parts.observers.push_back(std::move(observer)); });
}

CallCounts Board::counts(const std::string& procedure) const {
    return inside_->withParts([&](BoardParts& parts) { return parts.counters.of(procedure); });
}

std::map<std::string, CallCounts> Board::counts() const {
    return inside_->withParts([](BoardParts& parts) { return parts.counters.all(); });
}

std::uint64_t Board::straysSent() const {
    return inside_->loop.call([this] { return inside_->board->straysSent(); });
}

void Board::setRegister(Space space, unsigned device, unsigned phy, std::uint32_t address,
                        std::uint32_t value) {
    inside_->withParts([&](BoardParts& parts) { parts.mdio.poke({device, phy}, space, address, value); });
}

std::uint32_t Board::registerValue(Space space, unsigned device, unsigned phy, std::uint32_t address) const {
    return inside_->withParts([&](BoardParts& parts) {
        return parts.mdio.peek({device, phy}, space, address);
    });
}

std::vector<RegisterValue> Board::registers() const {
    return inside_->withParts([](BoardParts& parts) { return parts.mdio.written(); });
}

void Board::replaceRegisters(const std::vector<RegisterValue>& values) {
    inside_->withParts([&](BoardParts& parts) {
        parts.mdio.forget();
        for (const RegisterValue& set : values)
            parts.mdio.poke({set.device, set.phy}, set.space, set.address, set.value);
    });
}

void Board::setPathTroubles(const PathTroubles& troubles) {
    inside_->withParts([&](BoardParts& parts) { parts.mdio.paths().troubles = troubles; });
}

bool Board::gpioLevel(std::size_t line) const {
    checkBelow(line, GpioBank::kLines);
    return inside_->withParts([&](BoardParts& parts) { return parts.gpio.level(line); });
}

void Board::driveGpio(std::size_t line, bool level) {
    checkBelow(line, GpioBank::kLines);
    inside_->withParts([&](BoardParts& parts) { parts.gpio.drive(line, level); });
}

void Board::wireGpio(std::size_t output, std::size_t input) {
    checkBelow(output, GpioBank::kLines);
    checkBelow(input, GpioBank::kLines);
    inside_->withParts([&](BoardParts& parts) { parts.gpio.wire(output, input); });
}

void Board::setWaveform(std::size_t channel, const Waveform& waveform) {
    checkBelow(channel, AnalogueInputs::kChannels);
    inside_->withParts([&](BoardParts& parts) { parts.adc.setWaveform(channel, waveform); });
}

std::string Board::adcDumpFile() const {
    return inside_->withParts([](BoardParts& parts) { return parts.adc.dumpFile(); });
}

void Board::setAmbientTemperature(double celsius) {
    inside_->withParts([&](BoardParts& parts) { parts.thermal.setAmbient(celsius); });
}

void Board::setTemperature(std::size_t channel, double celsius) {
    checkBelow(channel, ThermalPlant::kChannels);
    inside_->withParts([&](BoardParts& parts) { parts.thermal.setTemperature(channel, celsius); });
}

std::vector<std::uint8_t> Board::eeprom(unsigned bus) const {
    return inside_->withParts([&](BoardParts& parts) { return parts.i2c.eeprom(bus).content(); });
}

void Board::setEeprom(unsigned bus, const std::vector<std::uint8_t>& bytes) {
    checkBelow(bytes.size(), Eeprom::kSize + 1);
    inside_->withParts([&](BoardParts& parts) {
        std::copy(bytes.begin(), bytes.end(), parts.i2c.eeprom(bus).content().begin());
    });
}

std::vector<std::uint32_t> Board::jtagIdentifications() const {
    std::vector<std::uint32_t> identifications;
    for (const JtagChain::Device& device : inside_->board->parts().jtag.devices())
        identifications.push_back(device.identification);
    return identifications;
}

void Board::setCommand(const std::string& command, const CommandOutcome& outcome) {
    inside_->withParts([&](BoardParts& parts) { parts.commands.set(command, outcome); });
}

void Board::forgetSessions() {
    inside_->withParts([](BoardParts& parts) { parts.sessions.clear(); });
}

std::size_t Board::sessionCount() const {
    return inside_->withParts([](BoardParts& parts) { return parts.sessions.count(); });
}

std::size_t Board::discoveryCount() const {
    return discoveryRequests().size();
}

std::vector<std::string> Board::discoveryRequests() const {
    return inside_->board->voice().requestsHeard();
}

std::vector<std::string> Board::probeRequests() const {
    return inside_->board->voice().probesHeard();
}

void Board::setDiscoveryReplies(std::optional<std::vector<std::string>> texts) {
    inside_->loop.call([&] { inside_->board->voice().setReplies(std::move(texts)); });
}

void Board::setProbeChunks(std::optional<std::vector<std::string>> chunks) {
    inside_->loop.call([&] { inside_->board->voice().setProbeChunks(std::move(chunks)); });
}

} // namespace OrvaneSim
