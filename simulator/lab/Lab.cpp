// The thread-safe face of the simulator.
#include "simulator/lab/Lab.h"

#include "simulator/lab/BoardImpl.h"
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

struct Lab::Impl {
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

    // Serves at an address that was taken; gives it back when that fails.
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

    // Serves at the next default address; one that a board or another lab of this machine has is passed
    // over.
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

Lab::Lab() : impl_(std::make_unique<Impl>()) {
    impl_->loop.call([this] { impl_->responder = std::make_unique<MulticastResponder>(impl_->loop); });
}

// NOLINTNEXTLINE(bugprone-exception-escape): a loop that takes no more calls is past help
Lab::~Lab() {
    impl_->loop.call([this] {
        impl_->life.reset();
        for (const auto& board : impl_->boards)
            board->impl_->board.reset();
        impl_->responder.reset();
    });
    impl_->loop.stop();
}

Board& Lab::add(const BoardOptions& options) {
    const std::lock_guard<std::mutex> lock(impl_->mutex);
    if (impl_->serials.count(options.serial) != 0)
        throw std::invalid_argument("the lab has a board " + options.serial + " already");
    auto served =
        options.address.empty() ? impl_->serveAnywhere(options) : impl_->serveAt(options, options.address);
    impl_->serials.insert(options.serial);
    auto impl = std::make_unique<Board::Impl>(
        Board::Impl{impl_->loop, impl_->addresses, options.serial, std::move(served)});
    impl_->boards.push_back(std::unique_ptr<Board>(new Board(std::move(impl))));
    return *impl_->boards.back();
}

Board& Lab::board(const std::string& serial) {
    const std::lock_guard<std::mutex> lock(impl_->mutex);
    const auto found = std::find_if(impl_->boards.begin(), impl_->boards.end(),
                                    [&](const auto& board) { return board->serial() == serial; });
    if (found == impl_->boards.end())
        throw std::out_of_range("the lab has no board " + serial);
    return **found;
}

std::vector<Board*> Lab::boards() {
    const std::lock_guard<std::mutex> lock(impl_->mutex);
    std::vector<Board*> boards;
    for (const auto& board : impl_->boards)
        boards.push_back(board.get());
    return boards;
}

void Lab::after(std::chrono::milliseconds delay, std::function<void()> task) {
    impl_->loop.call([&] { impl_->loop.after(delay, impl_->life, std::move(task)); });
}

} // namespace OrvaneSim
