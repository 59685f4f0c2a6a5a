// orvane note: a line of the user's own in the transaction log.
#include "tools/orvane/cli/Verb.h"
#include "tools/orvane/output/Errors.h"
#include "tools/orvane/verbs/Verbs.h"

#include <fmt/format.h>

namespace OrvaneTool {
namespace {

struct Options {
    std::vector<std::string> words;
};

int run(Context& context, const Options& options) {
    if (context.logFile.empty())
        throw UsageError("note: say which log: --log FILE, or ORVANE_LOG");
    const std::string text = fmt::format("{}", fmt::join(options.words, " "));
    context.rack().note(text);
    Record record("note");
    context.records({{"text", "file"}, {}}).put(record.put("text", text).put("file", context.logFile));
    return kSuccess;
}

} // namespace

void addNote(CLI::App& app, Context& context) {
    CLI::App& verb = addVerb(app, {"note", "Write a line into the transaction log",
                                   "  orvane note 'cable moved to port 3' --log session.log\n"
                                   "  ORVANE_LOG=session.log orvane note link came up\n"});
    auto options = std::make_shared<Options>();
    verb.add_option("TEXT", options->words, "The line")->required()->type_name("");
    addLogOption(verb, context);
    addFormatOptions(verb, context);
    setAction(verb, context, options, run);
}

} // namespace OrvaneTool
