/* Register maps: names, fields and meanings of a PHY's registers, for C++17.
 *
 * A map is loaded from a JSON file (docs/maps.md), imported, or built in (RegisterMap::ieee8023()). It knows
 * nothing of boards: it turns names into addresses and values into text.
 *
 * Names. A register is named by the blocks that it lies in and itself, "AN.STATUS"; an element of an array
 * carries its index, "LANE[2].CTRL"; a field follows its register, "AN.STATUS.LINK". Upper and lower case
 * differ.
 *
 * Ownership. A RegisterMap is a shared handle: copies are cheap and name the same map, which never changes.
 * Pointers, references and views that it hands out live as long as any copy of it.
 *
 * Threads. Any thread may use any map, without locks.
 *
 * Errors. Functions throw MapError, and std::bad_alloc; nothing is printed. Only load() and importFile() read
 * files and may block on them; no other function blocks. */
#pragma once

#include "ov_sys/Interface/foundation/Export.h"

#include <cstddef>
#include <cstdint>
#include <exception>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace Orvane {

// How a register is reached.
enum class MapSpace : std::uint8_t {
    c45,   // Clause 45: an MMD, 0 to 31, and a number, 0 to 0xFFFF
    c22,   // Clause 22: a number, 0 to 31
    ext32, // the 32-bit extension: an address in bytes, 32 bits
    smbus  // a command or address of an SMBus device, 32 bits
};

// What a read and a write do to a register or a field.
enum class MapAccess : std::uint8_t {
    ro,
    rw,
    wo,
    w1c,          // readable; writing ones clears
    selfClearing, // readable and writable; returns to 0 by itself
    latchingLow,  // read-only; holds a 0 until it is read
    latchingHigh, // read-only; holds a 1 until it is read
    clearOnRead,  // read-only; a read sets it to 0
    reserved      // of unknown use: a write keeps what was read
};

// The word of the source form, as "latching-low".
ORVANE_API const char *nameOf(MapAccess access) noexcept;
// "c45", "c22", "ext32" or "smbus".
ORVANE_API const char *nameOf(MapSpace space) noexcept;
// Whether a write may change what has this access.
ORVANE_API bool isWritable(MapAccess access) noexcept;
// Whether a read tells its value.
ORVANE_API bool isReadable(MapAccess access) noexcept;
// Whether a read changes it: latching-low, latching-high and clear-on-read.
ORVANE_API bool isChangedByRead(MapAccess access) noexcept;

// Where a register is.
struct ORVANE_API MapAddress {
    MapSpace space = MapSpace::c45;
    std::uint8_t mmd = 0;     // of c45; 0 in the other spaces
    std::uint32_t number = 0; // of the register within its space or MMD
    std::int64_t page = -1;   // what the select register holds while it is reached; -1: reached on any page

    // "7.0x0001", "c22:0x01", "ext32:0x80004000", "smbus:0x10"; a page follows as "@3".
    std::string text() const;
    // Reads what text() writes; numbers also decimal. Throws MapError.
    static MapAddress parse(std::string_view text);

    // Space, MMD, number and page.
    friend bool operator==(const MapAddress &a, const MapAddress &b) noexcept {
        return a.number == b.number && a.mmd == b.mmd && a.space == b.space && a.page == b.page;
    }
    // The opposite.
    friend bool operator!=(const MapAddress &a, const MapAddress &b) noexcept { return !(a == b); }
    // By space, MMD, page and number.
    friend ORVANE_API bool operator<(const MapAddress &a, const MapAddress &b) noexcept;
};

// A finding about a file.
struct ORVANE_API MapProblem {
    std::string file;  // empty: does not concern a file
    unsigned line = 0; // from 1; 0: none in particular
    std::string path;  // of the member, as "blocks.AN.registers.STATUS.reset"; empty: the whole
    std::string message;

    std::string text() const; // "FILE:LINE: PATH: MESSAGE", less what is empty
};

// What is wrong with a file, a name or a value; all problems at once.
class ORVANE_API MapError : public std::exception {
public:
    // One problem that concerns no file, or several. Copies share nothing.
    explicit MapError(std::string message);
    explicit MapError(std::vector<MapProblem> problems);
    ~MapError() override;
    // As it was.
    MapError(const MapError &) = default;
    MapError &operator=(const MapError &) = default;
    // One problem a line, without a line end after the last.
    const char *what() const noexcept override;
    // At least one; those beyond the two hundredth are only counted, by the last.
    const std::vector<MapProblem> &problems() const noexcept { return problems_; }

private:
    std::vector<MapProblem> problems_;
    std::string text_;
};

