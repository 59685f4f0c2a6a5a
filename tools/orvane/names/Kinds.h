// The PHYs of a command, sorted by the maps that describe them.
#pragma once

#include "tools/orvane/board/Places.h"
#include "tools/orvane/cli/RegisterOptions.h"
#include "tools/orvane/names/KnownMaps.h"

#include <memory>
#include <string>
#include <vector>

namespace OrvaneTool {

// All are of one kind, unless there are maps beside the user's configuration: then each PHY is asked for its
// identifier. One thread.
class Kinds {
public:
    // Loads what is given. Throws UsageError with all that is wrong with a map.
    explicit Kinds(Context& context);

    // Looks for the boards, and has `parse` make what the command needs of each kind's maps: before any board
    // is asked if that is possible. Throws what `parse` throws and Places::find().
    template <class Parse>
    auto settle(Places& places, Parse parse) {
        std::vector<decltype(parse(maps(0)))> made;
        if (!wantsIdentifiers())
            made.push_back(parse(maps(0)));
        places.find();
        sort(places);
        while (made.size() < maps_.size())
            made.push_back(parse(maps(made.size())));
        return made;
    }

    // The maps of a dry run, which asks no board: those beside the user's configuration are chosen by this
    // identifier of a PHY (0x00112233), as far as one is known; otherwise standard error says that they are
    // not.
    const KnownMaps& unasked(const std::string& identifier = "");

    std::size_t of(std::size_t place) const { return kinds_[place]; }
    const KnownMaps& maps(std::size_t kind) const { return *maps_[kind]; }

private:
    bool wantsIdentifiers() const { return maps_.front()->wantsIdentifier(); }
    void sort(Places& places);

    Context& context_;
    std::vector<std::unique_ptr<KnownMaps>> maps_;
    std::vector<std::size_t> kinds_; // of each place
};

// Says on standard error which registers are left out, if any.
void tellLeftOut(Stream& err, std::vector<std::string> names);

// What the words of a command mean, which may be lists with commas; what is left out is told on standard
// error. Throws UsageError.
std::vector<Asked> askedFor(Context& context, const KnownMaps& maps, const RegisterOptions& options,
                            const std::vector<std::string>& words);

} // namespace OrvaneTool
