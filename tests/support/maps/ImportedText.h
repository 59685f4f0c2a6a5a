// Files of other kinds made into maps, in words.
#pragma once

#include "tests/support/RepeatedText.h"

#include <filesystem>
#include <fstream>
#include <orvane/maps.hpp>
#include <string>
#include <unistd.h>
#include <vector>

namespace OrvaneTest {

// A text that is imported as a file.
inline Orvane::ImportedMap importText(const std::string& text, const Orvane::ImportOptions& options = {}) {
    const std::string path = "/tmp/orvane-import-" + std::to_string(getpid());
    std::ofstream(path) << text;
    Orvane::ImportedMap imported = Orvane::RegisterMap::importFile(path, options);
    std::filesystem::remove(path);
    return imported;
}

// What is said of a text that is imported as a file, without the file's name; "none" where it is taken.
inline std::string importError(const std::string& text) {
    const std::string path = "/tmp/orvane-import-" + std::to_string(getpid());
    std::ofstream(path) << text;
    std::string error = "none";
    try {
        Orvane::RegisterMap::importFile(path);
    } catch (const Orvane::MapError& problem) {
        error = problem.what();
    }
    std::filesystem::remove(path);
    return error.substr(error.find(path) == 0 ? path.size() : 0);
}

// "LINE PATH: MESSAGE" of each thing left behind.
inline std::vector<std::string> reportsOf(const Orvane::ImportedMap& imported) {
    std::vector<std::string> reports;
    for (const Orvane::MapProblem& each : imported.notCarriedOver)
        reports.push_back(std::to_string(each.line) + ' ' + each.path + ": " + each.message);
    return reports;
}

// "NAME ADDRESS" of each register.
inline std::vector<std::string> linesOf(const Orvane::RegisterMap& map) {
    std::vector<std::string> lines;
    for (const Orvane::MapRegister& each : map.registers())
        lines.push_back(each.name() + ' ' + each.address().text());
    return lines;
}

} // namespace OrvaneTest
