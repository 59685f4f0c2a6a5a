// Elements of CMSIS-SVD as they are meant: derived from others, repeated, with access and bits in several
// spellings.
#pragma once

#include "ov_sys/maps/Draft.h"
#include "ov_sys/maps/Xml.h"

#include <unordered_map>

namespace Orvane::Maps {

// An element and those that it is derived from; a child that it lacks is that of the next one.
class SvdChain {
public:
    SvdChain(std::initializer_list<pugi::xml_node> nodes) : nodes_(nodes) {}

    void add(pugi::xml_node node) { nodes_.push_back(node); }
    pugi::xml_node front() const { return nodes_.front(); }
    pugi::xml_node find(const char* child) const;
    // The first that has registers or clusters in it.
    pugi::xml_node holder() const;
    std::string text(const char* child) const { return find(child).text().get(); }
    std::optional<std::uint64_t> number(const char* child) const;

private:
    std::vector<pugi::xml_node> nodes_;
};

// One of an array, or the only one.
struct SvdElement {
    std::string name; // an identifier, maybe with an index
    std::uint64_t offset = 0;
};

// "NAME%s" or "NAME[%s]" without the place of the index.
std::string svdPlainName(std::string name);

class SvdNodes {
public:
    SvdNodes(const XmlFile& xml, Draft& draft) : xml_(xml), draft_(draft) {}

    unsigned lineOf(pugi::xml_node node) const { return xml_.lineOf(node); }
    // Follows derivedFrom among the elements beside; a circle or a name that is not there is reported.
    SvdChain chainOf(pugi::xml_node node);
    MapAccess accessOf(const SvdChain& chain, MapAccess inherited);
    // What a read or a write does beside its access.
    void readEffects(const SvdChain& chain, MapAccess& access, bool& sideEffects);
    std::vector<MapBits> bitsOf(const SvdChain& field);
    std::vector<MapChoice> choicesOf(const SvdChain& field, const std::vector<MapBits>& bits);
    // 0: no array.
    std::uint32_t countOf(const SvdChain& chain);
    // Whether the elements are numbered from 0 on and the number ends the name.
    bool isPlainArray(const SvdChain& chain);
    std::vector<SvdElement> elementsOf(const SvdChain& chain);

private:
    pugi::xml_node sibling(pugi::xml_node node, const std::string& name);

    const XmlFile& xml_;
    Draft& draft_;
    std::unordered_map<std::size_t, std::unordered_map<std::string, pugi::xml_node>>
        siblings_; // by parent and name
};

} // namespace Orvane::Maps
