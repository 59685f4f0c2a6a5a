// Registers with their fields, decoded.
#pragma once

#include "tools/orvane/names/KnownMaps.h"
#include "tools/orvane/output/Table.h"

#include <cstdint>
#include <optional>

namespace OrvaneTool {

// Rows of fields behind the address, value and name of their register. In text a register's own columns are
// not repeated.
class FieldTable {
public:
    // `compares`: with a column of what was before. `manyPlaces`: with columns of device and PHY.
    FieldTable(const Stream& stream, Format format, bool compares = false, bool manyPlaces = false);

    // Whose registers are added from now on.
    void setPlace(const std::string& device, unsigned phy);

    // The fields of a value, or the one that was asked for. With what was before, in a table that compares,
    // those that differ are marked; `onlyChanged` leaves out the others.
    void add(const Asked& asked, std::uint64_t value, std::optional<std::uint64_t> before = std::nullopt,
             bool onlyChanged = false);
    std::size_t size() const { return table_.size(); }
    void print(Stream& stream) const { table_.print(stream, format_); }
    // Some of the rows, as text.
    void printPart(Stream& stream, std::size_t first, std::size_t count) const {
        table_.printPart(stream, first, count);
    }

private:
    void addRow(const Asked& asked, std::uint64_t value, const Orvane::DecodedField* decoded,
                const Orvane::DecodedField* before, bool isFirst);

    const Stream& stream_;
    Format format_;
    bool compares_;
    std::string device_;
    unsigned phy_ = 0;
    Table table_;
};

// What a field says, in words, with what a latched bit tells behind it.
std::string meaningOf(const Orvane::DecodedField& field);

} // namespace OrvaneTool
