// Blocks and registers as the source form writes them.
#pragma once

#include "ov_sys/maps/Declaration.h"
#include "ov_sys/maps/FieldForm.h"

namespace Orvane::Maps {

class Members;

constexpr unsigned kMostRegisters = 131'072; // of a map, each element of an array counted
constexpr std::size_t kMostFields = 65'536;  // that the files of a map declare

// Reads "registers" and "blocks" into a tree of declarations.
class BlockForm {
public:
    enum class Mode {
        declare,  // a register must be new
        override, // a register that is there is changed
        check     // as override, but nothing is kept
    };

    // `fieldsLeft` shrinks by the fields that are made.
    BlockForm(const Enumerations& enumerations, Mode mode, std::size_t& fieldsLeft, Problems& problems)
        : enumerations_(enumerations), mode_(mode), fieldsLeft_(fieldsLeft), problems_(problems) {}

    // The members of `value` named "registers", "blocks" and "remove".
    void readContent(const JsonValue& value, BlockDeclaration& into, unsigned depth = 0);

private:
    void readBlock(const JsonValue& value, BlockDeclaration& parent, unsigned depth);
    void changeBlock(const JsonValue& value, BlockDeclaration& block, unsigned depth);
    void readBlockMembers(const JsonValue& value, BlockDeclaration& block);
    void readRegister(const JsonValue& value, BlockDeclaration& parent);
    void readDefinition(const Members& members, MapDefinition& definition);
    void readFields(const JsonValue& value, MapDefinition& definition);
    void removeNames(const JsonValue& value, BlockDeclaration& from);
    bool isName(const JsonValue& value);

    const Enumerations& enumerations_;
    Mode mode_;
    std::size_t& fieldsLeft_;
    Problems& problems_;
};

} // namespace Orvane::Maps
