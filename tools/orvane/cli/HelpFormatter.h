// The look of --help.
#pragma once

#include <CLI/CLI.hpp>
#include <string>

namespace OrvaneTool {

// Usage lines show arguments by their names alone; the list of options shows values and environment
// variables.
class HelpFormatter : public CLI::Formatter {
public:
    HelpFormatter() { label("SUBCOMMAND", "VERB"); }
    std::string make_option_usage(const CLI::Option* option) const override;
    std::string make_option_opts(const CLI::Option* option) const override;
};

// An argument with what marks it as optional or repeatable.
std::string argumentText(const CLI::Option& option);

} // namespace OrvaneTool
