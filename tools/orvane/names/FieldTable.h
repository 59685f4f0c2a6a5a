// Registers with their fields, decoded, for people.
#pragma once

#include "tools/orvane/names/KnownMaps.h"
#include "tools/orvane/output/Table.h"

#include <cstdint>
#include <functional>
#include <optional>
#include <string>

namespace OrvaneTool {

// Rows of fields behind the address, value and name of their register, whose own columns are not repeated.
class FieldTable {
public:
    // `compares`: with a column of what was before. `manyPlaces`: with columns of device and PHY. Keeps its
    // rows until they are printed.
    explicit FieldTable(const Stream& stream, bool compares = false, bool manyPlaces = false);

    // Prints rows of any number, none of them kept: `produce` adds them to what it is called with, and is
    // called twice, once to see how wide they are.
    static void printAll(Stream& stream, bool compares, bool manyPlaces,
                         const std::function<void(FieldTable&)>& produce);

    // Whose registers are added from now on.
    void setPlace(const std::string& device, unsigned phy);

    // The fields of a value, or the one that was asked for. With what was before, in a table that compares,
    // those that differ are marked; `onlyChanged` leaves out the others.
    void add(const Asked& asked, std::uint64_t value, std::optional<std::uint64_t> before = std::nullopt,
             bool onlyChanged = false);
    std::size_t size() const { return table_.size(); }
    void print(Stream& stream) const { table_.print(stream); }
    // Some of the rows; returns how many lines that were.
    std::size_t printPart(Stream& stream, std::size_t first, std::size_t count) const {
        return table_.printPart(stream, first, count);
    }

private:
    void addRow(const Asked& asked, std::uint64_t value, const Orvane::DecodedField* decoded,
                const Orvane::DecodedField* before, bool isFirst);

    const Stream& stream_;
    bool compares_;
    std::string device_;
    unsigned phy_ = 0;
    Table table_;
    const std::function<void(const Row&)>* take_ = nullptr; // where rows go that are not kept
};

// What a field says, in words, with what a latched bit tells behind it.
std::string meaningOf(const Orvane::DecodedField& field);

// The field as a value of its register says.
Orvane::DecodedField decodedField(const Orvane::MapField& field, std::uint64_t value);

} // namespace OrvaneTool
