// uHAL address tables: nodes within nodes, addresses in words of 32 bits, masks for fields.
#include "ov_sys/maps/Draft.h"
#include "ov_sys/maps/Xml.h"

#include <algorithm>
#include <cstring>

namespace Orvane::Maps {

namespace {

constexpr unsigned kDeepest = 8; // blocks
constexpr std::uint64_t kWord = 4;
constexpr std::uint64_t kMostWords = ~std::uint64_t{0} / kWord; // whose bytes can be counted

MapAccess accessOf(pugi::xml_node node, MapAccess inherited) {
    const std::string permission = node.attribute("permission").value();
    if (permission == "r" || permission == "read")
        return MapAccess::ro;
    if (permission == "w" || permission == "write")
        return MapAccess::wo;
    return permission.empty() ? inherited : MapAccess::rw;
}

bool isField(pugi::xml_node node) {
    return node.attribute("mask") && attributeNumber(node, "address").value_or(0) == 0;
}

bool isRegister(pugi::xml_node node) {
    for (const pugi::xml_node child : node.children("node"))
        if (!isField(child))
            return false;
    return true;
}

// The pieces of a mask, most significant first.
std::vector<MapBits> bitsOf(std::uint64_t mask) {
    std::vector<MapBits> bits;
    for (int high = 63; high >= 0; --high) {
        if ((mask >> high & 1U) == 0)
            continue;
        int low = high;
        while (low > 0 && (mask >> (low - 1) & 1U) != 0)
            --low;
        bits.push_back({static_cast<std::uint8_t>(high), static_cast<std::uint8_t>(low)});
        high = low;
    }
    return bits;
}

class Uhal {
public:
    Uhal(const XmlFile& xml, Draft& draft) : xml_(xml), draft_(draft) {}

    void read(pugi::xml_node node, std::vector<std::string> path, std::uint64_t base, MapAccess access) {
        for (const pugi::xml_node child : node.children()) {
            if (child.type() != pugi::node_element)
                continue;
            if (std::strcmp(child.name(), "node") != 0)
                draft_.ignore(std::string("element ") + child.name());
            else
                readNode(child, path, base, access);
        }
    }

private:
    void readNode(pugi::xml_node node, std::vector<std::string> path, std::uint64_t base, MapAccess access) {
        countIgnored(node);
        const std::uint64_t address = base + attributeNumber(node, "address").value_or(0);
        const std::string id = identifierOf(node.attribute("id").value());
        access = accessOf(node, access);
        if (node.attribute("module"))
            draft_.report(xml_.lineOf(node), id,
                          std::string("the file '") + node.attribute("module").value() +
                              "' is not followed; import it by itself");
        else if (isRegister(node))
            readRegister(node, std::move(path), address, access);
        else if (path.size() == kDeepest)
            draft_.report(xml_.lineOf(node), id, "lies deeper within nodes than 8; left out");
        else {
            path.push_back(id);
            read(node, std::move(path), address, access);
        }
    }

    void countIgnored(pugi::xml_node node) {
        for (const pugi::xml_attribute each : node.attributes()) {
            const std::string_view name = each.name();
            if (name == "tags" || name == "fwinfo" || name == "parameters" || name == "class")
                draft_.ignore("attribute " + std::string(name));
        }
    }

    void readRegister(pugi::xml_node node, std::vector<std::string> path, std::uint64_t address,
                      MapAccess access) {
        DraftRegister reg;
        reg.path = std::move(path);
        reg.name = node.attribute("id").value();
        reg.text = node.attribute("description").value();
        reg.access = access;
        reg.line = xml_.lineOf(node);
        const auto place = draft_.addressOf(std::min(address, kMostWords) * kWord, reg.line, reg.fullName());
        if (!place)
            return;
        reg.address = *place;
        readMode(node, reg);
        if (node.attribute("mask"))
            reg.fields.push_back(fieldOf(node, access));
        for (const pugi::xml_node child : node.children("node")) {
            countIgnored(child);
            reg.fields.push_back(fieldOf(child, access));
        }
        draft_.add(std::move(reg));
    }

    void readMode(pugi::xml_node node, DraftRegister& reg) {
        const std::string mode = node.attribute("mode").value();
        const auto size = attributeNumber(node, "size").value_or(0);
        if (mode == "incremental" || mode == "inc" || mode == "block") {
            reg.count = static_cast<std::uint32_t>(std::min<std::uint64_t>(size, 0xFFFFFFFF));
            reg.stride = draft_.strideOf(kWord);
        } else if (mode == "non-incremental" || mode == "non-inc" || mode == "port") {
            reg.sideEffects = true; // a queue: each access takes or gives an element
            draft_.report(reg.line, reg.fullName(),
                          "is a port of " + std::to_string(size) + " words; it became one register");
        }
    }

    static DraftField fieldOf(pugi::xml_node node, MapAccess access) {
        DraftField field;
        field.name = node.attribute("id").value();
        field.text = node.attribute("description").value();
        field.access = accessOf(node, access);
        field.bits = bitsOf(attributeNumber(node, "mask").value_or(0));
        return field;
    }

    const XmlFile& xml_;
    Draft& draft_;
};

} // namespace

ImportedMap importUhal(std::string text, Draft draft) {
    const XmlFile xml(draft.file(), std::move(text));
    const pugi::xml_node root = xml.root();
    Uhal(xml, draft).read(root, {}, attributeNumber(root, "address").value_or(0), MapAccess::rw);
    const std::string id = root.attribute("id").value();
    return draft.finish(id.empty() ? "imported" : id, root.attribute("description").value());
}

} // namespace Orvane::Maps
