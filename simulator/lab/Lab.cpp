// The thread-safe face of the simulator.
#include "simulator/lab/Lab.h"

#include "simulator/board/SimulatedBoard.h"
#include "simulator/engine/EventLoop.h"
#include "simulator/models/RegisterPaths.h"
#include "simulator/network/PrivateNetwork.h"

#include <algorithm>
#include <cerrno>
#include <mutex>
#include <set>
#include <stdexcept>
#include <system_error>
#include <utility>

namespace OrvaneSim {
namespace {

std::string defaultAddress(unsigned number) {
    const bool lab = PrivateNetwork::entered();
    const unsigned last = lab ? number : number + 1; // 127.0.0.1 is left alone
    return std::string(lab ? "10.83." : "127.0.") + std::to_string(last / 256) + "." +
           std::to_string(last % 256);
}

BoardName nameOf(const BoardOptions& options) {
    if (options.serial.empty())
        throw std::invalid_argument("a board needs a serial number");
    BoardName name{options.serial, options.firstWord, options.devices};
    if (name.devices.empty())
        name.devices = {options.serial + ":0", options.serial + ":1"};
    return name;
}

void checkBelow(std::size_t number, std::size_t limit) {
    if (number >= limit)
        throw std::out_of_range(std::to_string(number) + " is not below " + std::to_string(limit));
}

} // namespace

struct Board::Inside {
    EventLoop& loop;
    std::string serial;
    std::unique_ptr<SimulatedBoard> board; // made and destroyed on the loop's thread

    /// Runs `work(BoardParts&)` on the loop's thread.
    template <class Work>
    auto withParts(Work work) const {
        return loop.call([this, &work] { return work(board->parts()); });
    }
};

Board::Board(std::unique_ptr<Inside> inside) : inside_(std::move(inside)) {}
Board::~Board() = default;

const std::string& Board::address() const {
    return inside_->board->address();
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

void Board::setRegister(Space space, unsigned device, unsigned phy, std::uint32_t address,
                        std::uint32_t value) {
    inside_->withParts([&](BoardParts& parts) { parts.mdio.poke({device, phy}, space, address, value); });
}

std::uint32_t Board::registerValue(Space space, unsigned device, unsigned phy, std::uint32_t address) const {
    return inside_->withParts([&](BoardParts& parts) {
        return parts.mdio.peek({device, phy}, space, address);
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

void Board::inject(const Fault& fault) {
    inside_->withParts([&](BoardParts& parts) { parts.faults.add(fault); });
}

void Board::clearFaults() {
    inside_->withParts([](BoardParts& parts) { parts.faults.clear(); });
}

void Board::stop() {
    inside_->loop.call([this] { inside_->board->stop(); });
}

void Board::start() {
    inside_->loop.call([this] { inside_->board->start(); });
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

struct Lab::Inside {
    EventLoop loop{[] {
        if (PrivateNetwork::entered())
            PrivateNetwork::joinBoardSide();
    }};
    std::unique_ptr<MulticastResponder> responder; // made and destroyed on the loop's thread
    std::mutex mutex;                              // guards everything below
    std::vector<std::unique_ptr<Board>> boards;
    std::set<std::string> addresses;
    std::set<std::string> serials;
    unsigned lastDefault = 0;

    std::unique_ptr<SimulatedBoard> serve(const BoardOptions& options, const std::string& address) {
        return loop.call([&] {
            auto board =
                std::make_unique<SimulatedBoard>(loop, *responder, address, nameOf(options), options.seed);
            if (options.allowShell)
                board->allowShell();
            board->start();
            return board;
        });
    }

    /// Serves at the next default address; one that another lab of this machine has is passed over.
    std::unique_ptr<SimulatedBoard> serveAnywhere(const BoardOptions& options) {
        for (;;) {
            const std::string address = defaultAddress(++lastDefault);
            if (addresses.count(address) != 0)
                continue;
            try {
                return serve(options, address);
            } catch (const std::system_error& problem) {
                if (problem.code() != std::errc::address_in_use)
                    throw;
            }
        }
    }
};

Lab::Lab() : inside_(std::make_unique<Inside>()) {
    inside_->loop.call([this] { inside_->responder = std::make_unique<MulticastResponder>(inside_->loop); });
}

Lab::~Lab() {
    inside_->loop.call([this] {
        for (const auto& board : inside_->boards)
            board->inside_->board.reset();
        inside_->responder.reset();
    });
    inside_->loop.stop();
}

Board& Lab::add(const BoardOptions& options) {
    const std::lock_guard<std::mutex> lock(inside_->mutex);
    if (inside_->serials.count(options.serial) != 0)
        throw std::invalid_argument("the lab has a board " + options.serial + " already");
    if (inside_->addresses.count(options.address) != 0)
        throw std::invalid_argument("the lab has a board at " + options.address + " already");
    auto served =
        options.address.empty() ? inside_->serveAnywhere(options) : inside_->serve(options, options.address);
    inside_->addresses.insert(served->address());
    inside_->serials.insert(options.serial);
    auto inside =
        std::make_unique<Board::Inside>(Board::Inside{inside_->loop, options.serial, std::move(served)});
    inside_->boards.push_back(std::unique_ptr<Board>(new Board(std::move(inside))));
    return *inside_->boards.back();
}

Board& Lab::board(const std::string& serial) {
    const std::lock_guard<std::mutex> lock(inside_->mutex);
    const auto found = std::find_if(inside_->boards.begin(), inside_->boards.end(),
                                    [&](const auto& board) { return board->serial() == serial; });
    if (found == inside_->boards.end())
        throw std::out_of_range("the lab has no board " + serial);
    return **found;
}

std::vector<Board*> Lab::boards() {
    const std::lock_guard<std::mutex> lock(inside_->mutex);
    std::vector<Board*> boards;
    for (const auto& board : inside_->boards)
        boards.push_back(board.get());
    return boards;
}

} // namespace OrvaneSim
