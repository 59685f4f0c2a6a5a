// What importers have found, on its way to a map: with what cannot be carried over.
#pragma once

#include "ov_sys/maps/Problems.h"

#include <map>
#include <orvane/maps.hpp>
#include <set>

namespace Orvane::Maps {

struct DraftField {
    std::string name;
    std::string text;
    std::vector<MapBits> bits; // most significant first
    MapAccess access = MapAccess::rw;
    bool sideEffects = false;
    std::vector<MapChoice> choices;
};

struct DraftRegister {
    std::vector<std::string> path; // names of the blocks around
    std::string name;
    std::string text;
    MapAddress address;
    std::uint32_t count = 0;  // 0: no array
    std::uint32_t stride = 0; // in numbers of the space
    unsigned width = 32;
    std::optional<std::uint64_t> reset;
    MapAccess access = MapAccess::rw;
    bool sideEffects = false;
    std::vector<DraftField> fields;
    unsigned line = 0; // of the file

    std::string fullName() const;
};

class Draft {
public:
    Draft(std::string file, const ImportOptions& options) : file_(std::move(file)), options_(options) {}

    // Where a byte address of the file is in the space that was asked for; tells of one that is nowhere.
    std::optional<MapAddress> addressOf(std::uint64_t bytes, unsigned line, const std::string& what);
    // Numbers of the space that so many bytes are.
    std::uint32_t strideOf(std::uint64_t bytes) const;
    // Takes a register, less what does not fit: names are made into identifiers, fields that overlap and
    // registers whose name or place is taken are left out, and told of.
    void add(DraftRegister reg);
    // Tells of something that is not carried over.
    void report(unsigned line, const std::string& path, std::string message);
    // The same of something of which there may be thousands: told once, with their number.
    void ignore(const std::string& kind);
    // Throws MapError when the result is no map after all.
    ImportedMap finish(const std::string& name, const std::string& text);

    const std::string& file() const { return file_; }

private:
    bool isTaken(const DraftRegister& reg);
    void keepFields(DraftRegister& reg);

    std::string file_;
    ImportOptions options_;
    std::vector<DraftRegister> registers_;
    std::set<std::string> names_;                // of registers
    std::set<std::string> blocks_;               // with those around
    std::map<MapAddress, std::uint64_t> places_; // of registers: the last number
    std::uint64_t elements_ = 0;
    std::size_t bytes_ = 0; // of what was taken
    std::vector<MapProblem> reports_;
    std::map<std::string, unsigned> ignored_;
};

// A name as an identifier of 1 to 64 characters: what no identifier holds becomes '_'.
std::string identifierOf(std::string_view name);

// Each reads a text of its kind into a draft, and returns the map. They throw MapError.
ImportedMap importSvd(std::string text, Draft draft);
ImportedMap importUhal(std::string text, Draft draft);
ImportedMap importCsv(std::string text, Draft draft);

} // namespace Orvane::Maps
