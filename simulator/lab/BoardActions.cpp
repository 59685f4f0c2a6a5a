// What disturbs a lab's board.
#include "simulator/lab/BoardImpl.h"
#include "simulator/network/PrivateNetwork.h"

#include <stdexcept>
#include <utility>

namespace OrvaneSim {

void checkShellPlace(const std::string& address) {
    if (address.rfind("127.", 0) != 0 && !PrivateNetwork::entered())
        throw std::invalid_argument(
            "a board with a shell is only served at a loopback address or in a private "
            "network, not at " +
            address);
}

// Does what opens or closes sockets: at once, or, while a request may be being served, after it.
void Board::disturb(std::function<void()> work) {
    if (impl_->loop.isHere())
        impl_->loop.post([this, work = std::move(work)] {
            if (impl_->board) // the lab may be ending
                work();
        });
    else
        impl_->loop.call(std::move(work));
}

void Board::inject(const Fault& fault) {
    impl_->withParts([&](BoardParts& parts) { parts.faults.add(fault); });
}

void Board::clearFaults() {
    impl_->withParts([](BoardParts& parts) { parts.faults.clear(); });
}

std::vector<Fault> Board::faults() const {
    return impl_->withParts([](BoardParts& parts) {
        const auto& waiting = parts.faults.waiting();
        return std::vector<Fault>(waiting.begin(), waiting.end());
    });
}

void Board::sendStrays(const StrayDatagrams& what) {
    disturb([this, what] { impl_->board->sendStrays(what); });
}

void Board::stop() {
    disturb([this] { impl_->board->stop(); });
}

void Board::hang() {
    impl_->withParts([](BoardParts& parts) { parts.faults.setHanging(true); });
}

void Board::start() {
    disturb([this] {
        impl_->board->parts().faults.setHanging(false);
        impl_->board->start();
    });
}

void Board::restart(bool forgetSessions) {
    disturb([this, forgetSessions] {
        if (forgetSessions)
            impl_->board->parts().forgetSessions();
        impl_->board->parts().faults.setHanging(false);
        impl_->board->restart();
    });
}

void Board::moveTo(const std::string& address) {
    disturb([this, address] {
        const std::string former = impl_->board->address();
        if (address == former)
            return;
        if (impl_->board->parts().shell)
            checkShellPlace(address);
        if (!impl_->addresses.take(address))
            throw std::invalid_argument("the lab has a board at " + address + " already");
        try {
            impl_->board->move(address);
        } catch (...) {
            impl_->addresses.giveBack(address);
            throw;
        }
        impl_->addresses.giveBack(former);
    });
}

void Board::closePortMapper() {
    disturb([this] { impl_->board->setPortMapper(false); });
}

void Board::openPortMapper() {
    disturb([this] { impl_->board->setPortMapper(true); });
}

namespace {

// Calls the member function of a board that an action stands for.
struct ActionVisitor {
    Board& board;
    void operator()(const Fault& fault) const { board.inject(fault); }
    void operator()(const StrayDatagrams& strays) const { board.sendStrays(strays); }
    void operator()(ClearFaults) const { board.clearFaults(); }
    void operator()(Hang) const { board.hang(); }
    void operator()(Kill) const { board.stop(); }
    void operator()(Start) const { board.start(); }
    void operator()(Restart how) const { board.restart(how.forgetSessions); }
    void operator()(const MoveTo& where) const { board.moveTo(where.address); }
    void operator()(ForgetSessions) const { board.forgetSessions(); }
    void operator()(SwitchPortMapper mapper) const {
        mapper.open ? board.openPortMapper() : board.closePortMapper();
    }
    void operator()(const SetRegister& set) const {
        board.setRegister(set.space, set.device, set.phy, set.address, set.value);
    }
    void operator()(const UseMap& map) const { board.useMap(map); }
    void operator()(RaiseInterrupt which) const { board.raiseInterrupt(which.device, which.phy); }
    void operator()(SetAmbientTemperature around) const { board.setAmbientTemperature(around.celsius); }
};

} // namespace

void Board::apply(const Action& action) {
    std::visit(ActionVisitor{*this}, action);
}

} // namespace OrvaneSim
