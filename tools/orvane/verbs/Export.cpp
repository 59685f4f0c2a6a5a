// orvane export: dumps, logs and data sets as a page that needs nothing but a browser.
#include "tools/orvane/cli/Verb.h"
#include "tools/orvane/output/OutputFile.h"
#include "tools/orvane/report/DumpReport.h"
#include "tools/orvane/report/LogReport.h"
#include "tools/orvane/report/ReportFile.h"
#include "tools/orvane/report/RunReport.h"
#include "tools/orvane/verbs/Verbs.h"

#include <deque>
#include <functional>

namespace OrvaneTool {
namespace {

struct Options {
    std::vector<std::string> files;
    std::string html;
    std::string title;
    bool force = false;
};

std::string nameOf(const std::string& path) {
    return path.substr(path.rfind('/') + 1);
}

struct Log {
    explicit Log(const std::string& path) : file(path), summary(summaryOf(file, {})) {}

    LogFile file;
    LogSummary summary;
};

// What the files hold, read before the page is begun: one that is wrong leaves no page behind.
class Contents {
public:
    explicit Contents(const Context& context) : maps_(context) {}

    // Takes a file by what is in it. Throws Failure.
    void add(const std::string& path) {
        if (isDump(path))
            addDump(path);
        else if (isDataSet(path))
            parts_.emplace_back([name = nameOf(path), text = dataSetText(path)](ReportPage& page) {
                addRunReport(page, name, text);
            });
        else
            addLog(path);
    }

    void write(ReportPage& page) const {
        for (const auto& part : parts_)
            part(page);
    }

    const std::deque<Log>& logs() const { return logs_; }

private:
    // Dumps of one space stand side by side, in the place of the first.
    void addDump(const std::string& path) {
        NamedDump named{nameOf(path), readDump(path)};
        std::vector<NamedDump>& together = dumps_[named.dump.header.space];
        if (together.empty())
            parts_.emplace_back([&](ReportPage& page) { addDumpReport(page, together, maps_); });
        together.push_back(std::move(named));
    }

    void addLog(const std::string& path) {
        const Log& log = logs_.emplace_back(path);
        parts_.emplace_back([this, &log, name = nameOf(path)](ReportPage& page) {
            addLogReport(page, name, log.file, {}, log.summary, maps_);
        });
    }

    KnownMaps maps_;
    std::vector<std::function<void(ReportPage&)>> parts_;
    std::map<Space, std::vector<NamedDump>> dumps_;
    std::deque<Log> logs_; // they stay where they are
};

std::string titleOf(const Options& options) {
    if (!options.title.empty())
        return options.title;
    std::string title;
    for (const std::string& each : options.files)
        title += (title.empty() ? "" : ", ") + nameOf(each);
    return title;
}

int run(Context& context, const Options& options) {
    requireNewFile(options.html, options.force);
    Contents contents(context);
    for (const std::string& each : options.files)
        contents.add(each);
    writeReportFile(context, options.html, options.force, titleOf(options),
                    [&](ReportPage& page) { contents.write(page); });
    for (const Log& each : contents.logs())
        tellWhatIsLeftOut(context, options.html, each.summary);
    return kSuccess;
}

} // namespace

void addExport(CLI::App& app, Context& context) {
    CLI::App& verb =
        addVerb(app, {"export", "Make a page of dumps, logs and data sets",
                      "  orvane export before.dump after.dump --html change.html\n"
                      "  orvane export drive-sweep.orvrun --html sweep.html\n"
                      "  orvane export a.dump session.log sweep.orvrun --html today.html\n"
                      " The page is one file that any browser opens: dumps side by side, decoded, with\n"
                      " what differs marked; a log as 'orvane log --html' has it; a run with its plots\n"
                      " (this needs the Python package orvane).\n"});
    auto options = std::make_shared<Options>();
    verb.add_option("FILE", options->files, "Dumps, transaction logs, data sets of runs")
        ->required()
        ->type_name("");
    verb.add_option("--html", options->html, "The page")->required()->type_name("FILE");
    verb.add_option("--title", options->title, "Its title; the files' names unless told")->type_name("TEXT");
    verb.add_flag("--force", options->force, "Overwrite the page");
    addMapOptions(verb, context);
    addFormatOptions(verb, context);
    setAction(verb, context, options, run);
}

} // namespace OrvaneTool
