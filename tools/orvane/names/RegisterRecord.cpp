// What records of registers have in common.
#include "tools/orvane/names/RegisterRecord.h"

namespace OrvaneTool {

Record registerRecord(const std::string& device, unsigned phy, const Asked& asked) {
    Record record("register");
    record.device(device).phy(phy).at(nameOf(asked.reg.space), asked.reg.mmd, asked.reg.address,
                                      asked.reg.text());
    if (asked.reg.page >= 0)
        record.put("page", asked.reg.page);
    if (asked.mapped != nullptr)
        record.put("name", asked.mapped->name());
    return record;
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
