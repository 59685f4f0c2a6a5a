// The one way in which the library writes its diagnostic lines.
#pragma once

#include <cstdio>
#include <sstream>
#include <string>
#include <utility>

namespace Orvane::Diagnostics {

// Writes `text` to `stream` with a single write, so that lines of several threads never mix, and flushes.
// `text` carries its own line ends. Safe in any thread; never throws; write errors are ignored.
void write(std::FILE* stream, const std::string& text) noexcept;

// Joins the parts as operator<< would and writes them, with a line end, to the standard error stream.
template <class... Parts>
void error(Parts&&... parts) {
    std::ostringstream line;
    (line << ... << std::forward<Parts>(parts)) << '\n';
    write(stderr, line.str());
}

// As error(), to the standard output stream.
template <class... Parts>
void output(Parts&&... parts) {
    std::ostringstream line;
    (line << ... << std::forward<Parts>(parts)) << '\n';
    write(stdout, line.str());
}

} // namespace Orvane::Diagnostics
