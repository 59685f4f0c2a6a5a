// Reads the definitions of a header, and evaluates them.
#include "tests/support/maps/LinuxConstants.h"

#include <fstream>
#include <regex>
#include <stdexcept>

namespace OrvaneTest {

namespace {

// Evaluates NUMBER, NAME, MACRO(NAME), (E), E | E, E << E.
class Expression {
public:
    Expression(const LinuxConstants& constants, std::string text)
        : constants_(constants), text_(std::move(text)) {}

    std::uint64_t evaluate() {
        std::uint64_t value = operand();
        for (skip(); at_ < text_.size() && text_[at_] != ')'; skip())
            if (take("|"))
                value |= operand();
            else if (take("<<"))
                value <<= operand();
            else
                throw std::runtime_error("cannot evaluate " + text_);
        return value;
    }

private:
    void skip() { at_ = std::min(text_.find_first_not_of(" \t", at_), text_.size()); }
    bool take(const std::string& token) {
        skip();
        if (text_.compare(at_, token.size(), token) != 0)
            return false;
        at_ += token.size();
        return true;
    }
    std::uint64_t inner() {
        const std::uint64_t value = evaluate();
        if (!take(")"))
            throw std::runtime_error("')' is missing in " + text_);
        return value;
    }
    std::uint64_t operand() {
        if (take("("))
            return inner();
        skip();
        const std::size_t end = text_.find_first_of(" \t()|<", at_);
        const std::string word = text_.substr(at_, end - at_);
        at_ = std::min(end, text_.size());
        if (!word.empty() && word[0] >= '0' && word[0] <= '9')
            return std::stoull(word, nullptr, 0);
        if (word == "MDIO_DEVS_PRESENT" && take("("))
            return std::uint64_t{1} << inner();
        return constants_.value(word).value();
    }

    const LinuxConstants& constants_;
    std::string text_;
    std::size_t at_ = 0;
};

} // namespace

void LinuxConstants::read(const std::string& path) {
    std::ifstream file(path);
    std::string text{std::istreambuf_iterator<char>(file), {}};
    text = std::regex_replace(text, std::regex(R"(\\\n)"), " ");
    text = std::regex_replace(text, std::regex(R"(/\*([^*]|\*[^/])*\*/)"), " ");
    const std::regex define(R"((?:^|\n)#define[ \t]+(\w+)(\([^)]*\))?[ \t]*([^\n]*))");
    for (std::sregex_iterator each(text.begin(), text.end(), define), end; each != end; ++each) {
        const std::string body = std::regex_replace((*each)[3].str(), std::regex(R"(\s+$)"), "");
        if (body.empty())
            continue;
        names_.push_back((*each)[1]);
        definitions_[(*each)[1]] = {(*each)[2].matched, body};
    }
}

std::optional<std::uint64_t> LinuxConstants::value(const std::string& name) const {
    const auto found = definitions_.find(name);
    if (found == definitions_.end() || found->second.isFunction)
        return std::nullopt;
    return Expression(*this, found->second.text).evaluate();
}

} // namespace OrvaneTest
