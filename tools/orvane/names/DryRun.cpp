// Accesses put into words.
#include "tools/orvane/names/DryRun.h"

#include "tools/orvane/board/Bits.h"
#include "tools/orvane/output/Errors.h"

#include <fmt/format.h>
#include <orvane/rack.hpp>
#include <sstream>

namespace OrvaneTool {
namespace {

// The words of the first map that has a name for the line.
std::vector<std::string> linesOf(const Orvane::Batch& batch, const KnownMaps& maps) {
    std::vector<std::string> lines;
    for (const Orvane::RegisterMap& map : maps.all()) {
        std::istringstream words(Orvane::plan(batch, map));
        std::string line;
        for (std::size_t i = 0; std::getline(words, line); ++i)
            if (i >= lines.size())
                lines.push_back(line);
            else if (line.find("  ", 6) != std::string::npos && lines[i].find("  ", 6) == std::string::npos)
                lines[i] = line;
    }
    return lines;
}

void add(const Access& access, Orvane::Batch& batch) {
    if (access.written)
        batch.write(addressOf(access.reg), *access.written);
    else
        batch.read(addressOf(access.reg));
}

std::string together(const std::vector<std::string>& lines) {
    return lines.empty() ? "" : fmt::format("{}\n", fmt::join(lines, "\n"));
}

// By the select register, which is read first and put back in the end.
std::string paged(const Access& access, const KnownMaps& maps) {
    const Orvane::MapRegister* const reg = maps.find(access.reg);
    if (reg == nullptr || !Orvane::isReachable(*reg))
        throw UsageError(fmt::format("no map says how to reach {}", access.reg.text()));
    std::string text;
    Orvane::NamedBatch::Selects selects;
    for (const Orvane::MapRegister* const each : Orvane::NamedBatch::selectsOf({reg})) {
        Orvane::Batch look;
        look.read(*Orvane::addressOf(*each));
        text += together(linesOf(look, maps));
        selects[each] = ~std::uint32_t{0}; // not known: no page of this register
    }
    const std::size_t restored = selects.size();
    Orvane::NamedBatch batch(std::move(selects));
    if (access.written)
        batch.write(*reg, *access.written);
    else
        batch.read(*reg);
    std::vector<std::string> lines = linesOf(batch.finish(), maps);
    lines.resize(lines.size() - restored);
    return text + together(lines) + "and the page as it was before\n";
}

} // namespace

std::string planned(const std::vector<Access>& accesses, const KnownMaps& maps, bool routed) {
    std::string text;
    Orvane::Batch batch;
    const auto tell = [&] {
        text += together(linesOf(batch, maps));
        batch.clear();
    };
    for (const Access& each : accesses) {
        if (!routed && each.reg.page < 0) {
            add(each, batch);
            continue;
        }
        tell();
        if (each.reg.page >= 0)
            text += paged(each, maps);
        else
            text += together(linesOf(Orvane::routedSteps(addressOf(each.reg), each.written), maps));
    }
    tell();
    return text;
}

std::string plannedChange(const Asked& asked, std::uint32_t value, std::uint32_t mask, const KnownMaps& maps,
                          bool routed) {
    std::string change;
    if (asked.field == nullptr) {
        change =
            fmt::format("{} in the bits {}", hexText(value, asked.reg.space), hexText(mask, asked.reg.space));
    } else {
        const Orvane::DecodedField field{asked.field, value, asked.field->number(value),
                                         asked.field->scaled(value), asked.field->choice(value)};
        change = fmt::format("{}: {} {}", asked.mapped->name(), asked.field->name, field.valueText());
    }
    return planned({{asked.reg, std::nullopt}}, maps, routed) +
           fmt::format("write {:<16}  {}, the others as they were read\n", asked.reg.text(), change);
}

int tellPlan(Context& context, const std::string& lines) {
    RecordSink& records = context.records({{"text"}, {}});
    if (records.isText()) {
        context.console.out.write(lines);
        return kSuccess;
    }
    std::istringstream steps(lines);
    for (std::string step; std::getline(steps, step);) {
        Record record("step");
        records.put(record.put("text", step));
    }
    return kSuccess;
}

} // namespace OrvaneTool
