#include "tools/orvane/log/HtmlReport.h"

#include <nlohmann/json.hpp>

namespace OrvaneTool {

// Made from report.html at build time.
extern const char* const kReportPage;

namespace {

using Json = nlohmann::ordered_json;

Json accessesOf(const LogFile& log) {
    Json list = Json::array();
    for (const LoggedAccess& access : log.accesses)
        list.push_back(
            {access.write ? 1 : 0, access.queued ? 1 : 0, access.value ? Json(access.valueText()) : Json()});
    return list;
}

Json registersOf(const std::vector<RegisterHistory>& histories) {
    Json list = Json::array();
    for (const RegisterHistory& each : histories)
        list.push_back({{"adapter", each.adapter},
                        {"phy", each.phy},
                        {"address", each.reg.text()},
                        {"reads", each.reads},
                        {"writes", each.writes},
                        {"changes", each.changes},
                        {"first", each.first},
                        {"last", each.last},
                        {"at", each.accesses}});
    return list;
}

} // namespace

std::string htmlReport(const std::string& title, const LogFile& log,
                       const std::vector<RegisterHistory>& histories) {
    const Json data{{"title", title},
                    {"accesses", accessesOf(log)},
                    {"registers", registersOf(histories)},
                    {"configuration", log.configurationAccesses},
                    {"stray", log.strayValues},
                    {"notes", log.notes}};
    std::string text = data.dump(-1, ' ', true, Json::error_handler_t::replace);
    // Nothing in it may end the script element that it stands in.
    for (std::size_t found = 0; (found = text.find('<', found)) != std::string::npos;)
        text.replace(found, 1, "\\u003c");
    std::string page = kReportPage;
    const std::string mark = "ORVANE_REPORT_DATA";
    return page.replace(page.find(mark), mark.size(), text);
}

} // namespace OrvaneTool
