// What a command gets on first use: signals, and the lines of the library.
#include "tools/orvane/board/Context.h"

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
    if (verbose)
        rack_->onEvent([](const Orvane::Event& event) {
            std::ostringstream line;
            line << "orvane: " << event << '\n';
            Stream err(LibraryMessages::err()); // the rack's own thread has none
            err.write(line.str());
            err.flushIfPossible();
        });
    return *rack_;
}

Orvane::Within Context::within(std::chrono::nanoseconds time) {
    return Orvane::within(time).cancelledBy(interrupts().cancellation());
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
