// How samples are shown.
#pragma once

#include "tools/orvane/output/Console.h"
#include "tools/orvane/output/Keys.h"
#include "tools/orvane/output/RecordSink.h"
#include "tools/orvane/watch/Watched.h"

#include <cstddef>
#include <string>
#include <vector>

namespace OrvaneTool {

// On a terminal the last sample, drawn in place; what does not fit on the screen is scrolled by keys, where
// there are any. Elsewhere everything once and then each change as a line. One thread.
class Display {
public:
    // `title` stands above what is drawn, before the number of the sample. `canScroll`: there are keys.
    Display(Stream& out, RecordSink& records, std::string title, bool fields, bool canScroll)
        : out_(out), records_(records), title_(std::move(title)), fields_(fields), canScroll_(canScroll) {}

    // As records where these are not for people.
    void show(unsigned long sample, const std::vector<WatchedPhy>& phys);
    // Moves what is drawn, and draws it anew.
    void scroll(Key key, unsigned long sample, const std::vector<WatchedPhy>& phys);

private:
    bool draws(const std::vector<WatchedPhy>& phys) const;
    void redraw(unsigned long sample, const std::vector<WatchedPhy>& phys);
    std::size_t room() const;
    void printChanges(unsigned long sample, const WatchedPhy& phy, bool many);
    void putChanges(unsigned long sample, const WatchedPhy& phy);
    void printFields(const std::string& before, const Watched& each, bool first);

    Stream& out_;
    RecordSink& records_;
    std::string title_;
    bool fields_;
    bool canScroll_;
    std::size_t lines_ = 0; // drawn last
    std::size_t top_ = 0;   // first row that is drawn
    std::size_t rows_ = 0;  // that there are
};

} // namespace OrvaneTool
