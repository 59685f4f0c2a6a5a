// The thread-safe face of the simulator.
#include "simulator/lab/Lab.h"

#include "simulator/lab/BoardInside.h"
#include "simulator/network/PrivateNetwork.h"
#include "simulator/programs/Programs.h"

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

} // namespace

struct Lab::Inside {
    EventLoop loop{[] {
        if (PrivateNetwork::entered())
            PrivateNetwork::joinBoardSide();
    }};
    std::unique_ptr<MulticastResponder> responder; // made and destroyed on the loop's thread
    EventLoop::Life life = EventLoop::makeLife();  // of the tasks that were set for later
    AddressBook addresses;
    std::mutex mutex; // guards everything below
    std::vector<std::unique_ptr<Board>> boards;
    std::set<std::string> serials;
    unsigned lastDefault = 0;

    std::unique_ptr<SimulatedBoard> serve(const BoardOptions& options, const std::string& address) {
        return loop.call([&] {
            auto board = std::make_unique<SimulatedBoard>(loop, *responder, address, nameOf(options),
                                                          boardPrograms(), options.seed);
            board->parts().requests.keep(options.keptRequests);
            if (options.allowShell) {
                checkShellPlace(address);
                board->allowShell();
            }
            board->start();
            return board;
        });
    }

    /// Serves at an address that was taken; gives it back when that fails.
    std::unique_ptr<SimulatedBoard> serveTaken(const BoardOptions& options, const std::string& address) {
        try {
            return serve(options, address);
        } catch (...) {
            addresses.giveBack(address);
            throw;
        }
    }

    std::unique_ptr<SimulatedBoard> serveAt(const BoardOptions& options, const std::string& address) {
        if (!addresses.take(address))
            throw std::invalid_argument("the lab has a board at " + address + " already");
        return serveTaken(options, address);
    }

    /// Serves at the next default address; one that a board or another lab of this machine has is passed
    /// over.
    std::unique_ptr<SimulatedBoard> serveAnywhere(const BoardOptions& options) {
        for (;;) {
            const std::string address = defaultAddress(++lastDefault);
            if (!addresses.take(address))
                continue;
            try {
                return serveTaken(options, address);
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

// NOLINTNEXTLINE(bugprone-exception-escape): a loop that takes no more calls is past help
Lab::~Lab() {
    inside_->loop.call([this] {
        inside_->life.reset();
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
    auto served = options.address.empty() ? inside_->serveAnywhere(options)
                                          : inside_->serveAt(options, options.address);
    inside_->serials.insert(options.serial);
    auto inside = std::make_unique<Board::Inside>(
        Board::Inside{inside_->loop, inside_->addresses, options.serial, std::move(served)});
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

void Lab::after(std::chrono::milliseconds delay, std::function<void()> task) {
    inside_->loop.call([&] { inside_->loop.after(delay, inside_->life, std::move(task)); });
}

} // namespace OrvaneSim