// Neighbouring bits of a register, `high` and `low` included, 0 to 63.
struct MapBits {
    std::uint8_t high = 0;
    std::uint8_t low = 0;
};

// One meaning of a field's value.
struct MapChoice {
    std::uint64_t value = 0; // raw, not negative
    std::string name;
};

// A part of a register with a name of its own.
struct ORVANE_API MapField {
    std::string name;          // without the register's
    std::string text;          // in words; may be empty
    std::vector<MapBits> bits; // most significant first; several where the field is in pieces
    std::uint64_t mask = 0;    // of all its bits, within the register
    unsigned width = 0;        // number of its bits
    MapAccess access = MapAccess::rw;
    bool sideEffects = false; // a read or a write does more than its access tells
    bool isSigned = false;    // two's complement
    bool isScaled = false;    // has a scale, an offset or a unit
    double scale = 1;         // meaning = number * scale + offset
    double offset = 0;
    std::string unit;
    std::vector<MapChoice> choices; // by value

    // The field's raw value within a register's.
    std::uint64_t extract(std::uint64_t registerValue) const noexcept;
    // The register's value with the field's bits replaced. Throws MapError, which names the field, when the
    // raw value has more bits than the field.
    std::uint64_t insert(std::uint64_t registerValue, std::uint64_t raw) const;
    // As a number: negative where the field is signed.
    std::int64_t number(std::uint64_t raw) const noexcept;
    // In its unit: number * scale + offset.
    double scaled(std::uint64_t raw) const noexcept;
    // The raw value of a scaled one, to the nearest. Throws MapError when it does not fit.
    std::uint64_t rawOf(double scaledValue) const;
    // The choice with this raw value; null: none.
    const MapChoice *choice(std::uint64_t raw) const noexcept;
    // The choice of this name; null: none.
    const MapChoice *choice(std::string_view choiceName) const noexcept;
    // The bits, most significant first, as "13,6" or "15:12".
    std::string bitsText() const;
};

class MapRegister;

// The select register or field of a page, and what it holds for it.
struct MapPage {
    const MapRegister *select = nullptr;
    const MapField *field = nullptr; // null: the whole register
    std::uint32_t value = 0;
};

struct MapDefinition;

// A register of a map.
class ORVANE_API MapRegister {
public:
    const std::string &name() const noexcept { return name_; }      // with its blocks'
    const MapAddress &address() const noexcept { return address_; } // where it is reached
    const std::string &text() const noexcept;                       // for people; may be empty
    unsigned width() const noexcept;                                // 8, 16, 32 or 64 bits
    std::optional<std::uint64_t> reset() const noexcept;            // none: not told
    MapAccess access() const noexcept;                    // of its fields, unless they say otherwise
    const std::vector<MapField> &fields() const noexcept; // in file order
    const MapField *field(std::string_view fieldName) const noexcept; // null: none
    std::optional<MapPage> page() const noexcept;                     // none: reached on any page
    // Whether a plain read changes nothing: nothing in it latches or is cleared by it, and nobody declared
    // side effects.
    bool isSafeToRead() const noexcept;
    // Whether side effects were declared, of the register or of one of its fields.
    bool hasSideEffects() const noexcept;
    // Whether a read tells anything.
    bool isReadable() const noexcept;
    // Whether a write changes anything.
    bool isWritable() const noexcept;
    // Bits that a write may change; of the others the value that was read is kept.
    std::uint64_t writableMask() const noexcept;
    // Bits that a read changes: those that latch or are cleared.
    std::uint64_t changedByReadMask() const noexcept;

private:
    friend struct MapBuilder;
    std::string name_;
    MapAddress address_;
    const MapDefinition *definition_ = nullptr;
    const MapRegister *select_ = nullptr;
    const MapField *selectField_ = nullptr;
};

// What a name stands for: a register, or one field of it.
struct MapReference {
    const MapRegister *reg = nullptr; // null: nothing
    const MapField *field = nullptr;  // null: the whole register

    // Whether it stands for something.
    explicit operator bool() const noexcept { return reg != nullptr; }
    // The full name; empty for nothing.
    ORVANE_API std::string name() const;
};

// One field of a value.
struct DecodedField {
    const MapField *field = nullptr;
    std::uint64_t raw = 0;
    std::int64_t number = 0;           // negative where the field is signed
    double scaled = 0;                 // in the field's unit
    const MapChoice *choice = nullptr; // null: the value has no name

