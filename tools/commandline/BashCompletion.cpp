// The completion script, made from what the parser knows.
#include "tools/commandline/Documents.h"

#include <algorithm>

namespace OrvaneTool {
namespace {

std::string wordsOf(const Program& program, const CLI::App& app, const std::string& path) {
    std::string words;
    for (const CLI::App* verb : shownVerbs(app))
        words += verb->get_name() + " ";
    for (const CLI::Option* option : shownOptions(app)) {
        for (const std::string& name : option->get_lnames())
            words += "--" + name + " ";
        for (const std::string& name : option->get_snames())
            words += "-" + name + " ";
    }
    const auto more = program.words.find(path);
    return words + (more != program.words.end() ? more->second : "");
}

// One line for each verb: what may stand behind it.
void addCases(const Program& program, const CLI::App& app, const std::string& path, std::string& script) {
    script += "    '" + path + "') words='" + wordsOf(program, app, path) + "' ;;\n";
    for (const CLI::App* verb : shownVerbs(app))
        addCases(program, *verb, path + " " + verb->get_name(), script);
}

// The paths of the verbs for which `has` is true, as a pattern of bash's case.
template <class Has>
std::string pathsOf(const CLI::App& app, const std::string& path, Has has) {
    std::string paths;
    for (const CLI::App* verb : shownVerbs(app)) {
        const std::string name = path + " " + verb->get_name();
        if (has(*verb))
            paths += "'" + name + "' | ";
        paths += pathsOf(*verb, name, has);
    }
    return paths;
}

template <class Has>
std::string patternOf(const CLI::App& app, Has has) {
    const std::string paths = pathsOf(app, app.get_name(), has);
    return paths.substr(0, paths.rfind(" | "));
}

// `commands` where the path is one of these, if there are any.
std::string whereIts(const std::string& pattern, const std::string& commands) {
    return pattern.empty() ? "" : "    case $path in\n    " + pattern + ")\n" + commands + "    esac\n";
}

bool takesNames(const CLI::App& verb) {
    return verb.get_option_no_throw("--map") != nullptr;
}

// A device by its place, or by an option such as --to.
bool takesDevice(const CLI::App& verb) {
    for (const CLI::Option* option : verb.get_options())
        if (option->get_positional() && option->get_name(true).compare(0, 6, "DEVICE") == 0)
            return true;
    return verb.get_option_no_throw("--to") != nullptr;
}

constexpr const char* kNames =
    "        [[ $current == [A-Za-z_]* && $before != --map ]] &&\n"
    "            words+=\" $(orvane map complete \"${maps[@]}\" -- \"$current\" 2>/dev/null)\" ;;\n";

constexpr const char* kDevices =
    "        # Names of devices have colons, at which bash breaks words: it is given what is behind the "
    "last.\n"
    "        whole=${COMP_LINE:0:COMP_POINT} whole=${whole##*[[:space:]]}\n"
    "        [[ $whole == -* || $current == -* ]] ||\n"
    "            for word in $(compgen -W \"$(orvane complete devices 2>/dev/null)\" -- "
    "\"${whole:-$current}\"); do\n"
    "                COMPREPLY+=(\"${word#\"${whole%\"${whole##*:}\"}\"}\")\n"
    "            done ;;\n";

// The command behind --, and then its files.
constexpr const char* kCommand =
    "    for ((i = 1; i < COMP_CWORD; i++)); do\n"
    "        if [[ ${COMP_WORDS[i]} == -- ]]; then\n"
    "            ((i + 1 == COMP_CWORD)) && COMPREPLY=($(compgen -c -- \"$current\"))\n"
    "            return\n"
    "        fi\n"
    "    done\n";

} // namespace

std::string bashCompletion(const Program& program) {
    const CLI::App& app = program.app;
    const std::string name = app.get_name();
    std::string function = "_" + name;
    std::replace(function.begin(), function.end(), '-', '_');
    std::string script = "# bash completion for " + name + ", made from its own definitions\n" + function +
                         "() {\n"
                         "    local current=${COMP_WORDS[COMP_CWORD]} path=" +
                         name + " words word whole before= maps=() i\n";
    script += program.runsCommand ? kCommand : "";
    script += "    for word in \"${COMP_WORDS[@]:1:COMP_CWORD-1}\"; do\n"
              "        [[ $before == --map ]] && maps+=(--map \"$word\")\n"
              "        before=$word\n"
              "        case \"$path $word\" in\n"
              "        " +
              patternOf(app, [](const CLI::App&) { return true; }) +
              ") path+=\" $word\" ;;\n"
              "        esac\n    done\n    case $path in\n";
    addCases(program, app, name, script);
    script += "    esac\n" + whereIts(patternOf(app, takesNames), kNames) +
              "    COMPREPLY=($(compgen -W \"$words\" -- \"$current\"))\n" +
              whereIts(patternOf(app, takesDevice), kDevices);
    return script +
           "    [[ ${COMPREPLY[0]} == *. ]] && compopt -o nospace 2>/dev/null\n"
           "}\n"
           "complete -o default -F " +
           function + " " + name + "\n"; // files where nothing else fits
}

} // namespace OrvaneTool
