// The sink for diagnostic lines, for C.
#include "ov_sys/Interface/foundation/DiagnosticsSink.h"

#include <exception>
#include <orvane/diagnostics.h>

namespace {

using Orvane::Diagnostics::Message;

long long microsecondsOf(const Message& message) {
    return std::chrono::duration_cast<std::chrono::microseconds>(message.time.time_since_epoch()).count();
}

} // namespace

extern "C" {

int orvane_set_diagnostics(orvane_diagnostics_sink sink, void* context) {
    try {
        if (sink == nullptr)
            Orvane::Diagnostics::setSink(nullptr);
        else
            Orvane::Diagnostics::setSink([sink, context](const Message& message) {
                const orvane_diagnostic diagnostic{static_cast<int>(message.level), message.board,
                                                   microsecondsOf(message), message.line};
                sink(&diagnostic, context);
            });
        return 1;
    } catch (const std::exception&) {
        return 0;
    }
}
}
