// Arguments made into accesses, and these carried out on any space and page.
#include "tools/orvane/names/NamedPhy.h"

#include "tools/orvane/output/Errors.h"

#include <algorithm>
#include <fmt/format.h>
#include <orvane/rack.hpp>

namespace OrvaneTool {
namespace {

constexpr std::size_t kMostNamesTold = 8;

// The part of a list from `begin` on that may go together: all on pages, or all of one space.
std::size_t endOfPart(const std::vector<Access>& accesses, std::size_t begin) {
    std::size_t end = begin;
    while (end < accesses.size() && accesses[end].reg.space == accesses[begin].reg.space &&
           (accesses[end].reg.page >= 0) == (accesses[begin].reg.page >= 0))
        ++end;
    return end;
}

} // namespace

NamedPhy::NamedPhy(Context& context, const RegisterOptions& options)
    : context_(context), options_(options), maps_(context) {
    if (!maps_.wantsIdentifier())
        return;
    const std::vector<std::uint32_t> words =
        runPlain({{{Space::C45, 1, 2}, std::nullopt}, {{Space::C45, 1, 3}, std::nullopt}});
    maps_.identify(words[0] << 16U | words[1]);
}

Device& NamedPhy::device() {
    if (!device_)
        device_ = std::make_unique<Device>(context_, options_.device);
    return *device_;
}

std::vector<Asked> NamedPhy::parse(const std::vector<std::string>& texts) {
    std::vector<Asked> all;
    std::vector<std::string> leftOut;
    for (const std::string& text : texts) {
        const std::vector<Asked> some = maps_.parse(text, options_.space(), options_.distance(), leftOut);
        all.insert(all.end(), some.begin(), some.end());
    }
    if (!leftOut.empty()) {
        const std::size_t more = leftOut.size() > kMostNamesTold ? leftOut.size() - kMostNamesTold : 0;
        leftOut.resize(leftOut.size() - more);
        context_.console.err.print(
            "orvane: left out, for a read changes them or tells nothing: {}{} (--side-effects reads them)\n",
            fmt::format("{}", fmt::join(leftOut, " ")), more > 0 ? fmt::format(" and {} more", more) : "");
        context_.console.err.flushIfPossible();
    }
    if (all.empty())
        throw UsageError("every register was left out: nothing is left to do");
    return all;
}

std::vector<std::uint32_t> NamedPhy::run(const std::vector<Access>& accesses) {
    std::vector<std::uint32_t> values;
    for (std::size_t begin = 0; begin < accesses.size();) {
        const std::size_t end = endOfPart(accesses, begin);
        const std::vector<Access> part(accesses.begin() + static_cast<std::ptrdiff_t>(begin),
                                       accesses.begin() + static_cast<std::ptrdiff_t>(end));
        const auto some = part.front().reg.page >= 0 ? runPaged(part) : runPlain(part);
        values.insert(values.end(), some.begin(), some.end());
        begin = end;
    }
    return values;
}

std::vector<std::uint32_t> NamedPhy::read(const std::vector<Asked>& list) {
    std::vector<Access> accesses;
    accesses.reserve(list.size());
    for (const Asked& each : list)
        accesses.push_back({each.reg, std::nullopt});
    return run(accesses);
}

std::vector<std::uint32_t> NamedPhy::runPlain(const std::vector<Access>& accesses) {
    return Registers(device(), options_.phy, options_.way()).run(accesses);
}

// By the select registers of the map, which hold afterwards what they held before.
std::vector<std::uint32_t> NamedPhy::runPaged(const std::vector<Access>& accesses) {
    std::vector<const Orvane::MapRegister*> registers;
    for (const Access& each : accesses) {
        registers.push_back(maps_.find(each.reg));
        if (registers.back() == nullptr || !Orvane::isReachable(*registers.back()))
            throw UsageError(fmt::format("no map says how to reach {}", each.reg.text()));
    }
    Orvane::NamedBatch::Selects selects;
    for (const Orvane::MapRegister* const each : Orvane::NamedBatch::selectsOf(registers))
        selects[each] = runPlain({{registerOf(*each), std::nullopt}}).front();
    Orvane::NamedBatch batch(std::move(selects));
    for (std::size_t i = 0; i < accesses.size(); ++i)
        if (accesses[i].written)
            batch.write(*registers[i], *accesses[i].written);
        else
            batch.read(*registers[i]);
    std::vector<Access> steps;
    for (const Orvane::Batch::Operation& each : batch.finish().operations()) {
        Access step{registerOf(each.address), std::nullopt};
        if (each.writes)
            step.written = each.value;
        steps.push_back(step);
    }
    return run(steps);
}

bool isNamed(const std::vector<Asked>& list) {
    return std::any_of(list.begin(), list.end(), [](const Asked& each) { return each.byName; });
}

bool showsFields(const Context& context, const KnownMaps& maps, const std::vector<Asked>& list) {
    if (context.fields || context.noFields)
        return context.fields;
    return context.console.out.isTerminal() && context.format() == Format::Text &&
           (maps.given() || isNamed(list));
}

} // namespace OrvaneTool
