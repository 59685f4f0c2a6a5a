// Reads an XML file within bounds, and finds the lines of its elements.
#include "ov_sys/maps/Xml.h"

#include "ov_sys/maps/Numbers.h"

#include <algorithm>
#include <orvane/maps.hpp>

namespace Orvane::Maps {

namespace {

constexpr std::ptrdiff_t kMostNodes = 200'000;

unsigned lineAt(const std::string& text, std::ptrdiff_t offset) {
    const auto end =
        text.begin() + std::clamp<std::ptrdiff_t>(offset, 0, static_cast<std::ptrdiff_t>(text.size()));
    return 1 + static_cast<unsigned>(std::count(text.begin(), end, '\n'));
}

std::optional<std::uint64_t> numberOf(std::string text) {
    const std::size_t first = text.find_first_not_of(" \t\r\n");
    if (first == std::string::npos)
        return std::nullopt;
    text = text.substr(first, text.find_last_not_of(" \t\r\n") - first + 1);
    return numberIn(text[0] == '#' ? "0b" + text.substr(1) : text);
}

} // namespace

XmlFile::XmlFile(const std::string& file, std::string text) : text_(std::move(text)) {
    const auto refuse = [&](std::ptrdiff_t offset, std::string why) {
        throw MapError(std::vector<MapProblem>{{file, lineAt(text_, offset), {}, std::move(why)}});
    };
    if (const std::size_t type = text_.find("<!DOCTYPE"); type != std::string::npos)
        refuse(static_cast<std::ptrdiff_t>(type), "has a document type, which may hide anything");
    if (std::count_if(text_.begin(), text_.end(), [](char c) { return c == '<' || c == '='; }) > kMostNodes)
        refuse(0, "has more elements and attributes than 200000");
    const pugi::xml_parse_result result = document_.load_buffer(text_.data(), text_.size());
    if (!result)
        refuse(result.offset, std::string("is no XML: ") + result.description());
}

unsigned XmlFile::lineOf(pugi::xml_node node) const {
    return lineAt(text_, node.offset_debug());
}

std::string childText(pugi::xml_node node, const char* child) {
    return node.child(child).text().get();
}

std::optional<std::uint64_t> childNumber(pugi::xml_node node, const char* child) {
    return numberOf(childText(node, child));
}

std::optional<std::uint64_t> attributeNumber(pugi::xml_node node, const char* attribute) {
    return numberOf(node.attribute(attribute).value());
}

} // namespace Orvane::Maps
