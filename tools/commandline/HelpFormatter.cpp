// The usage line, the options' arguments and the breaking of lines in help.
#include "tools/commandline/HelpFormatter.h"

#include "tools/commandline/Wrap.h"

#include <algorithm>
#include <sstream>

namespace OrvaneTool {
namespace {

constexpr std::size_t kNarrowest = 40; // terminals are treated as at least so wide
constexpr std::size_t kNames = 30;     // columns of the names of options and verbs, on a wide terminal

// Lines behind the first begin below the first word, at column `indent`.
std::string indented(const std::string& text, std::size_t width, std::size_t indent) {
    std::string lines = wrapped(text, width - std::min(width, indent), 0);
    for (std::size_t end = 0; (end = lines.find('\n', end)) != std::string::npos; end += indent + 1)
        lines.insert(end + 1, indent, ' ');
    return lines;
}

// A command, and behind some blanks what it does. What does not fit stays in its column where that is wide
// enough, and goes below else.
std::string exampleLine(const std::string& line, std::size_t width) {
    constexpr std::size_t kBelow = 6;
    constexpr std::size_t kWideEnough = 30;
    const std::size_t begin = line.find_first_not_of(' ');
    const std::size_t gap = line.find("   ", begin);
    const std::size_t column = std::min(line.find_first_not_of(' ', gap), line.size());
    if (column + kWideEnough <= width)
        return line.substr(0, column) + indented(line.substr(column), width, column);
    const bool example = line.compare(begin, 6, "orvane") == 0; // that may be typed as it is
    const std::string command = line.substr(0, begin) + wrapped(line.substr(begin, gap - begin),
                                                                width - begin, kBelow, example ? " \\" : "");
    return gap == std::string::npos
               ? command
               : command + "\n" + std::string(kBelow, ' ') + indented(line.substr(column), width, kBelow);
}

// Whether it is no prose, which may be filled up with what follows.
bool isExample(const std::string& line) {
    const std::size_t begin = line.find_first_not_of(' ');
    return begin == std::string::npos || begin > 1 || line.compare(begin, 6, "orvane") == 0 ||
           line.find("   ", begin) != std::string::npos || line.back() == ':';
}

std::string fitted(const std::string& line, std::size_t width) {
    if (line.size() <= width)
        return line;
    const std::size_t indent = line.find_first_not_of(' ');
    return line.compare(indent, 6, "orvane") == 0 || line.find("   ", indent) != std::string::npos
               ? exampleLine(line, width)
               : line.substr(0, indent) + indented(line.substr(indent), width, indent);
}

} // namespace

std::string argumentText(const CLI::Option& option) {
    constexpr int kRepeatable = 100;
    const std::string name = option.get_name(true);
    const std::string text = name + (option.get_expected_max() > kRepeatable ? "..." : "");
    return option.get_required() ? text : "[" + text + "]";
}

HelpFormatter::HelpFormatter(unsigned width) : width_(std::max<std::size_t>(width, kNarrowest)) {
    label("SUBCOMMAND", "VERB");
    column_width(std::min(kNames, width_ / 3));
}

std::string HelpFormatter::make_option_usage(const CLI::Option* option) const {
    return argumentText(*option);
}

std::string HelpFormatter::make_option_opts(const CLI::Option* option) const {
    std::string text;
    if (!option->get_positional() && option->get_type_size() != 0 && !option->get_type_name().empty())
        text += " " + option->get_type_name();
    if (!option->get_envname().empty())
        text += " ($" + option->get_envname() + ")";
    return text;
}

std::string HelpFormatter::beside(const std::string& text) const {
    return wrapped(text, width_ - column_width_, 0);
}

std::string HelpFormatter::make_option_desc(const CLI::Option* option) const {
    return beside(option->get_description());
}

std::string HelpFormatter::make_subcommand(const CLI::App* verb) const {
    std::ostringstream text;
    CLI::detail::format_help(text, verb->get_display_name(true), beside(verb->get_description()),
                             column_width_);
    return text.str();
}

std::string HelpFormatter::make_usage(const CLI::App* app, std::string name) const {
    constexpr std::size_t kBelow = 7; // under the first word behind "Usage: "
    std::string line = CLI::Formatter::make_usage(app, std::move(name));
    line.pop_back(); // its end
    return wrapped(line, width_, kBelow) + "\n";
}

std::string HelpFormatter::make_description(const CLI::App* app) const {
    return wrapped(app->get_description(), width_, 0) + "\n";
}

std::string HelpFormatter::make_footer(const CLI::App* app) const {
    std::istringstream lines(app->get_footer());
    std::string text;
    std::string prose; // so far
    const auto end = [&] {
        text += prose.empty() ? "" : fitted(prose, width_) + "\n";
        prose.clear();
    };
    for (std::string line; std::getline(lines, line);) {
        if (isExample(line)) {
            end();
            text += fitted(line, width_) + "\n";
        } else {
            prose += prose.empty() ? line : " " + line.substr(line.find_first_not_of(' '));
        }
    }
    end();
    return text;
}

} // namespace OrvaneTool
