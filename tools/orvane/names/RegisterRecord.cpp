// What records of registers have in common.
#include "tools/orvane/names/RegisterRecord.h"

#include "tools/orvane/names/FieldTable.h"

namespace OrvaneTool {

namespace {

Record& putRegister(Record& record, const Asked& asked) {
    record.at(nameOf(asked.reg.space), asked.reg.mmd, asked.reg.address, asked.reg.text());
    if (asked.reg.page >= 0)
        record.put("page", asked.reg.page);
    if (asked.mapped != nullptr)
        record.put("name", asked.mapped->name());
    return record;
}

nlohmann::ordered_json fieldJson(const Orvane::DecodedField& field, const Orvane::DecodedField& before) {
    nlohmann::ordered_json json{{"field", field.field->name},
                                {"bits", field.field->bitsText()},
                                {"raw", field.raw},
                                {"meaning", field.valueText()}};
    if (before.raw != field.raw)
        json["was"] = before.valueText();
    if (!field.note().empty())
        json["note"] = field.note();
    return json;
}

} // namespace

Record registerRecord(const std::string& device, unsigned phy, const Asked& asked) {
    Record record("register");
    return putRegister(record.device(device).phy(phy), asked);
}

Record registerRecord(const Asked& asked) {
    Record record("register");
    return putRegister(record, asked);
}

void putFields(Record& record, const Asked& asked, std::uint64_t value, std::optional<std::uint64_t> before,
               bool onlyChanged) {
    if (asked.mapped == nullptr)
        return;
    auto list = nlohmann::ordered_json::array();
    std::string text;
    for (const Orvane::DecodedField& each : Orvane::RegisterMap::decode(*asked.mapped, value)) {
        const Orvane::DecodedField earlier = decodedField(*each.field, before.value_or(value));
        if ((asked.field != nullptr && each.field != asked.field) || (onlyChanged && earlier.raw == each.raw))
            continue;
        text += (text.empty() ? "" : ", ") + each.field->name + ' ' + meaningOf(each);
        list.push_back(fieldJson(each, earlier));
    }
    record.put("fields", {text, std::move(list)});
}

std::vector<std::string> withFields(std::vector<std::string> members, bool fields) {
    if (fields)
        members.emplace_back("fields");
    return members;
}

RecordForm registerForm(bool manyPlaces, const std::vector<std::string>& members,
                        const std::vector<Column>& columns) {
    RecordForm form{{"space", "at", "name"}, {}};
    form.members.insert(form.members.end(), members.begin(), members.end());
    if (manyPlaces)
        form.columns = {{"device", "DEVICE"}, {"phy", "PHY", true}};
    form.columns.push_back({"at", "ADDRESS"});
    form.columns.insert(form.columns.end(), columns.begin(), columns.end());
    return form;
}

} // namespace OrvaneTool
