// Reads a file, those that it includes, and what it says of revisions and overrides.
#include "ov_sys/maps/Loader.h"

#include "ov_sys/maps/BlockForm.h"
#include "ov_sys/maps/Members.h"
#include "ov_sys/maps/Numbers.h"

#include <cstdlib>
#include <filesystem>

namespace Orvane::Maps {

namespace {

constexpr unsigned kDeepestInclude = 8;
constexpr const char* kFormat = "orvane-map-1";

// "0x00221620" or "0x00221620/0xFFFFFFF0".
std::optional<MapIdentifier> identifierIn(std::string_view text) {
    const std::size_t slash = text.find('/');
    const auto value = numberIn(text.substr(0, slash));
    const auto mask = slash == std::string_view::npos ? std::optional<std::uint64_t>(0xFFFFFFFF)
                                                      : numberIn(text.substr(slash + 1));
    if (!value || !mask || *mask > 0xFFFFFFFF || (*value & ~*mask) != 0)
        return std::nullopt;
    return MapIdentifier{static_cast<std::uint32_t>(*value), static_cast<std::uint32_t>(*mask)};
}

std::optional<MapIdentifier> readIdentifier(const JsonValue& value, Problems& problems) {
    const auto identifier = value.kind == JsonValue::Kind::string ? identifierIn(value.text) : std::nullopt;
    if (!identifier)
        problems.add(
            value,
            "has to be a PHY identifier, as \"0x00221620\", or one and a mask that holds all its ones, as "
            "\"0x00221620/0xFFFFFFF0\"");
    return identifier;
}

// "2" or "0..2", within 0 to 15.
bool isRevisionIn(const JsonValue& value, std::uint32_t revision, Problems& problems) {
    const std::size_t dots = value.text.find("..");
    const auto first = numberIn(value.text.substr(0, dots));
    const auto last = dots == std::string_view::npos ? first : numberIn(value.text.substr(dots + 2));
    if (!first || !last || *first > *last || *last > 15)
        problems.add(value, "has to be a revision of 0 to 15, or a range, as \"0..2\"");
    return first && last && revision >= *first && revision <= *last;
}

// Whether an include stays where it may go: downwards, by plain names.
bool isPlainPath(std::string_view text) {
    if (text.empty() || text.front() == '/' ||
        text.find_first_of(std::string_view("\\\0", 2)) != std::string_view::npos)
        return false;
    const std::filesystem::path path(text);
    for (const std::filesystem::path& part : path)
        if (part == "..")
            return false;
    return true;
}

std::string realPath(const std::string& path) {
    char* const real = realpath(path.c_str(), nullptr);
    std::string found = real == nullptr ? "" : real;
    std::free(real);
    return found;
}

bool liesIn(const std::string& path, const std::string& folder) {
    return path.size() > folder.size() && path.compare(0, folder.size(), folder) == 0 &&
           (folder == "/" || path[folder.size()] == '/');
}

Enumerations readEnumerations(const JsonValue& top, Problems& problems) {
    Enumerations enumerations;
    Members(top, problems).each("enumerations", JsonValue::Kind::object, [&](const JsonValue& each) {
        if (!isIdentifier(each.key))
            problems.add(each, "is no name: letters, digits and '_', a letter first, 64 at most");
        enumerations[std::string(each.key)] = readChoices(each, problems);
    });
    return enumerations;
}

} // namespace

RegisterMap Loader::load(const std::string& path) {
    if (auto text = readFile(path, budget_.bytes, problems_)) {
        const std::string real = realPath(path);
        topFolder_ = std::filesystem::path(real).parent_path().string();
        included_.insert(real);
        readMap(path, std::move(*text), std::filesystem::path(path).parent_path().string());
    }
    return finish();
}

RegisterMap Loader::parse(std::string_view json, const std::string& name) {
    readMap(name, std::string(json), {});
    return finish();
}

RegisterMap Loader::finish() {
    problems_.throwIfAny();
    layOut(*content_, problems_);
    problems_.throwIfAny();
    return MapBuilder::mapOf(content_);
}

void Loader::readMap(std::string file, std::string text, const std::string& folder) {
    documents_.push_back(
        std::make_unique<JsonDocument>(std::move(file), std::move(text), budget_, problems_));
    if (const JsonValue* const top = documents_.back()->root())
        readTop(*top, folder);
}

void Loader::readTop(const JsonValue& top, const std::string& folder) {
    const Members members(top,
                          {"format", "name", "text", "identifiers", "include", "enumerations", "registers",
                           "blocks", "overrides", "$schema"},
                          problems_);
    if (top.kind != JsonValue::Kind::object)
        return;
    if (members.need("format") != nullptr && members.string("format") != kFormat)
        members.refuse("format", "has to be \"orvane-map-1\"");
    readHead(top);
    const std::size_t before = documents_.size();
    members.each("include", JsonValue::Kind::array, [&](const JsonValue& each) { include(each, folder); });
    const bool includesAll = before == documents_.size() || documents_.back()->root() != nullptr;
    const Enumerations enumerations = readEnumerations(top, problems_);
    BlockForm(enumerations, BlockForm::Mode::declare, fieldsLeft_, problems_)
        .readContent(top, content_->root);
    if (includesAll) // else what is overridden may be missing for that reason alone
        members.each("overrides", JsonValue::Kind::array,
                     [&](const JsonValue& each) { readOverride(each, enumerations); });
}

void Loader::readHead(const JsonValue& top) {
    const Members members(top, problems_);
    const auto name = members.string("name");
    const auto text = members.string("text", kLongestText);
    std::vector<MapIdentifier> identifiers;
    members.each("identifiers", JsonValue::Kind::array, [&](const JsonValue& each) {
        if (const auto identifier = readIdentifier(each, problems_))
            identifiers.push_back(*identifier);
    });
    if (members.need("name") != nullptr && name && !isIdentifier(*name))
        members.refuse("name", "is no name: letters, digits and '_', a letter first, 64 at most");
    if (depth_ > 0)
        return;
    content_->name = name.value_or("");
    content_->text = text.value_or("");
    content_->identifiers = std::move(identifiers);
}

void Loader::include(const JsonValue& value, const std::string& folder) {
    const std::string name(value.text);
    const std::string_view builtIn =
        value.kind == JsonValue::Kind::string ? builtInMap(name) : std::string_view{};
    if (depth_ == kDeepestInclude) {
        problems_.add(value, "is included deeper than 8 files");
    } else if (!builtIn.empty()) {
        if (!included_.insert(name).second)
            problems_.add(value, "is included already");
        else {
            ++depth_;
            readMap(name, std::string(builtIn), {});
            --depth_;
        }
    } else if (value.kind != JsonValue::Kind::string || topFolder_.empty() || !isPlainPath(name)) {
        problems_.add(value,
                      "has to be a built-in map or, from a file, a path beneath its folder without '..'");
    } else {
        const std::string path = (std::filesystem::path(folder) / name).string();
        const std::string real = realPath(path);
        if (!real.empty() && !liesIn(real, topFolder_))
            problems_.add(value, "leads out of the folder of the first file");
        else if (!real.empty() && !included_.insert(real).second)
            problems_.add(value, "is included already");
        else if (auto text = readFile(path, budget_.bytes, problems_)) {
            ++depth_;
            readMap(path, std::move(*text), std::filesystem::path(path).parent_path().string());
            --depth_;
        }
    }
}

bool Loader::applies(const JsonValue& value) {
    bool fits = true;
    if (const JsonValue* const identifier = value.member("identifier")) {
        const auto wanted = readIdentifier(*identifier, problems_);
        fits = wanted && options_.identifier && (*options_.identifier & wanted->mask) == wanted->value;
    }
    if (const JsonValue* const revision = value.member("revision"))
        fits = isRevisionIn(*revision, options_.identifier.value_or(0) & 0xFU, problems_) &&
               options_.identifier && fits;
    return fits;
}

void Loader::readOverride(const JsonValue& value, const Enumerations& enumerations) {
    const Members members(value, {"identifier", "revision", "text", "remove", "registers", "blocks"},
                          problems_);
    members.string("text", kLongestText);
    const BlockForm::Mode mode = applies(value) ? BlockForm::Mode::override : BlockForm::Mode::check;
    if (value.kind == JsonValue::Kind::object)
        BlockForm(enumerations, mode, fieldsLeft_, problems_).readContent(value, content_->root);
}

} // namespace Orvane::Maps
