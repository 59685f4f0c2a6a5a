// How verbs are added to the command line.
#pragma once

#include "tools/orvane/board/Context.h"

#include <CLI/CLI.hpp>
#include <memory>
#include <string>
#include <utility>

namespace OrvaneTool {

// What help and manual say about a verb. Every line of `examples` is a command or begins with a blank.
struct VerbText {
    const char* name;
    const char* summary;
    const char* examples;
};

CLI::App& addVerb(CLI::App& parent, const VerbText& text);

// Makes `run(options)` the action of the verb. `Options` are filled in by the parser and live with the verb.
template <class Options, class Run>
void setAction(CLI::App& verb, Context& context, std::shared_ptr<Options> options, Run run) {
    verb.callback([&context, options, run] {
        context.action = [&context, options, run] { return run(context, *options); };
    });
}

// Options that every verb that reaches a board has, and those of verbs that print rows.
void addBoardOptions(CLI::App& verb, Context& context);
void addLogOption(CLI::App& verb, Context& context); // among the former
void addFormatOptions(CLI::App& verb, Context& context);

// Options for the names of registers: which maps, whether fields are shown, and, of verbs that read many
// registers, whether also those that a read changes.
void addMapOptions(CLI::App& verb, Context& context);
void addFieldOptions(CLI::App& verb, Context& context);
void addSideEffects(CLI::App& verb, Context& context);

// DEVICE, the first argument of most verbs.
void addDevice(CLI::App& verb, std::string& device);

} // namespace OrvaneTool
