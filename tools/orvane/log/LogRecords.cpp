// Members of the records of a log.
#include "tools/orvane/log/LogRecords.h"

#include "tools/orvane/log/TimedLine.h"

#include <fmt/format.h>

namespace OrvaneTool {
namespace {

void addPlace(Record& record, const std::string& device, unsigned adapter) {
    if (device.empty())
        record.put("adapter", adapter);
    else
        record.device(device);
}

void addAccess(Record& record, const LoggedAccess& access) {
    const Register& reg = access.reg;
    record.phy(access.phy)
        .at(nameOf(reg.space), reg.mmd, reg.address, reg.text())
        .put("access", accessText(access))
        .put("value", valueCell(access.value, access.digits))
        .show("what", accessText(access))
        .show("where", reg.text())
        .show("result", access.valueText());
}

void addCall(Record& record, const LogRecord& entry) {
    if (entry.hasPhy)
        record.phy(entry.access.phy);
    record.put("operation", entry.operation)
        .put("arguments", entry.arguments)
        .put("result", entry.result)
        .show("what", entry.operation)
        .show("where", entry.arguments);
}

} // namespace

Cell valueCell(std::optional<std::uint64_t> value, int digits) {
    return value ? Cell(fmt::format("0x{:0{}X}", *value, digits), *value) : Cell("-", nullptr);
}

std::string accessText(const LoggedAccess& access) {
    return fmt::format("{}{}", access.queued ? "queued " : "", access.write ? "write" : "read");
}

Record recordOf(const char* kind, const PhyRegister& reg) {
    Record record(kind);
    addPlace(record, reg.device, reg.adapter);
    record.phy(reg.phy).at(nameOf(reg.reg.space), reg.reg.mmd, reg.reg.address, reg.reg.text());
    return record;
}

Record timelineRecord(const LogRecord& entry, std::size_t place) {
    using Kind = LogRecord::Kind;
    const LoggedAccess& access = entry.access;
    const bool isNote = entry.kind == Kind::Note;
    Record record(isNote                       ? "note"
                  : entry.kind == Kind::Access ? "access"
                  : entry.kind == Kind::Event  ? "event"
                                               : "call");
    if (!isNote)
        addPlace(record, access.device, access.adapter);
    record.put("place", place);
    if (!access.time.empty())
        record.put("time", access.time);
    if (isNote)
        record.put("text", entry.note).show("what", "note").show("where", entry.note);
    else if (entry.kind == Kind::Access)
        addAccess(record, access);
    else
        addCall(record, entry);
    if (!access.outcome.empty())
        record.put("outcome", access.outcome);
    return record;
}

} // namespace OrvaneTool
