// XML files that others wrote.
#pragma once

#include <optional>
#include <pugixml.hpp>
#include <string>

namespace Orvane::Maps {

// A file's tree, of at most 200,000 elements, attributes and comments, without a document type: no entity of
// its own can grow. Throws MapError.
class XmlFile {
public:
    XmlFile(const std::string& file, std::string text);

    pugi::xml_node root() const { return document_.document_element(); }
    unsigned lineOf(pugi::xml_node node) const;

private:
    std::string text_;
    pugi::xml_document document_;
};

// The text of a child element; empty: none.
std::string childText(pugi::xml_node node, const char* child);

// The number in a child element or an attribute, as 10, 0x1F, 0b101 or #101; none: no such, or no number.
std::optional<std::uint64_t> childNumber(pugi::xml_node node, const char* child);
std::optional<std::uint64_t> attributeNumber(pugi::xml_node node, const char* attribute);

} // namespace Orvane::Maps
