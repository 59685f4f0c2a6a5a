// The racks, ports and PHYs that a program of Python holds, and how they end.
#include "python/module/Handles.h"

#include "ov_sys/rack/Flight.h"
#include "python/module/Callback.h"

#include <algorithm>
#include <utility>

namespace OrvanePython {
namespace {

std::vector<std::weak_ptr<RackHandle>> racks;

// Forgets what has ended, now and then, and adds another.
template <class Handle>
void remember(std::vector<std::weak_ptr<Handle>>& list, const std::shared_ptr<Handle>& one) {
    if (list.size() == list.capacity())
        list.erase(
            std::remove_if(list.begin(), list.end(), [](const auto& entry) { return entry.expired(); }),
            list.end());
    list.push_back(one);
}

// Those that are still held.
template <class Handle>
std::vector<std::shared_ptr<Handle>> held(const std::vector<std::weak_ptr<Handle>>& list) {
    std::vector<std::shared_ptr<Handle>> all;
    for (const std::weak_ptr<Handle>& entry : list)
        if (std::shared_ptr<Handle> one = entry.lock())
            all.push_back(std::move(one));
    return all;
}

// Tells the boards side by side; those that do not answer within a second, or before Ctrl-C, keep their
// sessions.
void closeSessions(std::vector<Orvane::Phy> phys) {
    Limits farewell;
    farewell.within = Orvane::within(std::chrono::seconds(1)).withoutHealing();
    outside(farewell, [all = std::move(phys)](const Orvane::Within& within) {
        Orvane::Flight flight;
        for (const Orvane::Phy& phy : all)
            flight.close(phy, within);
        flight.wait();
    });
}

} // namespace

PortHandle::PortHandle(std::shared_ptr<RackHandle> rack, Orvane::Port port)
    : rack_(std::move(rack)), board_(port.board()), number_(port.number()), remote_(std::move(port)) {}

std::shared_ptr<PhyHandle> PortHandle::phy(unsigned id) {
    const Orvane::Port port = remote_.get();
    std::weak_ptr<PhyHandle>& place = phys_[id];
    std::shared_ptr<PhyHandle> handle = place.lock();
    if (!handle) {
        handle = std::make_shared<PhyHandle>(rack_, Place{board_, number_, id}, port.phy(id));
        place = handle;
        rack_->add(handle);
    }
    return handle;
}

void PortHandle::close() {
    std::vector<std::shared_ptr<PhyHandle>> handles;
    std::vector<Orvane::Phy> sessions;
    for (const auto& entry : std::exchange(phys_, {}))
        if (const std::shared_ptr<PhyHandle> handle = entry.second.lock();
            handle && handle->remote.usable()) {
            handles.push_back(handle);
            if (!rack_->shares(handle))
                sessions.push_back(handle->phy());
        }
    closeSessions(std::move(sessions));
    for (const std::shared_ptr<PhyHandle>& handle : handles)
        handle->remote.drop();
    remote_.drop();
}

std::shared_ptr<RackHandle> RackHandle::make() {
    std::shared_ptr<RackHandle> handle(new RackHandle);
    remember(racks, handle);
    return handle;
}

RackHandle::~RackHandle() {
    if (Callback::running()) // perhaps on the rack's thread, which cannot wait for itself
        remote_.leave();
}

void RackHandle::add(const std::shared_ptr<PhyHandle>& phy) {
    remember(phys_, phy);
}

std::shared_ptr<PortHandle> RackHandle::keep(Orvane::Port port) {
    auto handle = std::make_shared<PortHandle>(shared_from_this(), std::move(port));
    remember(ports_, handle);
    return handle;
}

bool RackHandle::shares(const std::shared_ptr<PhyHandle>& phy) const {
    const auto all = held(phys_);
    return std::any_of(all.begin(), all.end(), [&](const std::shared_ptr<PhyHandle>& other) {
        return other != phy && other->place == phy->place && other->remote.usable();
    });
}

void RackHandle::close() {
    if (Callback::running())
        throw std::runtime_error("a callback cannot close the rack whose thread it may run on");
    if (!usable())
        return;
    std::vector<Orvane::Phy> sessions;
    for (const std::shared_ptr<PhyHandle>& phy : held(phys_))
        if (phy->remote.usable())
            sessions.push_back(phy->phy());
    closeSessions(std::move(sessions));
    for (const std::shared_ptr<PortHandle>& port : held(ports_))
        port->close();
    for (const std::shared_ptr<PhyHandle>& phy : held(phys_))
        phy->remote.drop();
    left_.clear();
    remote_.drop();
}

void RackHandle::closeAll() {
    for (const std::shared_ptr<RackHandle>& rack : held(racks))
        rack->close();
}

} // namespace OrvanePython
