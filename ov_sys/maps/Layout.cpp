// Lays blocks and arrays out, register by register.
#include "ov_sys/maps/BlockForm.h"
#include "ov_sys/maps/Checks.h"
#include "ov_sys/maps/Content.h"
#include "ov_sys/maps/Numbers.h"
#include "ov_sys/maps/PlaceForm.h"

#include <algorithm>
#include <numeric>
#include <tuple>

namespace Orvane::Maps {

namespace {

constexpr std::size_t kLongestName = 128; // of a register, with its blocks'
constexpr unsigned kMostBlocks = 131'072; // each element of an array counted

// Where the content of one block element begins.
struct Scope {
    std::string prefix; // with a dot at its end, or empty
    bool isPlaced = false;
    MapAddress base;
    std::uint64_t number = 0; // of base; may run over
    const PageDeclaration* page = nullptr;
};

class Layout {
public:
    Layout(MapContent& content, Problems& problems) : content_(content), problems_(problems) {}

    void run() {
        inside(content_.root, Scope{});
        for (const std::uint32_t i : content_.byName.fill(content_.registers))
            problems_.add(*sources_[i], "the name " + content_.registers[i].name() + " is there twice");
        content_.byAddress.reserve(content_.registers.size());
        for (std::uint32_t i = 0; i < content_.registers.size(); ++i)
            content_.indexAddress(i);
        findOverlaps();
        choosePages();
    }

private:
    template <class Declaration>
    static std::string elementName(const Declaration& declaration, std::uint32_t element) {
        return declaration.repetition.isArray ? declaration.name + '[' + std::to_string(element) + ']'
                                              : declaration.name;
    }

    // The scope's address moved to a place; tells of a distance from nowhere.
    bool moveTo(Scope& scope, const Place& place, const JsonValue& source) {
        if (place.isRelative && !scope.isPlaced) {
            problems_.add(source, "'at' is a distance, but no block around has an address");
            return false;
        }
        scope.number = place.isRelative ? scope.number + place.address.number : place.address.number;
        if (!place.isRelative) {
            const std::int64_t page = scope.base.page;
            scope.base = place.address;
            scope.base.page = page;
        }
        scope.isPlaced = true;
        return true;
    }

    void inside(const BlockDeclaration& block, const Scope& scope) {
        for (const RegisterDeclaration& reg : block.registers)
            registers(reg, scope);
        for (const auto& inner : block.blocks)
            blocks(*inner, scope);
    }

    void blocks(const BlockDeclaration& block, Scope scope) {
        if (block.at && !moveTo(scope, *block.at, *block.source))
            return;
        const std::string prefix = scope.prefix;
        for (std::uint32_t element = 0; element < block.repetition.count; ++element) {
            if (isOver(++blocks_ > kMostBlocks, *block.source, "there are more blocks than 131072"))
                return;
            scope.prefix = prefix + elementName(block, element) + '.';
            if (block.page) {
                scope.page = &*block.page;
                scope.base.page = std::int64_t{block.page->value} + std::int64_t{block.page->step} * element;
            }
            inside(block, scope);
            scope.number += block.repetition.stride;
        }
    }

    void registers(const RegisterDeclaration& reg, Scope scope) {
        if (!moveTo(scope, reg.at, *reg.source))
            return;
        const MapSpace space = scope.base.space;
        const unsigned width = reg.definition->width;
        const std::uint32_t extent = extentOf(space, width);
        if ((space == MapSpace::c45 || space == MapSpace::c22) && width > 16)
            problems_.add(*reg.source,
                          "has a width of " + std::to_string(width) + " bits, where registers have 16");
        const std::uint32_t stride = reg.repetition.stride == 0 ? extent : reg.repetition.stride;
        for (std::uint32_t element = 0; element < reg.repetition.count; ++element, scope.number += stride)
            if (!place(reg, scope, element, extent))
                return;
    }

