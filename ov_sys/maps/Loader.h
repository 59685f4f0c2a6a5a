// Reads the files of a map.
#pragma once

#include "ov_sys/maps/BlockForm.h"
#include "ov_sys/maps/Content.h"

#include <set>

namespace Orvane::Maps {

// The text of the built-in map of this name; empty: there is none.
std::string_view builtInMap(std::string_view name);

// The text of a regular file of at most 8 MiB; a problem is told, and none returned, otherwise.
std::optional<std::string> readFile(const std::string& path, std::size_t most, Problems& problems);

// Loads one map; used once.
class Loader {
public:
    explicit Loader(const MapOptions& options)
        : options_(options), content_(std::make_shared<MapContent>()) {}

    // Throws MapError.
    RegisterMap load(const std::string& path);
    RegisterMap parse(std::string_view json, const std::string& name);

private:
    RegisterMap finish();
    void readMap(std::string file, std::string text, const std::string& folder);
    void readTop(const JsonValue& top, const std::string& folder);
    void readHead(const JsonValue& top);
    void include(const JsonValue& value, const std::string& folder);
    void readOverride(const JsonValue& value, const Enumerations& enumerations);
    bool applies(const JsonValue& value);

    MapOptions options_;
    std::shared_ptr<MapContent> content_;
    std::vector<std::unique_ptr<JsonDocument>> documents_;
    std::set<std::string> included_; // real paths, and names of built-in maps
    unsigned depth_ = 0;             // of includes
    std::string topFolder_;          // real path of the first file's; empty: files cannot be included
    JsonBudget budget_;
    std::size_t fieldsLeft_ = kMostFields;
    Problems problems_;
};

} // namespace Orvane::Maps
