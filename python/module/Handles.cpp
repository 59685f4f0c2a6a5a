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

// Tells the boards side by side; those that do not answer within a second keep their sessions.
void closeSessions(const std::vector<Orvane::Phy>& phys) {
    Orvane::Flight flight;
    for (const Orvane::Phy& phy : phys)
        flight.close(phy, Orvane::within(std::chrono::seconds(1)).withoutHealing());
    flight.wait();
}

} // namespace

PortHandle::PortHandle(std::shared_ptr<RackHandle> rack, Orvane::Port port)
    : rack_(std::move(rack)), board_(port.board()), number_(port.number()), remote_(std::move(port)) {}

std::shared_ptr<PhyHandle> PortHandle::phy(unsigned id) {
    const Orvane::Port port = remote_.get();
    std::weak_ptr<PhyHandle>& place = phys_[id];
    std::shared_ptr<PhyHandle> handle = place.lock();
    if (!handle) {
        handle = std::make_shared<PhyHandle>(rack_, port.phy(id));
        place = handle;
        rack_->add(handle);
    }
    return handle;
}

void PortHandle::close() {
    for (const auto& entry : std::map<unsigned, std::weak_ptr<PhyHandle>>(std::move(phys_)))
        if (const std::shared_ptr<PhyHandle> handle = entry.second.lock())
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

std::shared_ptr<PortHandle> RackHandle::open(const std::string& name, Orvane::Access access,
                                             const Limits& limits) {
    auto port = std::make_shared<PortHandle>(
        shared_from_this(), outside(limits, [rack = rack(), &name, access](const Orvane::Within& within) {
            return rack->open(name, access, within);
        }));
    remember(ports_, port);
    return port;
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
    outside([all = std::move(sessions)] { closeSessions(all); });
    for (const std::shared_ptr<PortHandle>& port : held(ports_))
        port->close();
    for (const std::shared_ptr<PhyHandle>& phy : held(phys_))
        phy->remote.drop();
    remote_.drop();
}

void RackHandle::closeAll() {
    for (const std::shared_ptr<RackHandle>& rack : held(racks))
        rack->close();
}

} // namespace OrvanePython