    bool place(const RegisterDeclaration& reg, const Scope& scope, std::uint32_t element,
               std::uint32_t extent) {
        std::string name = scope.prefix + elementName(reg, element);
        if (isOver(content_.registers.size() == kMostRegisters, *reg.source,
                   "there are more registers than 131072"))
            return false;
        if (name.size() > kLongestName || scope.number + extent - 1 > lastNumber(scope.base.space)) {
            problems_.add(*reg.source, name.size() > kLongestName
                                           ? "has a name, with its blocks', longer than 128"
                                           : name + " lies beyond the last address of its space");
            return false;
        }
        MapAddress address = scope.base;
        address.number = static_cast<std::uint32_t>(scope.number);
        content_.registers.push_back(MapBuilder::registerOf(std::move(name), address, *reg.definition));
        sources_.push_back(reg.source);
        pages_.push_back(scope.page);
        return true;
    }

    // Tells of a limit, once.
    bool isOver(bool reached, const JsonValue& source, const char* message) {
        if (reached && !isFull_)
            problems_.add(source, message);
        isFull_ = isFull_ || reached;
        return isFull_;
    }

    void findOverlaps() {
        std::vector<std::uint32_t> order(content_.registers.size());
        std::iota(order.begin(), order.end(), 0U);
        const auto addressOf = [&](std::uint32_t i) -> const MapAddress& {
            return content_.registers[i].address();
        };
        std::sort(order.begin(), order.end(),
                  [&](std::uint32_t a, std::uint32_t b) { return addressOf(a) < addressOf(b); });
        std::uint64_t end = 0; // of those before, within their page
        for (std::size_t i = 0; i < order.size(); ++i) {
            const MapAddress& address = addressOf(order[i]);
            const bool isSamePage =
                i > 0 && std::tie(address.space, address.mmd, address.page) ==
                             std::tie(addressOf(order[i - 1]).space, addressOf(order[i - 1]).mmd,
                                      addressOf(order[i - 1]).page);
            if (isSamePage && address.number < end)
                tellOverlap(std::max(order[i], order[i - 1]), std::min(order[i], order[i - 1]));
            const std::uint64_t own =
                std::uint64_t{address.number} + extentOf(address.space, content_.registers[order[i]].width());
            end = isSamePage ? std::max(end, own) : own;
            findOnAllPages(order[i]);
        }
    }

    // A register that is reached on any page may not lie where a page has one.
    void findOnAllPages(std::uint32_t number) {
        MapAddress address = content_.registers[number].address();
        if (address.page < 0)
            return;
        address.page = -1;
        if (const MapRegister* const other = content_.find(address))
            tellOverlap(number, static_cast<std::uint32_t>(other - content_.registers.data()));
    }

    void tellOverlap(std::uint32_t number, std::uint32_t other) {
        const MapRegister& reg = content_.registers[number];
        problems_.add(*sources_[number], reg.name() + " at " + reg.address().text() + " overlaps with " +
                                             content_.registers[other].name() + " at " +
                                             content_.registers[other].address().text());
    }

    void choosePages() {
        for (std::size_t i = 0; i < content_.registers.size(); ++i) {
            if (pages_[i] == nullptr)
                continue;
            const MapReference select = content_.resolve(pages_[i]->select);
            const unsigned width = !select                   ? 0
                                   : select.field != nullptr ? select.field->width
                                                             : select.reg->width();
            if (!select)
                problems_.add(*sources_[i],
                              "the page's select register '" + pages_[i]->select + "' is not there");
            else if (static_cast<std::uint64_t>(content_.registers[i].address().page) > lowBits(width))
                problems_.add(*sources_[i], "its page does not fit into " + select.name());
            else if (select.reg->address().page >= 0)
                problems_.add(*sources_[i], "the page's select register lies on a page itself");
            MapBuilder::setPage(content_.registers[i], select);
        }
    }

    MapContent& content_;
    Problems& problems_;
    std::vector<const JsonValue*> sources_; // of each register
    std::vector<const PageDeclaration*> pages_;
    unsigned blocks_ = 0;
    bool isFull_ = false;
};

} // namespace

void layOut(MapContent& content, Problems& problems) {
    checkNames(content.root, problems);
    Layout(content, problems).run();
}

} // namespace Orvane::Maps
