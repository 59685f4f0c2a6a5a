// Names for C.
#include "ov_sys/maps/MapHandle.h"
#include "ov_sys/maps/Numbers.h"
#include "ov_sys/names/Named.h"
#include "ov_sys/names/Plan.h"
#include "ov_sys/names/Selection.h"
#include "ov_sys/names/Snapshot.h"
#include "ov_sys/rack/c/Failures.h"
#include "ov_sys/rack/c/Handles.h"
#include "ov_sys/rack/c/Values.h"

#include <optional>
#include <orvane/rack_names.h>
#include <string>
#include <vector>

using namespace Orvane::RackC;
using Orvane::Maps::copyOf;

struct orvane_snapshot {
    Orvane::Snapshot snapshot;
};

namespace {

std::string linesOf(const std::vector<Orvane::FieldChange>& changes) {
    std::string lines;
    for (const Orvane::FieldChange& each : changes)
        lines += each.text() + '\n';
    return lines;
}

std::string linesOf(const Orvane::DecodedRegister& decoded) {
    if (decoded.reg == nullptr)
        return {};
    if (decoded.fields.empty())
        return decoded.reg->name() + ": " +
               Orvane::Maps::hexadecimal(decoded.value, decoded.reg->width() / 4) + '\n';
    std::string lines;
    for (const Orvane::DecodedField& each : decoded.fields) {
        const std::string note = each.note();
        lines += decoded.reg->name() + '.' + each.field->name + ": " + each.valueText() +
                 (note.empty() ? "" : ": " + note) + '\n';
    }
    return lines;
}

const Orvane::RegisterMap& mapOf(const orvane_map* map) {
    return map == nullptr ? Orvane::RegisterMap::ieee8023() : map->map;
}

} // namespace

extern "C" {

int orvane_phy_use(orvane_phy* phy, const orvane_map* map, orvane_failure* failure) {
    return guarded(failure, [&] {
        need({phy, map});
        phy->phy.use(map->map);
    });
}

int orvane_phy_read_name(orvane_phy* phy, const char* name, const orvane_limits* limits, uint64_t* raw,
                         orvane_failure* failure) {
    return guarded(failure, [&] {
        need({phy, name, raw});
        *raw = phy->phy[name].read(withinOf(limits));
    });
}

int orvane_phy_read_text(orvane_phy* phy, const char* name, const orvane_limits* limits, char** text,
                         orvane_failure* failure) {
    return guarded(failure, [&] {
        need({phy, name, text});
        *text = copyOf(phy->phy[name].text(withinOf(limits)));
    });
}

int orvane_phy_read_twice(orvane_phy* phy, const char* name, const orvane_limits* limits, uint64_t* before,
                          uint64_t* now, orvane_failure* failure) {
    return guarded(failure, [&] {
        need({phy, name, before, now});
        const Orvane::Named::Twice twice = phy->phy[name].twice(withinOf(limits));
        *before = twice.before;
        *now = twice.now;
    });
}

int orvane_phy_write_name(orvane_phy* phy, const char* name, uint64_t raw, const orvane_limits* limits,
                          orvane_failure* failure) {
    return guarded(failure, [&] {
        need({phy, name});
        phy->phy[name].write(raw, withinOf(limits));
    });
}

int orvane_phy_write_choice(orvane_phy* phy, const char* name, const char* choice,
                            const orvane_limits* limits, orvane_failure* failure) {
    return guarded(failure, [&] {
        need({phy, name, choice});
        phy->phy[name].write(std::string_view(choice), withinOf(limits));
    });
}

int orvane_phy_decode(orvane_phy* phy, orvane_register address, uint32_t value, char** text,
                      orvane_failure* failure) {
    return guarded(failure, [&] {
        need({phy, text});
        const Orvane::RegisterMap map = phy->phy.map(); // which the decoded fields are of
        *text = copyOf(linesOf(phy->phy.decode({{addressOf(address), value}}).front()));
    });
}

int orvane_phy_snapshot(orvane_phy* phy, const char* const* names, size_t count, int side_effects,
                        const orvane_limits* limits, orvane_snapshot** snapshot, orvane_failure* failure) {
    return guarded(failure, [&] {
        need({phy, names, snapshot});
        std::vector<std::string> wanted;
        for (std::size_t i = 0; i < count; ++i) {
            need({names[i]});
            wanted.emplace_back(names[i]);
        }
        const Orvane::Scope scope = Orvane::Scope(std::move(wanted)).sideEffects(side_effects != 0);
        *snapshot = new orvane_snapshot{phy->phy.snapshot(scope, withinOf(limits))};
    });
}

void orvane_snapshot_free(orvane_snapshot* snapshot) {
    delete snapshot;
}

size_t orvane_snapshot_size(const orvane_snapshot* snapshot) {
    return snapshot == nullptr ? 0 : snapshot->snapshot.values.size();
}

int orvane_snapshot_at(const orvane_snapshot* snapshot, size_t index, const char** name, uint64_t* value,
                       orvane_failure* failure) {
    return guarded(failure, [&] {
        need({snapshot, name, value});
        if (index >= snapshot->snapshot.values.size())
            refuse("The snapshot has fewer registers.");
        const Orvane::Snapshot::Value& found = snapshot->snapshot.values[index];
        *name = found.reg->name().c_str();
        *value = found.value;
    });
}

int orvane_snapshot_diff(const orvane_snapshot* before, const orvane_snapshot* after, char** changes,
                         orvane_failure* failure) {
    return guarded(failure, [&] {
        need({before, after, changes});
        *changes = copyOf(linesOf(Orvane::diff(before->snapshot, after->snapshot)));
    });
}

int orvane_phy_restore(orvane_phy* phy, const orvane_snapshot* snapshot, const orvane_limits* limits,
                       size_t* written, char** not_taken, orvane_failure* failure) {
    return guarded(failure, [&] {
        need({phy, snapshot, written, not_taken});
        const Orvane::Restored restored = phy->phy.restore(snapshot->snapshot, withinOf(limits));
        *not_taken = copyOf(linesOf(restored.notTaken));
        *written = restored.written;
    });
}

int orvane_plan(const orvane_operation* operations, size_t count, const orvane_map* map, char** text,
                orvane_failure* failure) {
    return guarded(failure, [&] {
        need({operations, text});
        *text = copyOf(Orvane::plan(batchOf(operations, count), mapOf(map)));
    });
}

int orvane_routed_plan(orvane_register address, const uint32_t* value, const orvane_paths* paths,
                       const orvane_map* map, char** text, orvane_failure* failure) {
    return guarded(failure, [&] {
        need({text});
        const auto written = value == nullptr ? std::nullopt : std::optional(*value);
        *text = copyOf(
            Orvane::plan(Orvane::routedSteps(addressOf(address), written, pathsOf(paths)), mapOf(map)));
    });
}

} // extern "C"
