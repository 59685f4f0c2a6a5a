// What a map answers, from the content that its copies share.
#include "ov_sys/maps/Content.h"
#include "ov_sys/maps/Loader.h"

#include <algorithm>

namespace Orvane {

RegisterMap::RegisterMap() {
    static const auto kEmpty = std::make_shared<const MapContent>();
    content_ = kEmpty;
}

RegisterMap::RegisterMap(std::shared_ptr<const MapContent> content) : content_(std::move(content)) {}

RegisterMap RegisterMap::load(const std::string& path, const MapOptions& options) {
    return Maps::Loader(options).load(path);
}

RegisterMap RegisterMap::parse(std::string_view json, const std::string& name, const MapOptions& options) {
    return Maps::Loader(options).parse(json, name);
}

const std::string& RegisterMap::name() const noexcept {
    return content_->name;
}

const std::string& RegisterMap::text() const noexcept {
    return content_->text;
}

const std::vector<MapIdentifier>& RegisterMap::identifiers() const noexcept {
    return content_->identifiers;
}

bool RegisterMap::describes(std::uint32_t phyIdentifier) const noexcept {
    return std::any_of(identifiers().begin(), identifiers().end(),
                       [&](const MapIdentifier& each) { return (phyIdentifier & each.mask) == each.value; });
}

std::size_t RegisterMap::size() const noexcept {
    return content_->registers.size();
}

const std::vector<MapRegister>& RegisterMap::registers() const noexcept {
    return content_->registers;
}

std::vector<const MapRegister*> RegisterMap::inAddressOrder() const {
    std::vector<const MapRegister*> ordered;
    ordered.reserve(size());
    for (const MapRegister& each : registers())
        ordered.push_back(&each);
    std::sort(ordered.begin(), ordered.end(),
              [](const MapRegister* a, const MapRegister* b) { return a->address() < b->address(); });
    return ordered;
}

const MapRegister* RegisterMap::find(std::string_view name) const noexcept {
    return content_->find(name);
}

const MapRegister* RegisterMap::find(const MapAddress& address) const noexcept {
    return content_->find(address);
}

MapReference RegisterMap::resolve(std::string_view name) const noexcept {
    return content_->resolve(name);
}

std::vector<DecodedField> RegisterMap::decode(const MapRegister& reg, std::uint64_t value) {
    std::vector<DecodedField> decoded;
    decoded.reserve(reg.fields().size());
    for (const MapField& field : reg.fields()) {
        const std::uint64_t raw = field.extract(value);
        decoded.push_back({&field, raw, field.number(raw), field.scaled(raw), field.choice(raw)});
    }
    std::sort(decoded.begin(), decoded.end(), [](const DecodedField& a, const DecodedField& b) {
        return a.field->bits.front().high > b.field->bits.front().high;
    });
    return decoded;
}

} // namespace Orvane
