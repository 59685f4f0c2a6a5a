// What a command gets on first use: signals, and the lines of the library.
#include "tools/orvane/board/Context.h"

#include <cstdlib>
#include <sstream>

namespace OrvaneTool {

Interrupts& Context::interrupts() {
    if (!interrupts_)
        interrupts_ = std::make_unique<Interrupts>(console.err.isTerminal() ? messages.err() : -1);
    return *interrupts_;
}

Orvane::Rack& Context::rack() {
    if (rack_)
        return *rack_;
    interrupts().giveTimeToClose();
    rack_ = std::make_unique<Orvane::Rack>();
    if (verbose || !logFile.empty())
        rack_->onEvent([all = verbose](const Orvane::Event& event) {
            if (!all && event.kind != Orvane::Event::Kind::LogFailed)
                return;
            std::ostringstream line;
            line << "orvane: " << event << '\n';
            Stream err(LibraryMessages::err()); // the rack's own thread has none
            err.write(line.str());
            err.flushIfPossible();
        });
    if (!logFile.empty())
        rack_->logTo(logFile);
    return *rack_;
}

Orvane::Within Context::within(std::chrono::nanoseconds time) {
    return Orvane::within(time).cancelledBy(interrupts().cancellation());
}

void Context::useSettings() {
    settings_ = readSettings(settingsPath());
    if (addresses.empty())
        addresses = settings_.addresses;
    if (mapFiles.empty())
        mapFiles = settings_.maps;
    if (logFile.empty())
        logFile = settings_.log.value_or("");
    // The library looks for keys in the environment; no other thread is there yet.
    const auto said = [](const char* name) {
        return std::getenv(name) != nullptr;
    }; // NOLINT(concurrency-mt-unsafe)
    if (!settings_.session || said("EXCLUSIVE_KEY") || said("CONCURRENT_KEY") || said("SIMPLE_KEY"))
        return;
    const SessionKey& session = *settings_.session;
    const char* const variable = session.mode == "exclusive"    ? "EXCLUSIVE_KEY"
                                 : session.mode == "concurrent" ? "CONCURRENT_KEY"
                                                                : "SIMPLE_KEY";
    ::setenv(variable, std::to_string(session.key).c_str(), 1); // NOLINT(concurrency-mt-unsafe)
    keyFromSettings = true;
}

RecordSink& Context::records(const RecordForm& form, Pace pace) {
    if (!records_)
        records_.emplace(console.out, format(), form, pace);
    return *records_;
}

void Context::endRecords() {
    if (records_)
        records_->finish();
}

std::string Context::libraryLines() {
    std::string lines = messages.take();
    if (verbose && !lines.empty()) {
        console.err.write(lines);
        console.err.flushIfPossible();
    }
    return lines;
}

} // namespace OrvaneTool
