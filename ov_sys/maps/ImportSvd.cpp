// CMSIS-SVD: peripherals, clusters and registers at byte addresses, with fields and enumerated values.
#include "ov_sys/maps/Draft.h"
#include "ov_sys/maps/Numbers.h"
#include "ov_sys/maps/SvdNodes.h"

#include <algorithm>

namespace Orvane::Maps {

namespace {

constexpr std::size_t kDeepest = 8; // blocks

// What registers take from what they lie in.
struct Scope {
    std::vector<std::string> path;
    std::uint64_t base = 0;
    std::uint64_t width = 32;
    MapAccess access = MapAccess::rw;
    std::optional<std::uint64_t> reset;
};

class Svd {
public:
    Svd(const XmlFile& xml, Draft& draft) : nodes_(xml, draft), draft_(draft) {}

    void readDevice(pugi::xml_node device) {
        Scope scope;
        update(scope, {device});
        for (const char* each : {"cpu", "vendorExtensions"})
            if (device.child(each))
                draft_.ignore(std::string("element ") + each);
        for (const pugi::xml_node peripheral : device.child("peripherals").children("peripheral"))
            readPeripheral(peripheral, scope);
    }

private:
    // Size, access and reset, which go down to all that lies within.
    void update(Scope& scope, const SvdChain& chain) {
        scope.width = chain.number("size").value_or(scope.width);
        scope.access = nodes_.accessOf(chain, scope.access);
        if (const auto reset = chain.number("resetValue"))
            scope.reset = reset;
    }

    void readPeripheral(pugi::xml_node peripheral, Scope scope) {
        const SvdChain chain = nodes_.chainOf(peripheral);
        update(scope, chain);
        scope.base = chain.number("baseAddress").value_or(0);
        for (const char* each :
             {"interrupt", "addressBlock", "alternatePeripheral", "prependToName", "appendToName"})
            if (chain.find(each))
                draft_.ignore(std::string("element ") + each);
        const auto elements = nodes_.elementsOf(chain);
        for (const SvdElement& each : elements) {
            Scope inner = scope;
            inner.path = {each.name};
            inner.base += each.offset;
            readRegisters(chain.find("registers"), inner);
        }
    }

    void readRegisters(pugi::xml_node list, const Scope& scope) {
        for (const pugi::xml_node each : list.children())
            if (std::string_view(each.name()) == "register")
                readRegister(each, scope);
            else if (std::string_view(each.name()) == "cluster")
                readCluster(each, scope);
    }

    void readCluster(pugi::xml_node cluster, Scope scope) {
        const SvdChain chain = nodes_.chainOf(cluster);
        if (scope.path.size() == kDeepest) {
            draft_.report(nodes_.lineOf(cluster), chain.text("name"),
                          "lies deeper within clusters than 8; left out");
            return;
        }
        update(scope, chain);
        scope.base += chain.number("addressOffset").value_or(0);
        for (const SvdElement& each : nodes_.elementsOf(chain)) {
            Scope inner = scope;
            inner.path.push_back(each.name);
            inner.base += each.offset;
            readRegisters(chain.holder(), inner);
        }
    }

    void readRegister(pugi::xml_node node, Scope scope) {
        const SvdChain chain = nodes_.chainOf(node);
        update(scope, chain);
        for (const char* each :
             {"alternateRegister", "alternateGroup", "writeConstraint", "resetMask", "dataType"})
            if (chain.find(each))
                draft_.ignore(std::string("element ") + each);
        DraftRegister reg;
        reg.path = scope.path;
        reg.text = chain.text("description");
        reg.line = nodes_.lineOf(node);
        reg.width = scope.width == 8 || scope.width == 16 || scope.width == 64
                        ? static_cast<unsigned>(scope.width)
                        : 32;
        reg.reset =
            scope.reset ? std::optional<std::uint64_t>(*scope.reset & lowBits(reg.width)) : std::nullopt;
        reg.access = scope.access;
        nodes_.readEffects(chain, reg.access, reg.sideEffects);
        readFields(chain, reg);
        place(chain, scope.base + chain.number("addressOffset").value_or(0), std::move(reg));
    }

    void place(const SvdChain& chain, std::uint64_t bytes, DraftRegister reg) {
        if (nodes_.isPlainArray(chain)) {
            reg.name = svdPlainName(chain.text("name"));
            reg.count = nodes_.countOf(chain);
            reg.stride = draft_.strideOf(chain.number("dimIncrement").value_or(0));
            add(std::move(reg), bytes);
            return;
        }
        for (const SvdElement& each : nodes_.elementsOf(chain)) {
            DraftRegister one = reg;
            one.name = each.name;
            add(std::move(one), bytes + each.offset);
        }
    }

    void add(DraftRegister reg, std::uint64_t bytes) {
        if (const auto address = draft_.addressOf(bytes, reg.line, reg.fullName())) {
            reg.address = *address;
            draft_.add(std::move(reg));
        }
    }

    void readFields(const SvdChain& chain, DraftRegister& reg) {
        for (const pugi::xml_node node : chain.find("fields").children("field")) {
            const SvdChain field = nodes_.chainOf(node);
            if (reg.fields.size() == 64) {
                draft_.report(nodes_.lineOf(node), field.text("name"),
                              "is one field more than a register has bits");
                return;
            }
            DraftField made;
            made.name = field.text("name");
            made.text = field.text("description");
            made.bits = nodes_.bitsOf(field);
            made.access = nodes_.accessOf(field, reg.access);
            nodes_.readEffects(field, made.access, made.sideEffects);
            made.choices = nodes_.choicesOf(field, made.bits);
            reg.fields.push_back(std::move(made));
        }
    }

    SvdNodes nodes_;
    Draft& draft_;
};

} // namespace

ImportedMap importSvd(std::string text, Draft draft) {
    const XmlFile xml(draft.file(), std::move(text));
    const pugi::xml_node device = xml.root();
    Svd(xml, draft).readDevice(device);
    const std::string name = childText(device, "name");
    return draft.finish(name.empty() ? "imported" : name, childText(device, "description"));
}

} // namespace Orvane::Maps
