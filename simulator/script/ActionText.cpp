// From names and members to actions.
#include "simulator/script/ActionText.h"

#include "simulator/script/FaultTable.h"
#include "simulator/script/MapMember.h"

#include <algorithm>
#include <array>
#include <cstdio>
#include <functional>

namespace OrvaneSim {
namespace {

constexpr double kColdest = -273.15;
constexpr double kHottest = 1000;

struct Named {
    ActionForm form;
    std::function<Action(ObjectReader&)> read;
};

template <class What>
std::function<Action(ObjectReader&)> without() {
    return [](ObjectReader&) { return What{}; };
}

constexpr std::array<const char*, 5> kStrayKinds{"wrong-id", "wrong-port", "short", "random", "mixed"};

Action readStrays(ObjectReader& object) {
    StrayDatagrams what;
    const std::string kind = object.text("kind", kStrayKinds.back());
    const auto* const found = std::find(kStrayKinds.begin(), kStrayKinds.end(), kind);
    if (found == kStrayKinds.end())
        throw ScriptError(object.at("kind"),
                          "\"" + kind + "\" is none of wrong-id, wrong-port, short, random, mixed");
    what.kind = static_cast<StrayDatagrams::Kind>(found - kStrayKinds.begin());
    what.perSecond =
        static_cast<unsigned>(object.number("perSecond", 100, 1, StrayDatagrams::kMostPerSecond));
    if (object.find("seconds") && object.find("count"))
        throw ScriptError(object.at("seconds"), "goes without \"count\"");
    what.count = static_cast<unsigned>(object.number("count", 100, 1, UINT32_MAX));
    if (object.find("seconds"))
        what.count = static_cast<unsigned>(
            std::max(1.0, object.real("seconds", 1, 0, 86400) * static_cast<double>(what.perSecond)));
    return what;
}

Action readMove(ObjectReader& object) {
    object.need("address");
    return MoveTo{object.text("address", "")};
}

Action readAmbient(ObjectReader& object) {
    object.need("celsius");
    return SetAmbientTemperature{object.real("celsius", 0, kColdest, kHottest)};
}

const std::vector<Named>& named() {
    static const std::vector<Named> list{
        {{"stray",
          "kind=mixed perSecond=100 count=100 | seconds=S",
          "sends datagrams nobody asked for; kinds wrong-id, wrong-port, short, random, mixed",
          {"kind", "perSecond", "count"}},
         readStrays},
        {{"clear", "", "forgets every fault that waits", {}}, without<ClearFaults>()},
        {{"stop", "", "hears nothing any more, sockets stay open, until start", {}}, without<Hang>()},
        {{"kill", "", "closes every socket, until start", {}}, without<Kill>()},
        {{"start", "", "serves again", {}}, without<Start>()},
        {{"restart",
          "forgetSessions=false",
          "closes every socket and serves at other ports",
          {"forgetSessions"}},
         [](ObjectReader& object) { return Restart{object.flag("forgetSessions", false)}; }},
        {{"move", "address=A", "goes on at another address of the lab", {"address"}}, readMove},
        {{"forget-sessions", "", "ends every session without telling", {}}, without<ForgetSessions>()},
        {{"portmapper-close", "", "closes the port mapper's sockets: it refuses", {}},
         [](ObjectReader&) { return SwitchPortMapper{false}; }},
        {{"portmapper-open", "", "opens them again", {}},
         [](ObjectReader&) { return SwitchPortMapper{true}; }},
        {{"set",
          "register=R value=V device=0 phy=0 space=c45",
          "sets a register; spaces c45 (MMD << 16 | register), c22, ext32",
          {"register", "value"}},
         [](ObjectReader& object) { return readRegister(object); }},
        {{"map",
          "file=F device=0 phy=0 identifier=0x0A5C1E83",
          "gives a PHY the registers of a map: a file, or ieee8023",
          {"file"}},
         [](ObjectReader& object) { return readMap(object); }},
        {{"interrupt",
          "device=0 phy=0",
          "has a PHY raise an MDIO interrupt, for sessions that asked for its interrupts",
          {"device", "phy"}},
         [](ObjectReader& object) {
             const PhyAddress where = readPhy(object);
             return RaiseInterrupt{where.device, where.phy};
         }},
        {{"ambient", "celsius=C", "sets the temperature around the board", {"celsius"}}, readAmbient},
    };
    return list;
}

std::string bytesOf(const std::string& hex, const std::string& path) {
    std::string bytes;
    for (std::size_t i = 0; i < hex.size(); i += 2) {
        const std::string pair = hex.substr(i, 2);
        if (pair.size() != 2 || pair.find_first_not_of("0123456789abcdefABCDEF") != std::string::npos)
            throw ScriptError(path, "\"" + hex + "\" is no even number of hexadecimal digits");
        bytes.push_back(static_cast<char>(std::stoi(pair, nullptr, 16)));
    }
    return bytes;
}

Fault readFault(const FaultForm& form, ObjectReader& object) {
    Fault fault;
    fault.kind = form.kind;
    fault.value = form.fallback;
    if (form.valueName)
        fault.value = object.number(form.valueName, form.fallback, form.lowest, form.highest);
    fault.program = form.program ? form.program : object.text("program", "");
    fault.procedure = form.program ? form.procedure : object.text("procedure", "");
    fault.count = static_cast<int>(object.number("count", 1, -1, INT32_MAX));
    if (fault.count == 0)
        throw ScriptError(object.at("count"), "0 calls meet no fault; -1 stands for every call");
    fault.probability = object.real("probability", 1, 0, 1);
    if (form.kind == Fault::Kind::ReplyBody) {
        object.need("hex");
        fault.bytes = bytesOf(object.text("hex", ""), object.at("hex"));
    }
    return fault;
}

std::string hexadecimal(std::uint32_t number) {
    std::array<char, 16> text{};
    std::snprintf(text.data(), text.size(), "0x%X", number);
    return text.data();
}

constexpr std::array<const char*, 3> kSpaces{"c45", "c22", "ext32"};
constexpr std::array<std::int64_t, 3> kHighestRegisters{0x1FFFFF, 31, UINT32_MAX};

} // namespace

const std::vector<ActionForm>& actionForms() {
    static const std::vector<ActionForm> forms = [] {
        std::vector<ActionForm> all;
        for (const Named& action : named())
            all.push_back(action.form);
        return all;
    }();
    return forms;
}

std::vector<std::string> unnamedMembers(const std::string& action) {
    if (const FaultForm* form = faultForm(action)) {
        std::vector<std::string> members{"count"};
        if (form->kind == Fault::Kind::ReplyBody)
            members.insert(members.begin(), "hex");
        else if (form->valueName)
            members.insert(members.begin(), form->valueName);
        return members;
    }
    for (const ActionForm& form : actionForms())
        if (action == form.name)
            return {form.unnamed.begin(), form.unnamed.end()};
    return {};
}

Action readAction(const std::string& name, ObjectReader& object) {
    if (const FaultForm* form = faultForm(name))
        return readFault(*form, object);
    for (const Named& action : named())
        if (name == action.form.name)
            return action.read(object);
    throw ScriptError(object.at("action"), "there is no action \"" + name + "\"");
}

Action readAction(ObjectReader& object) {
    object.need("action");
    return readAction(object.text("action", ""), object);
}

Json faultText(const Fault& fault) {
    const FaultForm& form = faultForm(fault.kind);
    Json object{{"action", form.name}};
    if (form.valueName)
        object[form.valueName] = fault.value;
    if (!fault.program.empty())
        object["program"] = fault.program;
    if (!fault.procedure.empty())
        object["procedure"] = fault.procedure;
    object["count"] = fault.count;
    if (fault.probability < 1)
        object["probability"] = fault.probability;
    if (fault.kind == Fault::Kind::ReplyBody) {
        std::string hex;
        for (const char byte : fault.bytes) {
            std::array<char, 3> digits{};
            std::snprintf(digits.data(), digits.size(), "%02x", static_cast<unsigned>(byte) & 0xFFU);
            hex += digits.data();
        }
        object["hex"] = hex;
    }
    return object;
}

Json registerText(const RegisterValue& value) {
    return {{"space", kSpaces[static_cast<std::size_t>(value.space)]},
            {"device", value.device},
            {"phy", value.phy},
            {"register", hexadecimal(value.address)},
            {"value", hexadecimal(value.value)}};
}

RegisterValue readRegister(ObjectReader& object, bool withValue) {
    RegisterValue value;
    const std::string space = object.text("space", "c45");
    const auto* const found = std::find(kSpaces.begin(), kSpaces.end(), space);
    if (found == kSpaces.end())
        throw ScriptError(object.at("space"), "\"" + space + "\" is none of c45, c22, ext32");
    const auto index = static_cast<std::size_t>(found - kSpaces.begin());
    value.space = static_cast<Space>(index);
    const PhyAddress where = readPhy(object);
    value.device = where.device;
    value.phy = where.phy;
    object.need("register");
    value.address = static_cast<std::uint32_t>(object.number("register", 0, 0, kHighestRegisters[index]));
    if (!withValue)
        return value;
    object.need("value");
    const std::int64_t highest = value.space == Space::Ext32 ? UINT32_MAX : 0xFFFF;
    value.value = static_cast<std::uint32_t>(object.number("value", 0, 0, highest));
    return value;
}

} // namespace OrvaneSim
