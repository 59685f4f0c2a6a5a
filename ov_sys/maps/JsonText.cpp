// How members are separated, indented and quoted.
#include "ov_sys/maps/JsonText.h"

namespace Orvane::Maps {

void JsonText::begin(std::string_view name) {
    if (depth_ > 0)
        text_.append(isFirst_ ? "\n" : ",\n").append(2 * std::size_t{depth_}, ' ');
    isFirst_ = false;
    if (!name.empty()) {
        quote(name);
        text_ += ": ";
    }
}

void JsonText::quote(std::string_view string) {
    constexpr std::string_view kDigits = "0123456789abcdef";
    text_ += '"';
    for (const char c : string)
        if (c == '"' || c == '\\')
            text_.append(1, '\\').append(1, c);
        else if (static_cast<unsigned char>(c) < 0x20)
            text_.append("\\u00")
                .append(1, kDigits[static_cast<unsigned char>(c) >> 4U])
                .append(1, kDigits[c & 0xF]);
        else
            text_ += c;
    text_ += '"';
}

void JsonText::open(std::string_view name) {
    begin(name);
    text_ += '{';
    ++depth_;
    isFirst_ = true;
}

void JsonText::close() {
    --depth_;
    if (!isFirst_)
        text_.append("\n").append(2 * std::size_t{depth_}, ' ');
    text_ += '}';
    isFirst_ = false;
    if (depth_ == 0)
        text_ += '\n';
}

void JsonText::member(std::string_view name, std::string_view string) {
    begin(name);
    quote(string);
}

void JsonText::raw(std::string_view name, std::string_view value) {
    begin(name);
    text_ += value;
}

} // namespace Orvane::Maps
