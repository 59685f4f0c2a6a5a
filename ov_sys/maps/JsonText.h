// Writes JSON, one member a line.
#pragma once

#include <string>
#include <string_view>

namespace Orvane::Maps {

class JsonText {
public:
    // Begins the whole, or a member that is an object.
    void open(std::string_view name = {});
    void close();
    void member(std::string_view name, std::string_view string);
    void flag(std::string_view name) { raw(name, "true"); }
    // A value that is JSON already.
    void raw(std::string_view name, std::string_view value);
    // What was written, with a line end.
    const std::string& text() const { return text_; }

private:
    void begin(std::string_view name);
    void quote(std::string_view string);

    std::string text_;
    unsigned depth_ = 0;
    bool isFirst_ = true;
};

} // namespace Orvane::Maps
