// The verbs of the command line, one function for each: it adds the verb with its arguments, options and
// action.
#pragma once

#include "tools/orvane/cli/Verb.h"

namespace OrvaneTool {

using AddVerb = void (*)(CLI::App& app, Context& context);

void addList(CLI::App& app, Context& context);
void addInfo(CLI::App& app, Context& context);
void addScan(CLI::App& app, Context& context);
void addPing(CLI::App& app, Context& context);
void addRead(CLI::App& app, Context& context);
void addWrite(CLI::App& app, Context& context);
void addModify(CLI::App& app, Context& context);
void addDump(CLI::App& app, Context& context);
void addDiff(CLI::App& app, Context& context);
void addRestore(CLI::App& app, Context& context);
void addWatch(CLI::App& app, Context& context);
void addDecode(CLI::App& app, Context& context);
void addMap(CLI::App& app, Context& context);
void addI2c(CLI::App& app, Context& context);
void addGpio(CLI::App& app, Context& context);
void addJtag(CLI::App& app, Context& context);
void addAdc(CLI::App& app, Context& context);
void addThermal(CLI::App& app, Context& context);
void addExec(CLI::App& app, Context& context);
void addLog(CLI::App& app, Context& context);
void addReplay(CLI::App& app, Context& context);
void addExport(CLI::App& app, Context& context);
void addRun(CLI::App& app, Context& context);
void addServe(CLI::App& app, Context& context);
void addMetrics(CLI::App& app, Context& context);
void addNote(CLI::App& app, Context& context);
void addConfig(CLI::App& app, Context& context);

// Hidden: what the shell offers.
void addComplete(CLI::App& app, Context& context);

// Hidden: prints the manual page and the shell completion from the same definitions.
void addGenerate(CLI::App& app, Context& context);

} // namespace OrvaneTool
