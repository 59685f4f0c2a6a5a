// PHYs of many boards, worked on together.
#pragma once

#include "tools/orvane/board/Targets.h"

#include <cstddef>
#include <exception>
#include <functional>
#include <string>
#include <vector>

namespace OrvaneTool {

// Every PHY of every device that a command was given, and what went wrong with each. One thread, the main
// one.
class Places {
public:
    // DEVICE, PHY ('*': those that answer) and the number of boards at a time, as they are written. Nothing
    // is sent. Throws UsageError, also for a PHY that a port named in full cannot have, and Failure for a
    // file of names that cannot be read.
    Places(Context& context, const std::string& devices, const std::string& phys, unsigned boardsAtATime);

    // Looks for the boards, and for the PHYs that answer where all are meant. To be called once, before all
    // that follows. Throws as findTargets().
    void find();

    std::size_t size() const { return places_.size(); }
    // Whether the command named one PHY of one device, whose failure is the command's.
    bool isOne() const { return one_; }
    const std::string& device(std::size_t place) const { return targets_.list[places_[place].target].name; }
    const std::string& address(std::size_t place) const {
        return targets_.list[places_[place].target].address;
    }
    unsigned phy(std::size_t place) const { return places_[place].phy; }
    bool isGood(std::size_t place) const { return !places_[place].problem; }

    // Calls `work` for each place that has no failure yet, for several boards at the same time on threads of
    // its own, for the PHYs of one port one after the other; a single place is worked on by the calling
    // thread. What it throws is the place's failure. A session that `work` keeps no handle of is closed
    // before the next PHY. With a bar on a terminal, behind `verb`. Throws Interrupted after a signal.
    using Work = std::function<void(std::size_t place, const Orvane::Phy& phy)>;
    void run(const char* verb, const Work& work);

    // The end of a command: throws the failure of one place; of several, prints those that failed on standard
    // error. Returns the exit status.
    int finish(const char* verb);

private:
    struct Place {
        std::size_t target;
        unsigned phy;
        std::exception_ptr problem;
    };

    void leaveOutSilent();
    void runOne(std::size_t place, const Work& work) noexcept;
    std::vector<std::vector<std::size_t>> goodByPort() const;

    Context& context_;
    std::vector<std::string> names_;
    std::vector<unsigned> phys_; // empty: those that answer
    unsigned boardsAtATime_;
    bool one_;
    Targets targets_;
    std::vector<Place> places_;
};

} // namespace OrvaneTool
