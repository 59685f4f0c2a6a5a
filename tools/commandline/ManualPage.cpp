// The manual page, made from what the parser knows.
#include "tools/commandline/Documents.h"
#include "tools/commandline/HelpFormatter.h"

#include <algorithm>
#include <cctype>
#include <sstream>

namespace OrvaneTool {
namespace {

// Text in which roff sees no requests and no ligatures of its own.
std::string escaped(const std::string& text) {
    std::string result;
    for (const char each : text) {
        if (each == '\\')
            result += "\\e";
        else if (each == '-')
            result += "\\-";
        else
            result += each;
    }
    if (!result.empty() && (result[0] == '.' || result[0] == '\''))
        result.insert(0, "\\&");
    return result;
}

// Lines as they are, in a fixed font.
std::string verbatim(const std::string& text) {
    std::istringstream lines(text);
    std::string result = ".EX\n";
    for (std::string line; std::getline(lines, line);)
        result += escaped(line) + "\n";
    return result + ".EE\n";
}

std::string nameOf(const CLI::Option& option) {
    const std::string names = option.get_positional() ? argumentText(option) : option.get_name(false, true);
    const std::string value = option.get_type_size() != 0 ? option.get_type_name() : "";
    return escaped(names) + (value.empty() ? "" : " \\fI" + escaped(value) + "\\fR");
}

std::string optionsOf(const CLI::App& app, bool positional) {
    std::string text;
    for (const CLI::Option* option : shownOptions(app))
        if (option->get_positional() == positional)
            text += ".TP\n\\fB" + nameOf(*option) + "\\fR\n" + escaped(option->get_description()) + "\n";
    return text;
}

void describe(const CLI::App& app, const std::string& prefix, std::string& page) {
    for (const CLI::App* verb : shownVerbs(app)) {
        const std::string name = prefix + verb->get_name();
        page += ".SS " + escaped(name) + "\n" + escaped(verb->get_description()) + ".\n";
        page += optionsOf(*verb, true) + optionsOf(*verb, false);
        if (!verb->get_footer().empty() && verb->get_footer() != app.get_footer()) // not its parent's
            page += ".PP\n" + verbatim(verb->get_footer());
        describe(*verb, name + " ", page);
    }
}

std::string inCapitals(std::string text) {
    std::transform(text.begin(), text.end(), text.begin(),
                   [](unsigned char each) { return std::toupper(each); });
    return text;
}

std::string synopsisOf(const Program& program) {
    std::string text;
    if (program.runsCommand)
        text = "[\\fIOPTIONS\\fR] \\-\\- \\fICOMMAND\\fR [\\fIARGUMENTS\\fR]\n";
    else
        text = "[\\fIOPTIONS\\fR] [\\fIVERB\\fR] [\\fIARGUMENTS\\fR] [\\fIOPTIONS\\fR]\n";
    return ".B " + escaped(program.app.get_name()) + "\n" + text;
}

} // namespace

std::vector<const CLI::App*> shownVerbs(const CLI::App& app) {
    return app.get_subcommands([](const CLI::App* verb) { return !verb->get_group().empty(); });
}

std::vector<const CLI::Option*> shownOptions(const CLI::App& app) {
    return app.get_options([](const CLI::Option* option) { return !option->get_group().empty(); });
}

std::string manualPage(const Program& program) {
    const CLI::App& app = program.app;
    const std::string name = escaped(app.get_name());
    std::string page = ".TH " + inCapitals(name) + " 1 \"\" \"orvane " + program.version + "\"\n.SH NAME\n" +
                       name + " \\- " + escaped(app.get_description()) + "\n.SH SYNOPSIS\n" +
                       synopsisOf(program);
    page += ".SH OPTIONS\n" + optionsOf(app, true) + optionsOf(app, false);
    if (!shownVerbs(app).empty())
        page += ".SH VERBS\n";
    describe(app, "", page);
    return page + ".SH NOTES\n" + verbatim(app.get_footer());
}

std::string document(const Program& program, const std::string& which) {
    return which == "man" ? manualPage(program) : bashCompletion(program);
}

void addDocuments(CLI::App& app, const Program& program) {
    app.add_option_function<std::string>(
           "--generate",
           [program](const std::string& which) {
               std::string text = document(program, which);
               text.pop_back(); // the parser ends the line
               throw CLI::CallForVersion(text, 0);
           },
           "man or bash")
        ->check(CLI::IsMember({"man", "bash"}))
        ->trigger_on_parse()
        ->group("");
}

} // namespace OrvaneTool