    // The choice's name, else the value with its unit, as "100 Mb/s", "48.5 C" or "0x1F".
    ORVANE_API std::string valueText() const;
    // What a latched bit tells: "was low since the last read", "was high since the last read"; else empty.
    ORVANE_API std::string note() const;
};

// The PHYs that a map is for: those whose identifier equals `value` in the bits of `mask`.
struct MapIdentifier {
    std::uint32_t value = 0; // register 2 in the high half, register 3 in the low one
    std::uint32_t mask = 0xFFFFFFFF;
};

// What to load a map for.
struct MapOptions {
    std::optional<std::uint32_t> identifier; // of the PHY; its low four bits are the revision. None: no
                                             // override applies that asks for one
};

// Where imported registers are put; a CSV table says so itself.
struct ImportOptions {
    MapSpace space = MapSpace::ext32;
    std::uint8_t mmd = 0;   // of c45
    std::uint32_t base = 0; // added to each address
    // Bytes of the file for each number of the space, 1 to 8; 0: 1 in ext32, else 2.
    std::uint32_t addressUnit = 0;
};

struct ImportedMap;
struct MapContent;

// A map. A default-constructed one is empty.
class ORVANE_API RegisterMap {
public:
    RegisterMap();

    // Loads a file and those that it includes. Throws MapError with everything that is wrong with them.
    static RegisterMap load(const std::string &path, const MapOptions &options = {});
    // Reads the text of a file; `name` stands for it in problems. It may include built-in maps only.
    static RegisterMap parse(std::string_view json, const std::string &name = "map",
                             const MapOptions &options = {});
    // The registers of IEEE 802.3: Clause 22 registers 0 to 15 and those of the MMDs of Clause 45. Read once,
    // at the first call.
    static const RegisterMap &ieee8023();
    // Translates a file of another kind, told by its content or ending: CMSIS-SVD, uHAL address tables (both
    // XML), CSV. Throws MapError when the file cannot be read at all.
    static ImportedMap importFile(const std::string &path, const ImportOptions &options = {});

    const std::string &name() const noexcept; // an identifier; empty for an empty map
    const std::string &text() const noexcept; // for people; may be empty
    // The PHYs that it is for; may be empty.
    const std::vector<MapIdentifier> &identifiers() const noexcept;
    // Whether one of the identifiers fits.
    bool describes(std::uint32_t phyIdentifier) const noexcept;

    std::size_t size() const noexcept; // registers, each element of an array counted
    // Whether it has no register.
    bool empty() const noexcept { return size() == 0; }
    // In file order.
    const std::vector<MapRegister> &registers() const noexcept;
    // In order of their addresses.
    std::vector<const MapRegister *> inAddressOrder() const;

    // The register of this full name or at this address; null: none.
    const MapRegister *find(std::string_view name) const noexcept;
    const MapRegister *find(const MapAddress &address) const noexcept;
    // The register or field of this name; nothing: none.
    MapReference resolve(std::string_view name) const noexcept;
    // The same; throws MapError, which suggests what may have been meant.
    MapReference at(std::string_view name) const;
    // The nearest name of a register or field; empty: nothing is near.
    std::string suggestion(std::string_view name) const;

    // The registers and fields whose full name matches a pattern, in file order. '*' is any text without a
    // dot, '**' any text, '?' one character: "AN.*" gives the registers of AN, "AN.*.*" their fields,
    // "**.LINK" each field LINK.
    std::vector<MapReference> match(std::string_view pattern) const;
    // Registers and fields whose name or text holds every word, in whatever case; in file order.
    std::vector<MapReference> search(std::string_view words) const;
    // How a name that begins like this may go on: the blocks (with their dot), registers and fields of the
    // next level.
    std::vector<std::string> complete(std::string_view beginning) const;

    // The fields of a register's value, most significant first.
    static std::vector<DecodedField> decode(const MapRegister &reg, std::uint64_t value);

    // The whole map as one file of the source form; includes and overrides are worked in.
    std::string toJson() const;
    // A C header of addresses, masks, shifts and values; names begin with PREFIX_.
    std::string toCHeader(std::string_view prefix) const;
    // Tables for people.
    std::string toMarkdown() const;

private:
    explicit RegisterMap(std::shared_ptr<const MapContent> content);
    friend struct MapBuilder;
    std::shared_ptr<const MapContent> content_;
};

// The outcome of an import.
struct ImportedMap {
    RegisterMap map;
    std::vector<MapProblem> notCarriedOver; // what the file says and the map does not
};

} // namespace Orvane
