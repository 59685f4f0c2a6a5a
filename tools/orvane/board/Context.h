// What every command has at hand.
#pragma once

#include "tools/orvane/board/Interrupts.h"
#include "tools/orvane/board/LibraryMessages.h"
#include "tools/orvane/output/Console.h"
#include "tools/orvane/output/RecordSink.h"
#include "tools/orvane/settings/Settings.h"

#include <chrono>
#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <orvane/rack.hpp>
#include <string>
#include <vector>

namespace OrvaneTool {

// Belongs to the main thread. Options are filled in by the parser before `action` runs.
class Context {
public:
    Context() : console{Stream(messages.out()), Stream(messages.err())} {}

    LibraryMessages messages;
    Console console;

    std::vector<std::string> addresses;                 // of boards, to be asked instead of a multicast
    std::optional<std::chrono::nanoseconds> searchTime; // for boards to answer; empty: as suits the search
    std::string logFile;                                // for the transaction log; empty: there is none
    bool verbose = false;
    bool json = false;
    bool csv = false;
    Format format() const { return json ? Format::Json : csv ? Format::Csv : Format::Text; }

    // What the user's configuration file says, and how it fills in what neither options nor environment do,
    // once these have been read. Throws UsageError.
    void useSettings();
    const Settings& settings() const { return settings_; }
    bool keyFromSettings = false;

    // Where the verb's records go; made by the first call, whose form and pace count.
    RecordSink& records(const RecordForm& form, Pace pace = Pace::Together);
    // Prints what is left of them.
    void endRecords();

    std::vector<std::string> mapFiles;       // register maps, the first asked first
    std::optional<std::uint32_t> identifier; // of the PHY that they are loaded for
    bool fields = false;                     // show fields
    bool noFields = false;                   // do not; neither: as suits the output
    bool sideEffects = false;                // also read by the way what a read changes

    std::function<int()> action; // of the verb that was given; returns the exit status

    // Must be called before the library is used, which may start threads; signals are watched from then on.
    Interrupts& interrupts();

    // The boards, made by first use. Its events are shown with --verbose.
    Orvane::Rack& rack();
    // Limits of a call, which a signal ends.
    Orvane::Within within(std::chrono::nanoseconds time = std::chrono::seconds(5));

    // What the library wrote since the last call; with --verbose it is shown as well.
    std::string libraryLines();

private:
    Settings settings_;
    std::optional<RecordSink> records_;
    std::unique_ptr<Interrupts> interrupts_;
    std::unique_ptr<Orvane::Rack> rack_;
};

} // namespace OrvaneTool
