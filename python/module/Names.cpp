// Registers and fields by the names of a map, and snapshots.
#include "ov_sys/names/Named.h"

#include "ov_sys/names/NamedBatch.h"
#include "ov_sys/names/Selection.h"
#include "ov_sys/names/Snapshot.h"
#include "python/module/Bindings.h"

#include <pybind11/stl.h>
#include <string>
#include <utility>

namespace OrvanePython {
namespace {

using namespace Orvane;

// Runs `call` on what has the name.
template <class Call>
auto onName(PhyHandle& self, const std::string& name, const Limits& limits, Call call) {
    return outside(limits, [&, phy = self.phy()](const Within& within) { return call(phy[name], within); });
}

std::uint64_t read(PhyHandle& self, const std::string& name, const Limits& limits) {
    return onName(self, name, limits, [](const Named& it, const Within& within) { return it.read(within); });
}

double scaled(PhyHandle& self, const std::string& name, const Limits& limits) {
    return onName(self, name, limits,
                  [](const Named& it, const Within& within) { return it.scaled(within); });
}

std::string text(PhyHandle& self, const std::string& name, const Limits& limits) {
    return onName(self, name, limits, [](const Named& it, const Within& within) { return it.text(within); });
}

std::pair<std::uint64_t, std::uint64_t> twice(PhyHandle& self, const std::string& name,
                                              const Limits& limits) {
    const Named::Twice both =
        onName(self, name, limits, [](const Named& it, const Within& within) { return it.twice(within); });
    return {both.before, both.now};
}

void write(PhyHandle& self, const std::string& name, std::uint64_t value, const Limits& limits) {
    onName(self, name, limits, [=](const Named& it, const Within& within) { it.write(value, within); });
}

void writeChoice(PhyHandle& self, const std::string& name, const std::string& choice, const Limits& limits) {
    onName(self, name, limits, [&](const Named& it, const Within& within) { it.write(choice, within); });
}

void writeScaled(PhyHandle& self, const std::string& name, double value, const Limits& limits) {
    onName(self, name, limits, [=](const Named& it, const Within& within) { it.writeScaled(value, within); });
}

py::list namesOf(const std::vector<MapReference>& references) {
    py::list names;
    for (const MapReference& one : references)
        names.append(one.name());
    return names;
}

// Name, before, after and the whole in words.
py::list listOf(const std::vector<FieldChange>& changes) {
    py::list all;
    for (const FieldChange& one : changes)
        all.append(py::make_tuple(one.name(), one.before, one.after, one.text()));
    return all;
}

// Name, address, value and its fields: name, raw value, in words.
py::tuple tupleOf(const MapRegister& reg, std::uint64_t value) {
    py::list fields;
    for (const DecodedField& field : RegisterMap::decode(reg, value))
        fields.append(py::make_tuple(field.field->name, field.raw, field.valueText()));
    return py::make_tuple(reg.name(), reg.address().text(), value, fields);
}

py::list decoded(const Snapshot& self) {
    py::list all;
    for (const Snapshot::Value& each : self.values)
        all.append(tupleOf(*each.reg, each.value));
    return all;
}

// Nothing where the map has no such register.
py::object decodeAt(const RegisterMap& self, unsigned space, std::uint32_t mmd, std::uint32_t number,
                    std::uint64_t value) {
    const MapRegister* const reg = self.find(mapAddress(registerAt(space, mmd, number)));
    return reg != nullptr ? py::object(tupleOf(*reg, value)) : py::none();
}

py::object decodeNamed(const RegisterMap& self, const std::string& name, std::uint64_t value) {
    const MapRegister* const reg = self.find(name);
    return reg != nullptr ? py::object(tupleOf(*reg, value)) : py::none();
}

py::list leftOut(const Snapshot& self) {
    py::list names;
    for (const MapRegister* const one : self.leftOut)
        names.append(one->name());
    return names;
}

Snapshot snapshot(PhyHandle& self, const std::vector<std::string>& names, bool sideEffects,
                  const Limits& limits) {
    return outside(limits, [&, phy = self.phy()](const Within& within) {
        return phy.snapshot(Scope(names).sideEffects(sideEffects), within);
    });
}

py::tuple restore(PhyHandle& self, const Snapshot& saved, const Limits& limits) {
    const Restored restored =
        outside(limits, [&, phy = self.phy()](const Within& within) { return phy.restore(saved, within); });
    return py::make_tuple(restored.written, listOf(restored.notTaken));
}

// What is sent for the values of a snapshot, as far as boards can be reached; what select registers hold is
// not known.
template <class Add>
py::tuple accesses(const std::vector<Snapshot::Value>& values, Add add) {
    std::vector<const MapRegister*> reachable;
    for (const Snapshot::Value& each : values)
        if (isReachable(*each.reg))
            reachable.push_back(each.reg);
    NamedBatch::Selects selects;
    for (const MapRegister* const each : NamedBatch::selectsOf(reachable))
        selects[each] = ~std::uint32_t{0};
    const std::size_t pages = selects.size();
    NamedBatch batch(std::move(selects));
    for (const Snapshot::Value& each : values)
        if (isReachable(*each.reg))
            add(batch, each);
    return py::make_tuple(batch.finish(), pages);
}

py::tuple reads(const Snapshot& self) {
    return accesses(self.values,
                    [](NamedBatch& batch, const Snapshot::Value& each) { batch.read(*each.reg); });
}

py::tuple writesToRestore(const Snapshot& self) {
    return accesses(toRestore(self), [](NamedBatch& batch, const Snapshot::Value& each) {
        batch.write(*each.reg, static_cast<std::uint32_t>(each.value));
    });
}

// A snapshot that nothing was read for: its values are 0.
Snapshot blank(const RegisterMap& self, const std::vector<std::string>& names, bool sideEffects) {
    Selection selection = select(self, Scope(names).sideEffects(sideEffects));
    Snapshot snapshot{self, {}, std::move(selection.leftOut)};
    for (const MapRegister* const each : selection.registers)
        if (isReachable(*each))
            snapshot.values.push_back({each, 0});
        else
            snapshot.leftOut.push_back(each);
    return snapshot;
}

// Where a name is, or nothing.
py::object addressOf(const RegisterMap& self, const std::string& name) {
    const MapReference found = self.resolve(name);
    return found ? py::object(py::str(found.reg->address().text())) : py::none();
}

// Name, address, space, MMD, number, whether it lies on a page, bits, what an access does, and whether a read
// changes nothing, a read tells anything, a write changes anything.
py::list registersOf(const RegisterMap& self) {
    py::list all;
    for (const MapRegister& one : self.registers()) {
        const MapAddress& at = one.address();
        all.append(py::make_tuple(one.name(), at.text(), nameOf(at.space), at.mmd, at.number, at.page >= 0,
                                  one.width(), nameOf(one.access()), one.isSafeToRead(), one.isReadable(),
                                  one.isWritable()));
    }
    return all;
}

py::dict dictOf(const MapField& field) {
    using namespace py::literals;
    py::list bits;
    for (const MapBits& piece : field.bits)
        bits.append(py::make_tuple(piece.high, piece.low));
    py::list choices;
    for (const MapChoice& choice : field.choices)
        choices.append(py::make_tuple(choice.value, choice.name));
    return py::dict("name"_a = field.name, "text"_a = field.text, "bits"_a = bits,
                    "access"_a = nameOf(field.access), "signed"_a = field.isSigned,
                    "scaled"_a = field.isScaled, "scale"_a = field.scale, "offset"_a = field.offset,
                    "unit"_a = field.unit, "choices"_a = choices);
}

// What a map says of a register: its text, its value after a reset and its fields; nothing of what is none.
py::object describe(const RegisterMap& self, const std::string& name) {
    using namespace py::literals;
    const MapReference found = self.resolve(name);
    if (!found || found.field != nullptr)
        return py::none();
    py::list fields;
    for (const MapField& field : found.reg->fields())
        fields.append(dictOf(field));
    return py::dict("text"_a = found.reg->text(), "reset"_a = found.reg->reset(), "fields"_a = fields);
}

void bindMaps(py::module_& module) {
    py::register_exception_translator([](std::exception_ptr thrown) {
        try {
            if (thrown)
                std::rethrow_exception(thrown);
        } catch (const MapError& error) {
            PyErr_SetString(py::module_::import("orvane.errors").attr("MapError").ptr(), error.what());
        }
    });
    py::class_<RegisterMap>(module, "Map")
        .def_static("load", [](const std::string& path) { return RegisterMap::load(path); })
        .def_static("parse", [](const std::string& text,
                                const std::string& name) { return RegisterMap::parse(text, name); })
        .def_static("ieee8023", [] { return RegisterMap::ieee8023(); })
        .def("to_json", &RegisterMap::toJson)
        .def("blank", blank)
        .def_property_readonly("name", &RegisterMap::name)
        .def("__len__", &RegisterMap::size)
        .def("address_of", addressOf)
        .def("decode_at", decodeAt)
        .def("decode_named", decodeNamed)
        .def("registers", registersOf)
        .def("describe", describe)
        .def("suggestion",
             [](const RegisterMap& self, const std::string& name) { return self.suggestion(name); })
        .def("complete",
             [](const RegisterMap& self, const std::string& beginning) { return self.complete(beginning); })
        .def("match",
             [](const RegisterMap& self, const std::string& pattern) { return namesOf(self.match(pattern)); })
        .def("search",
             [](const RegisterMap& self, const std::string& words) { return namesOf(self.search(words)); });
    py::class_<Snapshot>(module, "Snapshot")
        .def("decoded", decoded)
        .def("left_out", leftOut)
        .def("reads", reads)
        .def("writes_to_restore", writesToRestore)
        .def("diff", [](const Snapshot& self, const Snapshot& later) { return listOf(diff(self, later)); });
}

} // namespace

void bindNames(py::module_& module, PhyClass& phy) {
    bindMaps(module);
    phy.def("use", [](PhyHandle& self, const RegisterMap& map) { self.phy().use(map); })
        .def("map", [](PhyHandle& self) { return self.phy().map(); })
        .def("named_read", read)
        .def("named_scaled", scaled)
        .def("named_text", text)
        .def("named_twice", twice)
        .def("named_write", write)
        .def("named_write_choice", writeChoice)
        .def("named_write_scaled", writeScaled)
        .def("snapshot", snapshot)
        .def("restore", restore);
}

} // namespace OrvanePython
