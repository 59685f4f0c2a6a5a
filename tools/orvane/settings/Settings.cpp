// TOML to settings.
#include "tools/orvane/settings/Settings.h"

#include "tools/orvane/output/Errors.h"

#include <algorithm>
#include <array>
#include <cstdlib>
#include <filesystem>
#include <fmt/format.h>
#include <toml++/toml.h>

namespace OrvaneTool {
namespace {

namespace fs = std::filesystem;

// One file, while it is taken apart.
class Reader {
public:
    explicit Reader(const std::string& path) : path_(path) {}

    Settings read() {
        const toml::table table = parsed();
        for (const auto& [key, value] : table)
            take(std::string(key.str()), value);
        return std::move(settings_);
    }

private:
    toml::table parsed() const {
        try {
            return toml::parse_file(path_);
        } catch (const toml::parse_error& problem) {
            throw UsageError(
                fmt::format("{}: line {}: {}", path_, problem.source().begin.line, problem.description()));
        }
    }

    [[noreturn]] void refuse(const toml::node& at, const std::string& why) const {
        throw UsageError(fmt::format("{}: line {}: {}", path_, at.source().begin.line, why));
    }

    std::string text(const toml::node& value, const std::string& what) const {
        if (const auto* const found = value.as_string())
            return found->get();
        refuse(value, what + " is a text");
    }

    std::vector<std::string> texts(const toml::node& value, const std::string& what) const {
        std::vector<std::string> list;
        const toml::array* const array = value.as_array();
        if (array == nullptr)
            refuse(value, what + " is a list of texts");
        for (const toml::node& each : *array)
            list.push_back(text(each, "each of " + what));
        return list;
    }

    std::string file(const std::string& name) const {
        return fs::path(name).is_absolute() ? name : (fs::path(path_).parent_path() / name).string();
    }

    void take(const std::string& name, const toml::node& value) {
        if (name == "addresses")
            settings_.addresses = texts(value, name);
        else if (name == "log")
            settings_.log = file(text(value, name));
        else if (name == "maps")
            for (const std::string& each : texts(value, name))
                settings_.maps.push_back(file(each));
        else if (name == "session")
            settings_.session = session(value);
        else if (name == "aliases")
            for (const auto& [alias, device] : table(value, name))
                settings_.aliases[std::string(alias.str())] = text(device, "an alias");
        else
            refuse(value, fmt::format("there is no setting '{}'; there are addresses, aliases, log, maps and "
                                      "session",
                                      name));
    }

    const toml::table& table(const toml::node& value, const std::string& what) const {
        if (const toml::table* const found = value.as_table())
            return *found;
        refuse(value, what + " is a table");
    }

    SessionKey session(const toml::node& value) const {
        constexpr std::array kModes{"simple", "concurrent", "exclusive"};
        SessionKey found;
        for (const auto& [key, each] : table(value, "session")) {
            const auto number = each.value<std::int64_t>();
            if (key == "mode")
                found.mode = text(each, "mode");
            else if (key == "key" && number && *number >= 0 && *number <= 0xFFFF)
                found.key = static_cast<std::uint16_t>(*number);
            else
                refuse(each, "a session has a mode and a key, 0 to 65535");
        }
        if (std::find(kModes.begin(), kModes.end(), found.mode) == kModes.end())
            refuse(value, "the mode of a session is simple, concurrent or exclusive");
        return found;
    }

    std::string path_;
    Settings settings_;
};

} // namespace

std::string settingsPath() {
    const char* const config = std::getenv("XDG_CONFIG_HOME"); // NOLINT(concurrency-mt-unsafe)
    const char* const home = std::getenv("HOME");              // NOLINT(concurrency-mt-unsafe)
    if (config != nullptr && *config != '\0')
        return (fs::path(config) / "orvane" / "config.toml").string();
    return home == nullptr || *home == '\0' ? "" : (fs::path(home) / ".config/orvane/config.toml").string();
}

Settings readSettings(const std::string& path) {
    std::error_code none;
    if (path.empty() || !fs::exists(path, none))
        return {};
    Settings settings = Reader(path).read();
    settings.path = path;
    return settings;
}

} // namespace OrvaneTool
