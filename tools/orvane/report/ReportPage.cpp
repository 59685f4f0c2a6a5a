// The frame of the page, and what parts have in common.
#include "tools/orvane/report/ReportPage.h"

#include <fmt/format.h>
#include <fmt/ranges.h>
#include <nlohmann/json.hpp>
#include <vector>

namespace OrvaneTool {

// Made from page.html at build time.
extern const char* const kReportPage;

namespace {

constexpr std::string_view kMark = "ORVANE_REPORT_DATA"; // where the data go

std::string bitsText(const Orvane::MapField& field) {
    std::vector<std::string> runs;
    for (const auto& run : field.bits)
        runs.push_back(fmt::format("[{},{}]", run.high, run.low));
    return fmt::format("[{}]", fmt::join(runs, ","));
}

std::string choicesText(const Orvane::MapField& field) {
    std::vector<std::string> choices;
    for (const auto& choice : field.choices)
        choices.push_back(fmt::format("[{},{}]", choice.value, jsonText(choice.name)));
    return fmt::format("[{}]", fmt::join(choices, ","));
}

} // namespace

std::string jsonText(std::string_view text) {
    return harmless(nlohmann::json(text).dump(-1, ' ', true, nlohmann::json::error_handler_t::replace));
}

std::string harmless(std::string json) {
    for (std::size_t found = 0; (found = json.find('<', found)) != std::string::npos;)
        json.replace(found, 1, "\\u003c");
    return json;
}

void writeMeaning(std::ostream& page, const Orvane::MapRegister& reg) {
    page << ",\"name\":" << jsonText(reg.name()) << ",\"fields\":[";
    const char* comma = "";
    for (const Orvane::DecodedField& each : Orvane::RegisterMap::decode(reg, 0)) {
        const Orvane::MapField& field = *each.field;
        page
            << comma
            << fmt::format(
                   R"({{"name":{},"text":{},"bits":{},"signed":{},"scaled":{},"scale":{},"offset":{},"unit":{},)"
                   R"("choices":{}}})",
                   jsonText(field.name), jsonText(field.text), bitsText(field), field.isSigned,
                   field.isScaled, field.scale, field.offset, jsonText(field.unit), choicesText(field));
        comma = ",";
    }
    page << "]";
}

ReportPage::ReportPage(std::ostream& page, std::string_view title) : page_(page) {
    const std::string_view frame = kReportPage;
    page_ << frame.substr(0, frame.find(kMark)) << "{\"title\":" << jsonText(title) << ",\"parts\":[";
}

std::ostream& ReportPage::part(std::string_view kind, std::string_view title) {
    page_ << (hasParts_ ? "," : "") << fmt::format(R"({{"kind":"{}","title":{})", kind, jsonText(title));
    hasParts_ = true;
    return page_;
}

void ReportPage::finish() {
    const std::string_view frame = kReportPage;
    page_ << "]}" << frame.substr(frame.find(kMark) + kMark.size());
}

} // namespace OrvaneTool
