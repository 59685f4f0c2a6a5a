// The completion script, made from what the parser knows.
#include "tools/orvane/generate/Generate.h"

#include <fmt/format.h>

namespace OrvaneTool {
namespace {

std::string wordsOf(const CLI::App& app) {
    std::string words;
    for (const CLI::App* verb : shownVerbs(app))
        words += verb->get_name() + " ";
    for (const CLI::Option* option : app.get_options()) {
        for (const std::string& name : option->get_lnames())
            words += "--" + name + " ";
        for (const std::string& name : option->get_snames())
            words += "-" + name + " ";
    }
    return words.substr(0, words.size() - 1);
}

// One line for each verb: what may stand behind it.
void addCases(const CLI::App& app, const std::string& path, std::string& script) {
    script += fmt::format("    '{}') words='{}' ;;\n", path, wordsOf(app));
    for (const CLI::App* verb : shownVerbs(app))
        addCases(*verb, path + " " + verb->get_name(), script);
}

// The verbs whose arguments may be names of registers.
std::string namingPaths(const CLI::App& app, const std::string& path) {
    std::string paths;
    for (const CLI::App* verb : shownVerbs(app)) {
        const std::string name = path + " " + verb->get_name();
        if (verb->get_option_no_throw("--map") != nullptr)
            paths += "'" + name + "' | ";
        paths += namingPaths(*verb, name);
    }
    return paths;
}

std::string verbPaths(const CLI::App& app, const std::string& path) {
    std::string paths;
    for (const CLI::App* verb : shownVerbs(app)) {
        const std::string name = path + " " + verb->get_name();
        paths += "'" + name + "' | " + verbPaths(*verb, name);
    }
    return paths;
}

} // namespace

std::string bashCompletion(const CLI::App& app) {
    std::string paths = verbPaths(app, "orvane");
    paths = paths.substr(0, paths.rfind(" | "));
    std::string naming = namingPaths(app, "orvane");
    naming = naming.substr(0, naming.rfind(" | "));
    std::string script =
        "# bash completion for orvane, made from its own definitions\n"
        "_orvane() {\n"
        "    local current=${COMP_WORDS[COMP_CWORD]} path=orvane words word before= maps=()\n"
        "    for word in \"${COMP_WORDS[@]:1:COMP_CWORD-1}\"; do\n"
        "        [[ $before == --map ]] && maps+=(--map \"$word\")\n"
        "        before=$word\n"
        "        case \"$path $word\" in\n";
    script += "        " + paths + ") path+=\" $word\" ;;\n";
    script += "        esac\n    done\n    case $path in\n";
    addCases(app, "orvane", script);
    return script +
           "    esac\n"
           "    case $path in\n"
           "    " +
           naming +
           ")\n"
           "        [[ $current == [A-Za-z_]* && $before != --map ]] &&\n"
           "            words+=\" $(orvane map complete \"${maps[@]}\" -- \"$current\" 2>/dev/null)\" ;;\n"
           "    esac\n"
           "    COMPREPLY=($(compgen -W \"$words\" -- \"$current\"))\n"
           "    [[ ${COMPREPLY[0]} == *. ]] && compopt -o nospace 2>/dev/null\n"
           "}\n"
           "complete -o default -F _orvane orvane\n";
}

} // namespace OrvaneTool
