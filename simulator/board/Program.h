// What a board's programs are to whoever picks, records and counts their procedures.
#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace OrvaneSim {

struct ProcedureCall;

// How one procedure is served, and how its arguments are shown.
struct Handler {
    void (*serve)(ProcedureCall& call);
    // Encoded arguments as JSON text.
    std::string (*describe)(std::string_view arguments);
};

struct Procedure {
    std::uint32_t number;
    // Name of the client stub without its version, e.g. "mdio_read".
    const char* name;
    Handler handler;
};

// A program and the table of its procedures, which must outlive it.
struct Program {
    template <std::size_t count>
    constexpr Program(const char* name_, std::uint32_t number_, std::uint32_t version_,
                      const Procedure (&table)[count])
        : name(name_), number(number_), version(version_), first(table), last(table + count) {}

    // The procedure of a number; null when there is none.
    const Procedure* find(std::uint32_t wanted) const {
        const auto* const found =
            std::find_if(first, last, [wanted](const Procedure& one) { return one.number == wanted; });
        return found == last ? nullptr : found;
    }

    const char* name;
    std::uint32_t number;
    std::uint32_t version;
    const Procedure* first;
    const Procedure* last;
};

// Programs served at one port. They must outlive the list.
using ProgramList = std::vector<const Program*>;

// Everything that a board serves.
struct BoardPrograms {
    ProgramList portMapper; // at port 111
    ProgramList services;   // at ports that the port mapper tells
};

} // namespace OrvaneSim
