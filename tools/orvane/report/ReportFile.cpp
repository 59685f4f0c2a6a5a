// Writing of pages.
#include "tools/orvane/report/ReportFile.h"

#include "tools/orvane/output/Errors.h"
#include "tools/orvane/output/OutputFile.h"
#include "tools/orvane/output/RecordSink.h"
#include "tools/orvane/report/LogReport.h"

#include <cerrno>
#include <fmt/format.h>
#include <fstream>

namespace OrvaneTool {

void writeReportFile(Context& context, const std::string& path, bool force, const std::string& title,
                     const std::function<void(ReportPage&)>& addParts) {
    requireNewFile(path, force);
    std::ofstream file(path, std::ios::binary | std::ios::trunc);
    ReportPage page(file, title);
    addParts(page);
    page.finish();
    if (!file.flush())
        throw Failure(fmt::format("{}: cannot write: {}", path, errorText(errno)));
    Record record("report");
    context.records({{"file"}, {}}).put(record.put("file", path));
}

void tellWhatIsLeftOut(Context& context, const std::string& path, const LogSummary& summary) {
    if (const ReportLimits limits = limitsFor(summary); limits.thinned)
        context.console.err.print("orvane: {}: the log is too long for one page: of each register it has the "
                                  "first {} and the last {} accesses; all are counted\n",
                                  path, limits.accesses - limits.accesses / 2, limits.accesses / 2);
    context.console.err.flushIfPossible();
}

} // namespace OrvaneTool
