// The manual page, made from what the parser knows.
#include "tools/orvane/generate/Generate.h"

#include "tools/orvane/cli/HelpFormatter.h"

#include <fmt/format.h>
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
    const std::string value = option.get_type_name();
    return escaped(names) + (value.empty() ? "" : " \\fI" + escaped(value) + "\\fR");
}

std::string optionsOf(const CLI::App& app, bool positional) {
    std::string text;
    for (const CLI::Option* option : app.get_options())
        if (option->get_positional() == positional && !option->get_group().empty())
            text += fmt::format(".TP\n\\fB{}\\fR\n{}\n", nameOf(*option), escaped(option->get_description()));
    return text;
}

void describe(const CLI::App& app, const std::string& prefix, std::string& page) {
    for (const CLI::App* verb : shownVerbs(app)) {
        const std::string name = prefix + verb->get_name();
        page += fmt::format(".SS {}\n{}.\n", escaped(name), escaped(verb->get_description()));
        page += optionsOf(*verb, true) + optionsOf(*verb, false);
        if (!verb->get_footer().empty() && verb->get_footer() != app.get_footer()) // not its parent's
            page += ".PP\n" + verbatim(verb->get_footer());
        describe(*verb, name + " ", page);
    }
}

} // namespace

std::vector<const CLI::App*> shownVerbs(const CLI::App& app) {
    return app.get_subcommands([](const CLI::App* verb) { return !verb->get_group().empty(); });
}

std::string manualPage(const CLI::App& app) {
    std::string page = fmt::format(".TH ORVANE 1 \"\" \"orvane {}\"\n.SH NAME\norvane \\- {}\n",
                                   ORVANE_VERSION, escaped(app.get_description()));
    page += ".SH SYNOPSIS\n.B orvane\n\\fIVERB\\fR [\\fIARGUMENTS\\fR] [\\fIOPTIONS\\fR]\n.SH VERBS\n";
    describe(app, "", page);
    page += ".SH EXIT STATUS AND ENVIRONMENT\n" + verbatim(app.get_footer());
    return page;
}

} // namespace OrvaneTool
