// What each kind of access means.
#include <orvane/maps.hpp>

namespace Orvane {

namespace {

struct Meaning {
    const char* name;
    bool readable;
    bool writable;
    bool changedByRead;
};

// In the order of the enumeration.
constexpr Meaning kMeanings[] = {
    {"ro", true, false, false},           {"rw", true, true, false},
    {"wo", false, true, false},           {"w1c", true, true, false},
    {"self-clearing", true, true, false}, {"latching-low", true, false, true},
    {"latching-high", true, false, true}, {"clear-on-read", true, false, true},
    {"reserved", true, false, false},
};

const Meaning& meaningOf(MapAccess access) {
    return kMeanings[static_cast<unsigned>(access)];
}

} // namespace

const char* nameOf(MapAccess access) noexcept {
    return meaningOf(access).name;
}

bool isWritable(MapAccess access) noexcept {
    return meaningOf(access).writable;
}

bool isReadable(MapAccess access) noexcept {
    return meaningOf(access).readable;
}

bool isChangedByRead(MapAccess access) noexcept {
    return meaningOf(access).changedByRead;
}

} // namespace Orvane
