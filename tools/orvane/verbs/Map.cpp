// orvane map: register maps themselves.
#include "tools/orvane/cli/Verb.h"
#include "tools/orvane/names/KnownMaps.h"
#include "tools/orvane/output/Errors.h"
#include "tools/orvane/output/OutputFile.h"
#include "tools/orvane/output/RecordSink.h"
#include "tools/orvane/verbs/Verbs.h"

#include <array>
#include <fmt/format.h>

namespace OrvaneTool {
namespace {

struct Options {
    std::vector<std::string> words;
    std::string output; // a file; empty: standard output
    bool force = false; // overwrite it
    std::string form = "json";
    std::string prefix;
    std::string space = "ext32";
    unsigned mmd = 0;
};

// A map that is good, or was written to a file.
Record mapRecord(const Orvane::RegisterMap& map, const std::string& file) {
    Record record("map");
    return std::move(record.put("name", map.name()).put("registers", map.size()).put("file", file));
}

const RecordForm kMapFiles{{"name", "registers", "file", "text"}, {}};

// A map in another form, on standard output where no file is given.
void put(Context& context, const Options& options, const Orvane::RegisterMap& map, const std::string& text) {
    if (options.output.empty())
        return context.console.out.write(text);
    writeFile(options.output, text, options.force);
    context.records(kMapFiles).put(mapRecord(map, options.output));
}

void requireFileForRecords(const Context& context, const Options& options) {
    if (options.output.empty() && context.format() != Format::Text)
        throw UsageError("--json and --csv tell what was written: -o FILE says where to");
}

Orvane::MapOptions loadingFor(const Context& context) {
    Orvane::MapOptions options;
    options.identifier = context.identifier;
    return options;
}

int check(Context& context, const Options& options) {
    RecordSink& records = context.records(kMapFiles);
    std::string wrong;
    for (const std::string& file : options.words) {
        try {
            const auto map = Orvane::RegisterMap::load(file, loadingFor(context));
            records.put(mapRecord(map, file));
            if (records.isText())
                context.console.out.print("{}: {}, {} registers\n", file, map.name(), map.size());
        } catch (const Orvane::MapError& error) {
            wrong += (wrong.empty() ? "" : "\n") + std::string(error.what());
        }
    }
    if (!wrong.empty())
        throw Failure(wrong);
    return kSuccess;
}

RecordSink& definitionsOf(Context& context) {
    return context.records(
        {{"name", "space", "mmd", "register", "at", "bits", "access", "text"},
         {{"name", "NAME"}, {"at", "ADDRESS"}, {"bits", "BITS"}, {"access", "ACCESS"}, {"text", "TEXT"}}});
}

// A register or a field of it.
void put(RecordSink& records, const Orvane::MapReference& each) {
    constexpr std::array kSpaces{"c45", "c22", "ext32", "smbus"}; // in the order of MapSpace
    const Orvane::MapRegister& reg = *each.reg;
    const Orvane::MapAddress& address = reg.address();
    Record record("definition");
    record.put("name", each.field ? each.name() : reg.name())
        .at(kSpaces.at(static_cast<std::size_t>(address.space)), address.mmd, address.number, address.text())
        .put("bits", each.field ? each.field->bitsText() : std::to_string(reg.width()))
        .put("access", nameOf(each.field ? each.field->access : reg.access()))
        .put("text", each.field ? each.field->text : reg.text());
    records.put(record);
}

// Without a word the maps, with words the registers that they mean and the fields of each that is named in
// full.
int show(Context& context, const Options& options) {
    const KnownMaps maps(context);
    if (options.words.empty()) {
        RecordSink& records =
            context.records({{"name", "registers", "text"},
                             {{"name", "MAP"}, {"registers", "REGISTERS", true}, {"text", "TEXT"}}});
        for (const Orvane::RegisterMap& map : maps.all()) {
            Record record("map");
            records.put(record.put("name", map.name()).put("registers", map.size()).put("text", map.text()));
        }
        return kSuccess;
    }
    context.sideEffects = true;
    RecordSink& records = definitionsOf(context);
    std::vector<std::string> leftOut;
    for (const std::string& word : options.words) {
        const std::vector<Asked> list = maps.parse(word, Space::C45, 1, leftOut);
        for (const Asked& each : list) {
            if (each.mapped == nullptr)
                throw Failure(fmt::format("no map has {}", each.reg.text()));
            put(records, {each.mapped, each.field});
            if (list.size() == 1 && each.field == nullptr)
                for (const Orvane::MapField& field : each.mapped->fields())
                    put(records, {each.mapped, &field});
        }
    }
    return kSuccess;
}

int search(Context& context, const Options& options) {
    const KnownMaps maps(context);
    RecordSink& records = definitionsOf(context);
    const std::string words = fmt::format("{}", fmt::join(options.words, " "));
    bool any = false;
    for (const Orvane::RegisterMap& map : maps.all())
        for (const Orvane::MapReference& each : map.search(words)) {
            put(records, each);
            any = true;
        }
    if (!any)
        throw Failure(fmt::format("nothing has '{}' in its name or text", words));
    return kSuccess;
}

int import(Context& context, const Options& options) {
    requireFileForRecords(context, options);
    Orvane::ImportOptions into;
    into.space = options.space == "c45"   ? Orvane::MapSpace::c45
                 : options.space == "c22" ? Orvane::MapSpace::c22
                                          : Orvane::MapSpace::ext32;
    into.mmd = static_cast<std::uint8_t>(options.mmd);
    try {
        const Orvane::ImportedMap imported = Orvane::RegisterMap::importFile(options.words.front(), into);
        for (const Orvane::MapProblem& each : imported.notCarriedOver) {
            context.console.err.write("orvane: not carried over: " + each.text() + "\n");
            Record record("left_out");
            if (context.format() != Format::Text)
                context.records(kMapFiles).put(record.put("text", each.text()));
        }
        context.console.err.flushIfPossible();
        put(context, options, imported.map, imported.map.toJson());
    } catch (const Orvane::MapError& error) {
        throw Failure(error.what());
    }
    return kSuccess;
}

int exportMap(Context& context, const Options& options) {
    requireFileForRecords(context, options);
    try {
        const auto map = options.words.front() == "ieee8023"
                             ? Orvane::RegisterMap::ieee8023()
                             : Orvane::RegisterMap::load(options.words.front(), loadingFor(context));
        put(context, options, map,
            options.form == "c"          ? map.toCHeader(options.prefix.empty() ? map.name() : options.prefix)
            : options.form == "markdown" ? map.toMarkdown()
                                         : map.toJson());
    } catch (const Orvane::MapError& error) {
        throw Failure(error.what());
    }
    return kSuccess;
}

// For the shell: how a word may go on, one a line.
int complete(Context& context, const Options& options) {
    const KnownMaps maps(context);
    for (const Orvane::RegisterMap& map : maps.all())
        for (const std::string& each : map.complete(options.words.empty() ? "" : options.words.front()))
            context.console.out.print("{}\n", each);
    return kSuccess;
}

// An operation on words; returns it and its options.
template <class Run>
std::pair<CLI::App*, std::shared_ptr<Options>> add(CLI::App& map, Context& context, const VerbText& text,
                                                   const char* words, int least, int most, Run run) {
    CLI::App& verb = addVerb(map, text);
    auto options = std::make_shared<Options>();
    verb.add_option(words, options->words, "")->type_name("")->expected(least, most)->required(least > 0);
    setAction(verb, context, options, run);
    return {&verb, options};
}

constexpr int kAny = 1000;

void addFiles(CLI::App& map, Context& context) {
    const auto output = [&context](const auto& added) {
        added.first->add_option("-o,--output", added.second->output, "Write it to this file")
            ->type_name("FILE");
        added.first->add_flag("--force", added.second->force, "Overwrite the file");
        addFormatOptions(*added.first, context);
    };
    const auto imported = add(map, context,
                              {"import", "Make a map of a CMSIS-SVD, uHAL or CSV file",
                               "  orvane map import chip.svd -o chip.json\n"},
                              "FILE", 1, 1, import);
    output(imported);
    imported.first
        ->add_option("--space", imported.second->space, "Where registers go: c45, c22 or ext32 (ext32)")
        ->check(CLI::IsMember({"c45", "c22", "ext32"}).description(""))
        ->type_name("SPACE");
    imported.first->add_option("--mmd", imported.second->mmd, "Their MMD in Clause 45 (0)")
        ->check(CLI::Range(0U, 31U).description(""))
        ->type_name("MMD");
    const auto exported = add(map, context,
                              {"export", "Print a map as JSON, a C header or Markdown",
                               "  orvane map export chip.json --form c --prefix CHIP -o chip_registers.h\n"
                               "  orvane map export ieee8023 --form markdown\n"},
                              "FILE", 1, 1, exportMap);
    output(exported);
    exported.first->add_option("--form", exported.second->form, "json, c or markdown (json)")
        ->check(CLI::IsMember({"json", "c", "markdown"}).description(""))
        ->type_name("FORM");
    exported.first->add_option("--prefix", exported.second->prefix, "What a C header's names begin with")
        ->type_name("PREFIX");
}

} // namespace

void addMap(CLI::App& app, Context& context) {
    CLI::App& map = addVerb(app, {"map", "Check, look through and translate register maps",
                                  "  orvane map check chip.json\n"
                                  "  orvane map show AN.STATUS\n"
                                  "  orvane map search link partner\n"});
    const auto checked =
        add(map, context, {"check", "Tell everything that is wrong with maps", ""}, "FILE", 1, kAny, check);
    const auto shown = add(map, context,
                           {"show", "List the maps, or the registers and fields that are named",
                            "  orvane map show 'AN.*' --map chip.json\n"},
                           "NAME", 0, kAny, show);
    const auto searched =
        add(map, context, {"search", "Find names and texts with every word", ""}, "WORD", 1, kAny, search);
    const auto completed =
        add(map, context, {"complete", "How a name may go on", ""}, "BEGINNING", 0, 1, complete);
    completed.first->group(""); // for the shell
    for (CLI::App* verb : {shown.first, searched.first, completed.first})
        addMapOptions(*verb, context);
    for (CLI::App* verb : {checked.first, shown.first, searched.first})
        addFormatOptions(*verb, context);
    addFiles(map, context);
}

} // namespace OrvaneTool
