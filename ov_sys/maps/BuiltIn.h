// The map files that are part of the library.
#pragma once

#include <string_view>
#include <vector>

namespace Orvane::Maps {

struct BuiltInFile {
    std::string_view path; // beneath ov_sys/maps, as "ieee8023.json"
    std::string_view text;
};

// Written by the build.
extern const std::vector<BuiltInFile> kBuiltInFiles;

} // namespace Orvane::Maps
