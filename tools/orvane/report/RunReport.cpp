// Data sets are the Python package's own: it says what is in one.
#include "tools/orvane/report/RunReport.h"

#include "tools/orvane/cli/Python.h"
#include "tools/orvane/output/Errors.h"

#include <array>
#include <filesystem>
#include <fmt/format.h>
#include <fstream>
#include <nlohmann/json.hpp>

namespace OrvaneTool {

bool isDataSet(const std::string& path) {
    constexpr std::string_view kBegin{"SQLite format 3\0", 16};
    std::array<char, kBegin.size()> begin{};
    std::ifstream file(path, std::ios::binary);
    return std::filesystem::is_regular_file(path) && file.read(begin.data(), begin.size()) &&
           std::string_view(begin.data(), begin.size()) == kBegin;
}

std::string dataSetText(const std::string& path) {
    const auto text = [&] {
        try {
            return printedByPython("run.page", {path});
        } catch (const Failure& problem) {
            throw Failure(fmt::format("{}: {}", path, problem.what()));
        }
    }();
    if (!nlohmann::json::accept(text))
        throw Failure(fmt::format("{}: the Python package orvane is of another version", path));
    return harmless(text.substr(0, text.find_last_not_of('\n') + 1));
}

void addRunReport(ReportPage& page, const std::string& title, const std::string& text) {
    page.part("run", title) << ",\"told\":" << text << "}";
}

} // namespace OrvaneTool
