// What a register tells of itself.
#include "ov_sys/maps/Content.h"

#include "ov_sys/maps/Numbers.h"

#include <algorithm>

namespace Orvane {

namespace {

// The bits whose access fits, those of no field included with the register's own.
template <class Fits>
std::uint64_t bitsOf(const MapDefinition& definition, Fits fits) {
    std::uint64_t fitting = 0;
    for (const MapField& field : definition.fields)
        fitting |= fits(field.access) ? field.mask : 0;
    return fits(definition.access) && definition.fields.empty() ? Maps::lowBits(definition.width) : fitting;
}

} // namespace

const std::string& MapRegister::text() const noexcept {
    return definition_->text;
}

unsigned MapRegister::width() const noexcept {
    return definition_->width;
}

std::optional<std::uint64_t> MapRegister::reset() const noexcept {
    return definition_->reset;
}

MapAccess MapRegister::access() const noexcept {
    return definition_->access;
}

const std::vector<MapField>& MapRegister::fields() const noexcept {
    return definition_->fields;
}

const MapField* MapRegister::field(std::string_view fieldName) const noexcept {
    for (const MapField& each : definition_->fields)
        if (each.name == fieldName)
            return &each;
    return nullptr;
}

std::optional<MapPage> MapRegister::page() const noexcept {
    if (select_ == nullptr)
        return std::nullopt;
    return MapPage{select_, selectField_, static_cast<std::uint32_t>(address_.page)};
}

bool MapRegister::isSafeToRead() const noexcept {
    return isReadable() && changedByReadMask() == 0 && !hasSideEffects();
}

bool MapRegister::hasSideEffects() const noexcept {
    return definition_->sideEffects || std::any_of(fields().begin(), fields().end(),
                                                   [](const MapField& each) { return each.sideEffects; });
}

bool MapRegister::isReadable() const noexcept {
    return bitsOf(*definition_, Orvane::isReadable) != 0;
}

bool MapRegister::isWritable() const noexcept {
    return writableMask() != 0;
}

std::uint64_t MapRegister::writableMask() const noexcept {
    return bitsOf(*definition_, Orvane::isWritable);
}

std::uint64_t MapRegister::changedByReadMask() const noexcept {
    return bitsOf(*definition_, Orvane::isChangedByRead);
}

std::string MapReference::name() const {
    if (reg == nullptr)
        return {};
    return field == nullptr ? reg->name() : reg->name() + '.' + field->name;
}

} // namespace Orvane
