// The look of --help.
#pragma once

#include <CLI/CLI.hpp>
#include <string>

namespace OrvaneTool {

// Usage lines show arguments by their names alone; the list of options shows values and environment
// variables. No line is wider than the terminal, and none ends inside a word.
class HelpFormatter : public CLI::Formatter {
public:
    // `width`: of the terminal, in characters.
    explicit HelpFormatter(unsigned width);
    std::string make_option_usage(const CLI::Option* option) const override;
    std::string make_option_opts(const CLI::Option* option) const override;
    std::string make_option_desc(const CLI::Option* option) const override;
    std::string make_subcommand(const CLI::App* verb) const override;
    std::string make_usage(const CLI::App* app, std::string name) const override;
    std::string make_description(const CLI::App* app) const override;
    std::string make_footer(const CLI::App* app) const override;

private:
    // What stands beside names, in lines that fit there.
    std::string beside(const std::string& text) const;

    std::size_t width_;
};

// An argument with what marks it as optional or repeatable.
std::string argumentText(const CLI::Option& option);

} // namespace OrvaneTool
