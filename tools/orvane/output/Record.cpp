// Members of records, and failures as members.
#include "tools/orvane/output/Record.h"

#include <algorithm>
#include <charconv>

namespace OrvaneTool {
namespace {

const char* nameOf(Orvane::FailureKind kind) {
    using Kind = Orvane::FailureKind;
    switch (kind) {
    case Kind::InvalidArgument:
        return "invalid_argument";
    case Kind::NoSuchPort:
        return "no_such_port";
    case Kind::Unreachable:
        return "unreachable";
    case Kind::TimedOut:
        return "timed_out";
    case Kind::Refused:
        return "refused";
    case Kind::Busy:
        return "busy";
    case Kind::LostSession:
        return "lost_session";
    case Kind::BadReply:
        return "bad_reply";
    case Kind::BoardError:
        return "board_error";
    case Kind::Cancelled:
        return "cancelled";
    }
    return "failed";
}

Record failureRecord(const Orvane::Failure& failure, const std::string& text) {
    Record record("failure");
    if (!failure.board().empty())
        record.device(failure.port() < 0 ? failure.board()
                                         : failure.board() + ":" + std::to_string(failure.port()));
    if (failure.phy() >= 0)
        record.phy(static_cast<unsigned>(failure.phy()));
    return record.error(recordError(failure, text));
}

} // namespace

RecordError recordError(const Orvane::Failure& failure, const std::string& text) {
    return {nameOf(failure.kind()), failure.code(), text};
}

Record failureRecord(const Failure& failure) {
    return failure.cause ? failureRecord(*failure.cause, failure.what())
                         : Record("failure").error({"failed", 0, failure.what()});
}

Record failureRecord(const Orvane::Failure& failure) {
    return failureRecord(failure, failure.what());
}

Record::Record(const std::string& kind) {
    put("record", kind);
}

Record& Record::device(const std::string& name) {
    const std::size_t colon = name.rfind(':');
    put("device", name);
    put("board", name.substr(0, colon));
    unsigned port = 0;
    if (colon != std::string::npos &&
        std::from_chars(&name[colon + 1], name.data() + name.size(), port).ec == std::errc())
        put("port", port);
    return *this;
}

Record& Record::at(const char* space, unsigned mmd, std::uint32_t number, const std::string& text) {
    put("space", space);
    if (std::string_view(space) == "c45")
        put("mmd", mmd);
    return put("register", number).put("at", text);
}

Record& Record::put(const std::string& name, Cell cell) {
    members_.emplace_back(name, std::move(cell));
    return *this;
}

Record& Record::show(const std::string& name, const std::string& text, Painted inColour) {
    return put(name, Cell(text, nullptr, std::move(inColour)));
}

Record& Record::error(const RecordError& error) {
    error_ = true;
    return put("error.kind", error.kind).put("error.code", error.code).put("error.text", error.text);
}

const Cell* Record::find(std::string_view name) const {
    const auto found = std::find_if(members_.begin(), members_.end(),
                                    [&](const auto& member) { return member.first == name; });
    return found == members_.end() ? nullptr : &found->second;
}

nlohmann::ordered_json Record::json() const {
    auto object = nlohmann::ordered_json::object();
    for (const auto& [name, cell] : members_) {
        if (cell.value.is_null())
            continue;
        const std::size_t dot = name.find('.');
        auto& place =
            dot == std::string::npos ? object[name] : object[name.substr(0, dot)][name.substr(dot + 1)];
        place = cell.value;
    }
    return object;
}

} // namespace OrvaneTool
