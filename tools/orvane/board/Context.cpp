// What a command gets on first use: signals, and the lines of the library.
#include "tools/orvane/board/Context.h"

namespace OrvaneTool {

Interrupts& Context::interrupts() {
    if (!interrupts_)
        interrupts_ = std::make_unique<Interrupts>(console.err.isTerminal() ? messages.err() : -1);
    return *interrupts_;
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
