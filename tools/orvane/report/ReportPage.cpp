// The frame of the page, and what parts have in common.
#include "tools/orvane/report/ReportPage.h"

#include <fmt/format.h>
#include <fmt/ranges.h>
#include <nlohmann/json.hpp>
#include <vector>

namespace OrvaneTool {

// Made from page.html at build time.
std::vector<std::string_view> reportPagePieces();

namespace {

constexpr std::string_view kMark = "ORVANE_REPORT_DATA"; // where the data go

// The page before its data, and behind them.
struct Frame {
    std::string before;
    std::string behind;
};

const Frame& frame() {
    static const Frame made = [] {
        std::string page;
        for (const std::string_view piece : reportPagePieces())
            page += piece;
        const std::size_t place = page.find(kMark);
        return Frame{page.substr(0, place), page.substr(place + kMark.size())};
    }();
    return made;
}

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
    page_ << frame().before << "{\"title\":" << jsonText(title) << ",\"parts\":[";
}

std::ostream& ReportPage::part(std::string_view kind, std::string_view title) {
    page_ << (hasParts_ ? "," : "") << fmt::format(R"({{"kind":"{}","title":{})", kind, jsonText(title));
    hasParts_ = true;
    return page_;
}

void ReportPage::finish() {
    page_ << "]}" << frame().behind;
}

} // namespace OrvaneTool
