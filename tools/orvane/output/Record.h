// One result of a verb, in the form that all verbs share.
#pragma once

#include "tools/orvane/output/Errors.h"
#include "tools/orvane/output/Table.h"

#include <orvane/rack.hpp>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace OrvaneTool {

// What went wrong, as programs tell it: "timed_out", "board_error", "usage", "failed", ...
struct RecordError {
    std::string kind;
    int code = 0; // the board's, a negative errno value; 0: none
    std::string text;
};

// The same of a failure of the library, told in these words.
RecordError recordError(const Orvane::Failure& failure, const std::string& text);

// Named members in an order. Names and what they mean stand in docs/orvane-records.schema.json, and
// nowhere does a name mean anything else. A plain value.
class Record {
public:
    // `kind` is the first member, "record".
    explicit Record(const std::string& kind);

    // "OV0001:0" as the members device, board and port.
    Record& device(const std::string& name);
    Record& phy(unsigned id) { return put("phy", id); }
    // A register: space ("c45", "c22", "ext32"), MMD (of Clause 45), number, and how users write it.
    Record& at(const char* space, unsigned mmd, std::uint32_t number, const std::string& text);

    // A cell with the value null is a member of the text table only, which shows what it has as text.
    Record& put(const std::string& name, Cell cell);
    Record& show(const std::string& name, const std::string& text, Painted inColour = {});

    // The member "error" instead of what could not be had. Text tables leave the record out: the user is
    // told of failures elsewhere.
    Record& error(const RecordError& error);
    bool isError() const { return error_; }

    // Null when there is no such member; "error.kind" is one of an object.
    const Cell* find(std::string_view name) const;
    nlohmann::ordered_json json() const;

private:
    std::vector<std::pair<std::string, Cell>> members_;
    bool error_ = false;
};

// A failure as a record, with the device and the PHY as far as it names them.
Record failureRecord(const Failure& failure);
Record failureRecord(const Orvane::Failure& failure);

} // namespace OrvaneTool
