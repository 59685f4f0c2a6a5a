// The usage line and the options' arguments in help.
#include "tools/orvane/cli/HelpFormatter.h"

namespace OrvaneTool {

std::string argumentText(const CLI::Option& option) {
    constexpr int kRepeatable = 100;
    const std::string name = option.get_name(true);
    const std::string text = name + (option.get_expected_max() > kRepeatable ? "..." : "");
    return option.get_required() ? text : "[" + text + "]";
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

} // namespace OrvaneTool
