// A folder for a transaction log, removed afterwards.
#pragma once

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <regex>
#include <stdexcept>
#include <string>

namespace OrvaneTest {

struct LogFolder {
    const std::string folder = made();
    const std::string path = folder + "/log.csv";

    LogFolder() = default;
    ~LogFolder() { std::filesystem::remove_all(folder); }
    LogFolder(const LogFolder&) = delete;
    LogFolder& operator=(const LogFolder&) = delete;

    std::string text() const {
        std::ifstream file(path);
        return {std::istreambuf_iterator<char>(file), {}};
    }
    // The log with TIME for its times, and without the names of its columns.
    std::string lines() const { return timeless(text().substr(text().find('\n') + 1)); }

    static std::string timeless(const std::string& text) {
        static const std::regex time(R"(\d{4}-\d\d-\d\dT\d\d:\d\d:\d\d\.\d{6}Z)");
        return std::regex_replace(text, time, "TIME");
    }

private:
    static std::string made() {
        std::string name = (std::filesystem::temp_directory_path() / "orvane-log-XXXXXX").string();
        if (mkdtemp(name.data()) == nullptr)
            throw std::runtime_error("no temporary folder");
        return name;
    }
};

} // namespace OrvaneTest
