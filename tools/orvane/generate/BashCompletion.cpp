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
    const std::string paths = pathsOf(app, "orvane", has);
    return paths.substr(0, paths.rfind(" | "));
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

} // namespace

std::string bashCompletion(const CLI::App& app) {
    std::string script =
        "# bash completion for orvane, made from its own definitions\n"
        "_orvane() {\n"
        "    local current=${COMP_WORDS[COMP_CWORD]} path=orvane words word whole before= maps=()\n"
        "    for word in \"${COMP_WORDS[@]:1:COMP_CWORD-1}\"; do\n"
        "        [[ $before == --map ]] && maps+=(--map \"$word\")\n"
        "        before=$word\n"
        "        case \"$path $word\" in\n";
    script += "        " + patternOf(app, [](const CLI::App&) { return true; }) + ") path+=\" $word\" ;;\n";
    script += "        esac\n    done\n    case $path in\n";
    addCases(app, "orvane", script);
    return script +
           "    esac\n"
           "    case $path in\n"
           "    " +
           patternOf(app, takesNames) +
           ")\n"
           "        [[ $current == [A-Za-z_]* && $before != --map ]] &&\n"
           "            words+=\" $(orvane map complete \"${maps[@]}\" -- \"$current\" 2>/dev/null)\" ;;\n"
           "    esac\n"
           "    COMPREPLY=($(compgen -W \"$words\" -- \"$current\"))\n"
           "    # Names of devices have colons, at which bash breaks words: it is given what is behind the "
           "last.\n"
           "    case $path in\n"
           "    " +
           patternOf(app, takesDevice) +
           ")\n"
           "        whole=${COMP_LINE:0:COMP_POINT} whole=${whole##*[[:space:]]}\n"
           "        [[ $whole == -* || $current == -* ]] ||\n"
           "            for word in $(compgen -W \"$(orvane complete devices 2>/dev/null)\" -- "
           "\"${whole:-$current}\"); do\n"
           "                COMPREPLY+=(\"${word#\"${whole%\"${whole##*:}\"}\"}\")\n"
           "            done ;;\n"
           "    esac\n"
           "    [[ ${COMPREPLY[0]} == *. ]] && compopt -o nospace 2>/dev/null\n"
           "}\n"
           "complete -o default -F _orvane orvane\n"; // files where nothing else fits
}

} // namespace OrvaneTool
