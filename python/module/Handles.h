// The racks, ports and PHYs that a program of Python holds.
#pragma once

#include "ov_sys/rack/Rack.h"
#include "python/module/Calls.h"
#include "python/module/Remote.h"

#include <map>
#include <memory>
#include <string>
#include <tuple>
#include <utility>
#include <vector>

namespace OrvanePython {

class RackHandle;

// Serial number, port and PHY: what handles of one session have in common.
using Place = std::tuple<std::string, unsigned, unsigned>;

// One for each PHY that a port gave out. All members of this and of the other handles want the GIL.
class PhyHandle {
public:
    PhyHandle(std::shared_ptr<RackHandle> rack, Place where, Orvane::Phy phy)
        : place(std::move(where)), rack_(std::move(rack)), remote(std::move(phy)) {}

    Orvane::Phy phy() const { return remote.get(); }

    const Place place;

private:
    const std::shared_ptr<RackHandle> rack_; // which must outlive the PHY

public:
    Remote<Orvane::Phy> remote;
};

class PortHandle {
public:
    PortHandle(std::shared_ptr<RackHandle> rack, Orvane::Port port);

    const std::string& board() const noexcept { return board_; }
    unsigned number() const noexcept { return number_; }
    std::shared_ptr<PhyHandle> phy(unsigned id);
    // Closes the sessions of all its PHYs, unless another port shares them. Waits for the board, a second at
    // most; Ctrl-C ends that.
    void close();

private:
    const std::shared_ptr<RackHandle> rack_;
    const std::string board_;
    const unsigned number_;
    Remote<Orvane::Port> remote_;
    std::map<unsigned, std::weak_ptr<PhyHandle>> phys_;
};

class RackHandle : public std::enable_shared_from_this<RackHandle> {
public:
    static std::shared_ptr<RackHandle> make();
    ~RackHandle();
    RackHandle(const RackHandle&) = delete;
    RackHandle& operator=(const RackHandle&) = delete;

    // Closes every rack of this process; for its end.
    static void closeAll();

    std::shared_ptr<Orvane::Rack> rack() const { return remote_.get(); }
    // Keeps a port of this rack, to close it with the rack.
    std::shared_ptr<PortHandle> keep(Orvane::Port port);
    // Keeps a port that nobody wants any more, for its end may wait for the board: it ends with the rack.
    void leave(Orvane::Port port) {
        left_.push_back(std::make_unique<Remote<Orvane::Port>>(std::move(port)));
    }
    // Whether another handle than this one is of the same session.
    bool shares(const std::shared_ptr<PhyHandle>& phy) const;
    // Will close it with the rack.
    void add(const std::shared_ptr<PhyHandle>& phy);
    // Closes every session, all boards side by side, a second at most, and ends the rack's thread.
    void close();
    bool usable() const noexcept { return remote_.usable(); }

private:
    RackHandle() : remote_(std::make_shared<Orvane::Rack>()) {}

    Remote<std::shared_ptr<Orvane::Rack>> remote_;
    std::vector<std::weak_ptr<PortHandle>> ports_;
    std::vector<std::weak_ptr<PhyHandle>> phys_;
    std::vector<std::unique_ptr<Remote<Orvane::Port>>> left_;
};

} // namespace OrvanePython
