// Where maps come from, and what names mean in them.
#include "tools/orvane/names/KnownMaps.h"

#include "tools/orvane/output/Errors.h"

#include <algorithm>
#include <cstdlib>
#include <filesystem>
#include <fmt/format.h>

namespace OrvaneTool {
namespace {

namespace fs = std::filesystem;

// The maps beside the user's configuration, by name.
std::vector<std::string> configuredFiles() {
    const char* const config = std::getenv("XDG_CONFIG_HOME");
    const char* const home = std::getenv("HOME");
    std::vector<std::string> files;
    if ((config == nullptr || *config == '\0') && home == nullptr)
        return files;
    const fs::path folder =
        (config != nullptr && *config != '\0' ? fs::path(config) : fs::path(home) / ".config") / "orvane" /
        "maps";
    std::error_code none;
    for (const auto& entry : fs::directory_iterator(folder, none))
        if (entry.path().extension() == ".json")
            files.push_back(entry.path().string());
    std::sort(files.begin(), files.end());
    return files;
}

Orvane::RegisterMap loaded(const std::string& file, const Orvane::MapOptions& options) {
    try {
        return Orvane::RegisterMap::load(file, options);
    } catch (const Orvane::MapError& error) {
        throw UsageError(error.what());
    }
}

void warn(const std::string& text) {
    Stream err(LibraryMessages::err());
    err.write(text);
    err.flushIfPossible();
}

Orvane::MapAddress mapAddress(const Register& reg) {
    using Orvane::MapSpace;
    const MapSpace space = reg.space == Space::C45   ? MapSpace::c45
                           : reg.space == Space::C22 ? MapSpace::c22
                                                     : MapSpace::ext32;
    return {space, static_cast<std::uint8_t>(reg.mmd), reg.address, reg.page};
}

} // namespace

bool isName(const std::string& text) {
    const char first = text.empty() ? '0' : text[0];
    return (first >= 'A' && first <= 'Z') || (first >= 'a' && first <= 'z') || first == '_' || first == '*' ||
           first == '?';
}

Register registerOf(const Orvane::RegisterAddress& address) {
    using From = Orvane::RegisterAddress::Space;
    const Space space = address.space == From::Clause45   ? Space::C45
                        : address.space == From::Clause22 ? Space::C22
                                                          : Space::Ext32;
    return {space, address.mmd, address.number};
}

Orvane::RegisterAddress addressOf(const Register& reg) {
    using To = Orvane::RegisterAddress::Space;
    const To space = reg.space == Space::C45   ? To::Clause45
                     : reg.space == Space::C22 ? To::Clause22
                                               : To::Ext32;
    return {space, reg.mmd, reg.address};
}

Register registerOf(const Orvane::MapRegister& reg) {
    if (!Orvane::isReachable(reg))
        throw UsageError(fmt::format("no board reaches {} ({})", reg.name(), reg.address().text()));
    Register found = registerOf(*Orvane::addressOf(reg));
    found.page = reg.address().page;
    return found;
}

KnownMaps::KnownMaps(const Context& context) : context_(context), configured_(configuredFiles()) {
    Orvane::MapOptions options;
    options.identifier = context.identifier;
    for (const std::string& file : context.mapFiles)
        maps_.push_back(loaded(file, options));
    maps_.push_back(Orvane::RegisterMap::ieee8023());
    if (!context.identifier)
        return;
    identify(*context.identifier);
    configured_.clear();
}

void KnownMaps::identify(std::uint32_t identifier) {
    Orvane::MapOptions options;
    options.identifier = identifier;
    for (const std::string& file : configured_) {
        try {
            if (const Orvane::RegisterMap map = loaded(file, options); map.describes(identifier))
                maps_.insert(maps_.end() - 1, map);
        } catch (const UsageError& problem) { // nobody asked for this one
            warn(fmt::format("orvane: left out: {}\n", problem.what()));
        }
    }
}

const Orvane::MapRegister* KnownMaps::find(const Register& reg) const {
    for (const Orvane::RegisterMap& map : maps_)
        if (const Orvane::MapRegister* const found = map.find(mapAddress(reg)))
            return found;
    return nullptr;
}

void KnownMaps::refuse(const std::string& text, const std::string& why) const {
    std::string names;
    std::string meant;
    for (const Orvane::RegisterMap& map : maps_) {
        names += (names.empty() ? "" : ", ") + map.name();
        meant = meant.empty() ? map.suggestion(text) : meant;
    }
    throw UsageError(fmt::format("{} '{}' in {}{}", why, text, names,
                                 meant.empty() ? "" : fmt::format("; did you mean '{}'?", meant)));
}

std::vector<Asked> KnownMaps::named(const std::string& text, std::vector<std::string>& leftOut) const {
    for (const Orvane::RegisterMap& map : maps_) {
        if (const Orvane::MapReference one = map.resolve(text))
            return {{registerOf(*one.reg), one.reg, one.field, true}};
        Orvane::Selection found;
        try {
            found = Orvane::select(map, Orvane::Scope(text).sideEffects(context_.sideEffects));
        } catch (const Orvane::MapError&) {
            continue; // another map may have it
        }
        std::vector<Asked> list;
        for (const Orvane::MapRegister* const each : found.registers)
            if (Orvane::isReachable(*each))
                list.push_back({registerOf(*each), each, nullptr, true});
        for (const Orvane::MapRegister* const each : found.leftOut)
            leftOut.push_back(each->name());
        return list;
    }
    refuse(text, "there is no");
}

std::vector<Asked> KnownMaps::parse(const std::string& text, Space space, std::uint32_t step,
                                    std::vector<std::string>& leftOut) const {
    if (isName(text))
        return named(text, leftOut);
    std::vector<Asked> list;
    const std::vector<Register> range = parseRegisters(text, space, step);
    for (const Register& reg : range) {
        const Orvane::MapRegister* const mapped = find(reg);
        if (mapped != nullptr && range.size() > 1 && given() && !context_.sideEffects &&
            mapped->isReadable() && !mapped->isSafeToRead())
            leftOut.push_back(mapped->name());
        else
            list.push_back({reg, mapped, nullptr, false});
    }
    return list;
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
