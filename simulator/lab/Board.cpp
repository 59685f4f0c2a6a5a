// State and requests of a lab's board, for any thread.
#include "simulator/lab/Board.h"

#include "simulator/lab/BoardImpl.h"
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

Board::Board(std::unique_ptr<Impl> impl) : impl_(std::move(impl)) {}
Board::~Board() = default;

std::string Board::address() const {
    return impl_->loop.call([this] { return impl_->board->address(); });
}
const std::string& Board::serial() const {
    return impl_->serial;
}
std::string Board::nameLine() const {
    return impl_->board->discovery().name().line();
}

std::vector<Request> Board::requests(const std::string& program) const {
    return impl_->board->parts().requests.select([&](const Request& request) {
        return program.empty() ? request.program != "portmap" : request.program == program;
    });
}

std::vector<Request> Board::requestsOf(const std::string& procedure) const {
    return impl_->board->parts().requests.select(
        [&](const Request& request) { return request.procedure == procedure; });
}

void Board::forgetRequests() {
    impl_->board->parts().requests.clear();
}

Request Board::waitFor(const std::function<bool(const Request&)>& predicate,
                       std::chrono::milliseconds limit) const {
    return impl_->board->parts().requests.waitFor(predicate, limit);
}

void Board::onRequest(std::function<void(const Request&)> observer) {
    impl_->withParts([&](BoardParts& parts) { parts.observers.push_back(std::move(observer)); });
}

CallCounts Board::counts(const std::string& procedure) const {
    return impl_->withParts([&](BoardParts& parts) { return parts.counters.of(procedure); });
}

std::map<std::string, CallCounts> Board::counts() const {
    return impl_->withParts([](BoardParts& parts) { return parts.counters.all(); });
}

std::uint64_t Board::straysSent() const {
    return impl_->loop.call([this] { return impl_->board->straysSent(); });
}

void Board::setRegister(Space space, unsigned device, unsigned phy, std::uint32_t address,
                        std::uint32_t value) {
    impl_->withParts([&](BoardParts& parts) { parts.mdio.poke({device, phy}, space, address, value); });
}

std::uint32_t Board::registerValue(Space space, unsigned device, unsigned phy, std::uint32_t address) const {
    return impl_->withParts([&](BoardParts& parts) {
        return parts.mdio.peek({device, phy}, space, address);
    });
}

std::vector<RegisterValue> Board::registers() const {
    return impl_->withParts([](BoardParts& parts) { return parts.mdio.written(); });
}

void Board::replaceRegisters(const std::vector<RegisterValue>& values) {
    impl_->withParts([&](BoardParts& parts) { parts.mdio.replace(values); });
}

void Board::useMap(const UseMap& map) {
    impl_->withParts([&](BoardParts& parts) {
        parts.mdio.map({map.device, map.phy}, map.identifier, map.registers);
    });
}

void Board::setPathTroubles(const PathTroubles& troubles) {
    impl_->withParts([&](BoardParts& parts) { parts.mdio.paths().troubles = troubles; });
}

bool Board::gpioLevel(std::size_t line) const {
    checkBelow(line, GpioBank::kLines);
    return impl_->withParts([&](BoardParts& parts) { return parts.gpio.level(line); });
}

void Board::driveGpio(std::size_t line, bool level) {
    checkBelow(line, GpioBank::kLines);
    impl_->withParts([&](BoardParts& parts) { parts.gpio.drive(line, level); });
}

void Board::wireGpio(std::size_t output, std::size_t input) {
    checkBelow(output, GpioBank::kLines);
    checkBelow(input, GpioBank::kLines);
    impl_->withParts([&](BoardParts& parts) { parts.gpio.wire(output, input); });
}

void Board::setWaveform(std::size_t channel, const Waveform& waveform) {
    checkBelow(channel, AnalogueInputs::kChannels);
    impl_->withParts([&](BoardParts& parts) { parts.adc.setWaveform(channel, waveform); });
}

std::string Board::adcDumpFile() const {
    return impl_->withParts([](BoardParts& parts) { return parts.adc.dumpFile(); });
}

void Board::raiseInterrupt(unsigned device, unsigned phy) {
    impl_->withParts([&](BoardParts& parts) { parts.interrupts.raise({device, phy}); });
}

void Board::setAmbientTemperature(double celsius) {
    impl_->withParts([&](BoardParts& parts) { parts.thermal.setAmbient(celsius); });
}

void Board::setTemperature(std::size_t channel, double celsius) {
    checkBelow(channel, ThermalPlant::kChannels);
    impl_->withParts([&](BoardParts& parts) { parts.thermal.setTemperature(channel, celsius); });
}

std::vector<std::uint8_t> Board::eeprom(unsigned bus) const {
    return impl_->withParts([&](BoardParts& parts) { return parts.i2c.eeprom(bus).content(); });
}

void Board::setEeprom(unsigned bus, const std::vector<std::uint8_t>& bytes) {
    checkBelow(bytes.size(), Eeprom::kSize + 1);
    impl_->withParts([&](BoardParts& parts) {
        std::copy(bytes.begin(), bytes.end(), parts.i2c.eeprom(bus).content().begin());
    });
}

std::vector<std::uint32_t> Board::jtagIdentifications() const {
    std::vector<std::uint32_t> identifications;
    for (const JtagChain::Device& device : impl_->board->parts().jtag.devices())
        identifications.push_back(device.identification);
    return identifications;
}

void Board::setCommand(const std::string& command, const CommandOutcome& outcome) {
    impl_->withParts([&](BoardParts& parts) { parts.commands.set(command, outcome); });
}

void Board::forgetSessions() {
    impl_->withParts([](BoardParts& parts) { parts.forgetSessions(); });
}

std::size_t Board::sessionCount() const {
    return impl_->withParts([](BoardParts& parts) { return parts.sessions.count(); });
}

std::size_t Board::discoveryCount() const {
    return discoveryRequests().size();
}

std::vector<std::string> Board::discoveryRequests() const {
    return impl_->board->discovery().requestsHeard();
}

std::vector<std::string> Board::probeRequests() const {
    return impl_->board->discovery().probesHeard();
}

void Board::setDiscoveryReplies(std::optional<std::vector<std::string>> texts) {
    impl_->loop.call([&] { impl_->board->discovery().setReplies(std::move(texts)); });
}

void Board::setProbeChunks(std::optional<std::vector<std::string>> chunks) {
    impl_->loop.call([&] { impl_->board->discovery().setProbeChunks(std::move(chunks)); });
}

} // namespace OrvaneSim
