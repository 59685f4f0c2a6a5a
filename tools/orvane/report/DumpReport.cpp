// The part's data as JSON.
#include "tools/orvane/report/DumpReport.h"

#include "tools/orvane/board/Bits.h"

#include <fmt/format.h>
#include <set>

namespace OrvaneTool {
namespace {

std::string titleOf(const std::vector<NamedDump>& dumps) {
    std::string title;
    for (const NamedDump& each : dumps)
        title += (title.empty() ? "" : ", ") + each.file;
    return title;
}

std::set<Register> registersOf(const std::vector<NamedDump>& dumps) {
    std::set<Register> registers;
    for (const NamedDump& each : dumps)
        for (const auto& [reg, value] : each.dump.values)
            registers.insert(reg);
    return registers;
}

std::string headerText(const NamedDump& named) {
    const DumpHeader& header = named.dump.header;
    return fmt::format(R"({{"file":{},"date":{},"device":{},"address":{},"phy":{},"identifier":{}}})",
                       jsonText(named.file), jsonText(header.date), jsonText(header.device),
                       jsonText(header.address), header.phy, jsonText(header.identifier));
}

std::string valueText(const Dump& dump, const Register& reg) {
    const auto found = dump.values.find(reg);
    return found == dump.values.end() ? "null" : fmt::format("\"{}\"", hexText(found->second, reg.space));
}

void writeRegister(std::ostream& page, const Register& reg, const std::vector<NamedDump>& dumps,
                   const KnownMaps& maps) {
    page << fmt::format(R"({{"address":"{}","values":[)", reg.text());
    for (std::size_t i = 0; i < dumps.size(); ++i)
        page << (i > 0 ? "," : "") << valueText(dumps[i].dump, reg);
    page << "]";
    const Dump& first = dumps.front().dump;
    if (first.masks.count(reg) > 0)
        page << fmt::format(R"(,"mask":"{}")", hexText(first.maskOf(reg), reg.space));
    if (const Orvane::MapRegister* const mapped = maps.find(reg))
        writeMeaning(page, *mapped);
    page << "}";
}

} // namespace

void addDumpReport(ReportPage& page, const std::vector<NamedDump>& dumps, const KnownMaps& maps) {
    std::ostream& out = page.part("dumps", titleOf(dumps));
    out << ",\"dumps\":[";
    for (std::size_t i = 0; i < dumps.size(); ++i)
        out << (i > 0 ? "," : "") << headerText(dumps[i]);
    out << "],\"registers\":[";
    const char* comma = "";
    for (const Register& reg : registersOf(dumps)) {
        out << comma;
        writeRegister(out, reg, dumps, maps);
        comma = ",";
    }
    out << "]}";
}

} // namespace OrvaneTool
