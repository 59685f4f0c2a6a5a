// What the user's configuration file says.
#pragma once

#include <cstdint>
#include <map>
#include <optional>
#include <string>
#include <vector>

namespace OrvaneTool {

// How sessions are opened.
struct SessionKey {
    std::string mode; // "simple", "concurrent" or "exclusive"
    std::uint16_t key = 0;
};

struct Settings {
    std::string path;                           // of the file; empty: there is none
    std::vector<std::string> addresses;         // of boards, to be asked instead of a multicast
    std::vector<std::string> maps;              // register maps
    std::optional<std::string> log;             // the transaction log that commands go to
    std::optional<SessionKey> session;          // of sessions
    std::map<std::string, std::string> aliases; // what names stand for in place of devices
};

// $XDG_CONFIG_HOME/orvane/config.toml, or that in ~/.config; empty: there is no place for it.
std::string settingsPath();

// The settings of a file; none when there is no such file. Relative paths in it begin at its folder. Throws
// UsageError, naming file and line, for what is no TOML or no setting.
Settings readSettings(const std::string& path);

} // namespace OrvaneTool
