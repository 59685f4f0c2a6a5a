// One name a line, replaced as a whole.
#include "tools/orvane/board/DeviceCache.h"

#include <cstdlib>
#include <exception>
#include <filesystem>
#include <fmt/format.h>
#include <fstream>
#include <set>
#include <unistd.h>

namespace OrvaneTool {
namespace {

namespace fs = std::filesystem;

constexpr std::size_t kMost = 20000; // names

// Empty: there is no place for it.
fs::path cachePath() {
    const char* const cache = std::getenv("XDG_CACHE_HOME"); // NOLINT(concurrency-mt-unsafe)
    const char* const home = std::getenv("HOME");            // NOLINT(concurrency-mt-unsafe)
    if (cache != nullptr && *cache != '\0')
        return fs::path(cache) / "orvane" / "devices";
    return home == nullptr || *home == '\0' ? fs::path() : fs::path(home) / ".cache/orvane/devices";
}

void write(const fs::path& path, const std::set<std::string>& names) {
    fs::create_directories(path.parent_path());
    const fs::path made = path.string() + fmt::format(".{}", ::getpid());
    std::ofstream file(made);
    for (const std::string& name : names)
        file << name << '\n';
    file.close();
    if (file)
        fs::rename(made, path);
    else
        fs::remove(made);
}

} // namespace

std::vector<std::string> rememberedDevices() {
    std::ifstream file(cachePath());
    std::vector<std::string> names;
    for (std::string line; names.size() < kMost && std::getline(file, line);)
        names.push_back(line);
    return names;
}

void rememberDevices(const std::vector<Orvane::FoundBoard>& boards) noexcept {
    try {
        const std::vector<std::string> known = rememberedDevices();
        std::set<std::string> names(known.begin(), known.end());
        const std::size_t before = names.size();
        for (const Orvane::FoundBoard& board : boards)
            for (const unsigned port : board.ports)
                names.insert(fmt::format("{}:{}", board.serial, port));
        const fs::path path = cachePath();
        if (names.size() != before && names.size() <= kMost && !path.empty())
            write(path, names);
    } catch (const std::exception&) { // NOLINT(bugprone-empty-catch): completion offers less then
    }
}

} // namespace OrvaneTool
