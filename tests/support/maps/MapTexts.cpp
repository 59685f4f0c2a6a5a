// Parses a text, and keeps what is thrown.
#include "tests/support/maps/MapTexts.h"

namespace OrvaneTest {

using Orvane::RegisterMap;

std::string mapText(const std::string& members) {
    return R"({"format": "orvane-map-1", "name": "test", )" + members + "}";
}

RegisterMap mapOf(const std::string& members, const Orvane::MapOptions& options) {
    return RegisterMap::parse(mapText(members), "map", options);
}

RegisterMap registerOf(const std::string& members) {
    return mapOf(R"("registers": {"R": {"at": "7.1", )" + members + "}}");
}

std::string problemsOf(const std::string& members, const Orvane::MapOptions& options) {
    try {
        mapOf(members, options);
    } catch (const Orvane::MapError& error) {
        return error.what();
    }
    return {};
}

std::string problemsOfRegister(const std::string& members) {
    const std::string prefix = "map:1: registers.R";
    std::string all = problemsOf(R"("registers": {"R": {"at": "7.1", )" + members + "}}");
    for (std::size_t at = all.find(prefix); at != std::string::npos; at = all.find(prefix))
        all.erase(at, prefix.size());
    return all;
}

} // namespace OrvaneTest
