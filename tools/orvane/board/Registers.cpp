// Register accesses as calls of the library's blocks, single and routed forms.
#include "tools/orvane/board/Registers.h"

#include <algorithm>
#include <fmt/format.h>

namespace OrvaneTool {
namespace {

auto& library() {
    return HW_Interface_Object;
}

Orvane::MDIO::MDIO_clause framesOf(Space space) {
    switch (space) {
    case Space::C22:
        return Orvane::MDIO::CLAUSE_22;
    case Space::Ext32:
        return Orvane::MDIO::CLAUSE_22_32BIT;
    case Space::C45:
        break;
    }
    return Orvane::MDIO::CLAUSE_45;
}

void queue(unsigned adapter, unsigned phy, const Access& access) {
    const Register& reg = access.reg;
    if (reg.space == Space::Ext32 && access.written)
        library().blockWrite32Adapter(adapter, phy, reg.address, *access.written);
    else if (reg.space == Space::Ext32)
        library().blockRead32Adapter(adapter, phy, reg.address);
    else if (access.written)
        library().blockWriteAdapter(adapter, phy, reg.mmd, reg.address, *access.written);
    else
        library().blockReadAdapter(adapter, phy, reg.mmd, reg.address);
}

std::uint32_t readDirect(unsigned adapter, unsigned phy, const Register& reg) {
    switch (reg.space) {
    case Space::C22:
        return library().readAdapter_c22(adapter, phy, reg.address);
    case Space::Ext32:
        return library().read32Adapter(adapter, phy, reg.address);
    case Space::C45:
        break;
    }
    return library().readAdapter(adapter, phy, reg.mmd, reg.address);
}

void writeDirect(unsigned adapter, unsigned phy, const Register& reg, std::uint32_t value) {
    switch (reg.space) {
    case Space::C22:
        return library().writeAdapter_c22(adapter, phy, reg.address, value);
    case Space::Ext32:
        return library().write32Adapter(adapter, phy, reg.address, value);
    case Space::C45:
        break;
    }
    library().writeAdapter(adapter, phy, reg.mmd, reg.address, value);
}

// The routed forms reach every register class on the default adapter only.
std::uint32_t routed(unsigned adapter, unsigned phy, const Access& access) {
    HW_SetDefaultAdapter(adapter);
    if (!access.written)
        return ZR_API_MDIO_Read(phy, access.reg.mmd, access.reg.address);
    ZR_API_MDIO_Write(phy, access.reg.mmd, access.reg.address, *access.written);
    return 0;
}

} // namespace

std::vector<std::uint32_t> Registers::read(const std::vector<Register>& list) {
    std::vector<Access> accesses;
    accesses.reserve(list.size());
    for (const Register& reg : list)
        accesses.push_back({reg, std::nullopt});
    return run(accesses);
}

std::vector<std::uint32_t> Registers::run(const std::vector<Access>& accesses) {
    // An SMBus port carries out queued accesses one by one as well, but without the device's own protocol.
    const bool queued = way_ == Way::Queued && accesses.size() > 1 && !device_.isSmbus();
    std::vector<std::uint32_t> values;
    for (std::size_t begin = 0; begin < accesses.size();) {
        const std::size_t count = queued ? std::min(kLongestBlock, accesses.size() - begin) : 1;
        if (queued) {
            const std::vector<std::uint32_t> some = runBlock(&accesses[begin], count);
            values.insert(values.end(), some.begin(), some.end());
        } else if (const std::uint32_t value = runSingle(accesses[begin]); !accesses[begin].written) {
            values.push_back(value);
        }
        begin += count;
    }
    return values;
}

std::vector<std::uint32_t> Registers::runBlock(const Access* first, std::size_t count) {
    const Access* end = first + count;
    const std::string operation =
        fmt::format("{}{}", nameOf(*first), count > 1 ? fmt::format(" and {} more", count - 1) : "");
    const auto reads = static_cast<std::size_t>(
        std::count_if(first, end, [](const Access& access) { return !access.written; }));
    return device_.attempt(operation, [&] {
        std::for_each(first, end, [&](const Access& access) { queue(device_.adapter(), phy_, access); });
        const auto& values = library().executeBlock(device_.adapter(), phy_, framesOf(first->reg.space));
        if (values.size() != reads)
            throw Orvane::Exceptions::Standard(
                fmt::format("the board returned {} values for {} reads", values.size(), reads));
        return std::vector<std::uint32_t>(values.begin(), values.end());
    });
}

std::uint32_t Registers::runSingle(const Access& access) {
    const unsigned adapter = device_.adapter();
    if (way_ == Way::Routed)
        return device_.attemptFlat(nameOf(access), [&] { return routed(adapter, phy_, access); });
    return device_.attempt(nameOf(access), [&] {
        if (!access.written)
            return readDirect(adapter, phy_, access.reg);
        writeDirect(adapter, phy_, access.reg, *access.written);
        return 0U;
    });
}

std::string Registers::nameOf(const Access& access) const {
    return fmt::format("{} PHY {} {}", access.written ? "write" : "read", phy_, access.reg.text());
}

} // namespace OrvaneTool
