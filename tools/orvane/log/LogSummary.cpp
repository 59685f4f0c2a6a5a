// Counting of accesses and changes, register by register.
#include "tools/orvane/log/LogSummary.h"

namespace OrvaneTool {
namespace {

void account(RegisterHistory& history, const LoggedAccess& access) {
    ++(access.write ? history.writes : history.reads);
    if (access.write || !access.value)
        return;
    const RegisterHistory::Value value{*access.value, access.digits};
    if (history.last.digits == 0)
        history.first = value;
    else if (history.last.bits != value.bits)
        ++history.changes;
    history.last = value;
}

} // namespace

std::string RegisterHistory::Value::text() const {
    LoggedAccess access;
    access.digits = digits;
    if (digits > 0)
        access.value = bits;
    return access.valueText();
}

LogSummary summaryOf(const LogFile& log, const Selection& selection) {
    LogSummary summary;
    LogFile::Accesses accesses = log.accesses(selection);
    for (LoggedAccess access; accesses.next(access);) {
        account(summary.registers[registerOf(access)], access);
        ++(access.write ? summary.writes : summary.reads);
        summary.queued += access.queued ? 1 : 0;
    }
    return summary;
}

} // namespace OrvaneTool
