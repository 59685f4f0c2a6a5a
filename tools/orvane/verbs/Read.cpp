// orvane read: register values.
#include "tools/orvane/board/Bits.h"
#include "tools/orvane/cli/RegisterOptions.h"
#include "tools/orvane/names/DryRun.h"
#include "tools/orvane/names/FieldTable.h"
#include "tools/orvane/names/Kinds.h"
#include "tools/orvane/names/PhyAccess.h"
#include "tools/orvane/names/RegisterRecord.h"
#include "tools/orvane/output/Errors.h"
#include "tools/orvane/verbs/Verbs.h"

#include <algorithm>
#include <fmt/format.h>

namespace OrvaneTool {
namespace {

constexpr std::size_t kMostRows = 16; // more values of one PHY are shown as a grid

struct Options : RegisterOptions {
    bool dryRun = false;
    std::vector<std::string> addresses;
    bool grid = false;
    bool twice = false;
};

using Values = std::vector<std::optional<std::uint32_t>>; // empty where nothing could be read

// Prints what was read, and where.
class Report {
public:
    Report(Context& context, const Options& options, const Places& places, const std::vector<Values>& values)
        : context_(context), options_(options), places_(places), values_(values) {}

    void print(const Kinds& kinds, const std::vector<std::vector<Asked>>& lists) const {
        const auto listOf = [&](std::size_t place) -> const std::vector<Asked>& {
            return lists[kinds.of(place)];
        };
        const std::vector<Asked>& list = lists.front();
        const bool fields = options_.twice || (showsFields(context_, kinds.maps(0), list) && !options_.grid);
        if (context_.format() != Format::Text)
            putRecords(listOf, fields);
        else if (fields)
            printFields(listOf);
        else if (places_.isOne() && list.size() == 1 && !options_.grid)
            printOne(list.front());
        else if (options_.grid || (list.size() > kMostRows && !isNamed(list)))
            printGrids(listOf);
        else
            printRows(listOf, isNamed(list));
    }

private:
    Stream& out() const { return context_.console.out; }

    // The value alone: of a field what it means, else the number.
    void printOne(const Asked& asked) const {
        if (values_[0].empty())
            return;
        const std::uint32_t value = values_[0][0].value();
        if (asked.field == nullptr)
            return out().print("{}\n", hexText(value, asked.reg.space));
        for (const Orvane::DecodedField& each : Orvane::RegisterMap::decode(*asked.mapped, value))
            if (each.field == asked.field)
                out().print("{}\n", each.valueText());
    }

    // Calls `take` with each register that was read: its place, what was asked for, what it holds and, where
    // it was read twice, what it held at first: the difference is what was latched.
    template <class ListOf, class Take>
    void forEach(const ListOf& listOf, const Take& take) const {
        const std::size_t reads = options_.twice ? 2 : 1; // of each register
        for (std::size_t place = 0; place < values_.size(); ++place)
            for (std::size_t i = 0; i < values_[place].size(); i += reads) {
                const auto& first = values_[place][i];
                const auto& last = values_[place][i + reads - 1];
                if (first && last)
                    take(place, listOf(place)[i / reads], *last,
                         options_.twice ? first : std::optional<std::uint32_t>());
            }
    }

    template <class ListOf>
    void printFields(const ListOf& listOf) const {
        FieldTable::printAll(out(), options_.twice, !places_.isOne(), [&](FieldTable& table) {
            forEach(listOf,
                    [&](std::size_t place, const Asked& asked, std::uint32_t value, const auto& first) {
                        table.setPlace(places_.device(place), places_.phy(place));
                        table.add(asked, value, first);
                    });
        });
    }

    template <class ListOf>
    void putRecords(const ListOf& listOf, bool fields) const {
        RecordSink& records = context_.records(registerForm(true, withFields({"value"}, fields), {}));
        forEach(listOf, [&](std::size_t place, const Asked& asked, std::uint32_t value, const auto& first) {
            Record one = record(place, asked, value);
            if (first)
                one.put("before", *first);
            if (fields || asked.field != nullptr)
                putFields(one, asked, value, first);
            records.put(one);
        });
    }

    template <class ListOf>
    void printGrids(const ListOf& listOf) const {
        for (std::size_t place = 0; place < values_.size(); ++place) {
            if (values_[place].empty())
                continue;
            if (!places_.isOne())
                out().print("{} PHY {}\n", places_.device(place), places_.phy(place));
            printGrid(listOf(place), values_[place]);
            out().flushWhenFull();
        }
    }

    // Eight neighbours in a line, behind the address of the first.
    void printGrid(const std::vector<Asked>& list, const Values& held) const {
        constexpr std::size_t kInLine = 8;
        std::size_t inLine = 0;
        for (std::size_t i = 0; i < list.size(); ++i, ++inLine) {
            const Register& reg = list[i].reg;
            Register next = i > 0 ? list[i - 1].reg : reg;
            next.address += options_.distance();
            if (i == 0 || !(reg == next) || inLine == kInLine) {
                out().write(i > 0 ? "\n" : "");
                out().print("{}:", out().painted(Colour::Dim, reg.text()));
                inLine = 0;
            }
            const auto digits = static_cast<std::size_t>(valueDigits(reg.space));
            out().print(" {}", held[i] ? fmt::format("{:0{}X}", *held[i], digits) : std::string(digits, '-'));
        }
        out().write("\n");
    }

    template <class ListOf>
    void printRows(const ListOf& listOf, bool named) const {
        std::vector<Column> columns{{"value", "VALUE"}, {"digits", "BITS"}, {"decimal", "DECIMAL", true}};
        if (named)
            columns.insert(columns.begin(), {"name", "REGISTER"});
        RecordSink& records = context_.records(registerForm(!places_.isOne(), {"value"}, columns));
        records.putAll([&](const auto& take) {
            forEach(listOf, [&](std::size_t place, const Asked& asked, std::uint32_t value, const auto&) {
                const Space space = asked.reg.space;
                take(record(place, asked, value)
                         .put("digits", bitsCell(out(), value, space))
                         .show("decimal", std::to_string(value)));
            });
        });
    }

    Record record(std::size_t place, const Asked& asked, std::uint32_t value) const {
        return std::move(registerRecord(places_.device(place), places_.phy(place), asked)
                             .put("value", hexCell(out(), value, asked.reg.space)));
    }

    Context& context_;
    const Options& options_;
    const Places& places_;
    const std::vector<Values>& values_; // of each place, empty where nothing was read
};

// Each register as often as it is to be read, in a row.
std::vector<Asked> repeated(const std::vector<Asked>& list, std::size_t times) {
    std::vector<Asked> all;
    for (const Asked& each : list)
        all.insert(all.end(), times, each);
    return all;
}

bool hasAny(const Values& values) {
    return std::any_of(values.begin(), values.end(), [](const auto& each) { return each.has_value(); });
}

int run(Context& context, const Options& options) {
    Kinds kinds(context);
    Places places = options.places(context);
    if (options.dryRun) {
        const KnownMaps& maps = kinds.unasked();
        std::vector<Access> reads;
        for (const Asked& each :
             repeated(askedFor(context, maps, options, options.addresses), options.twice ? 2 : 1))
            reads.push_back({each.reg, std::nullopt});
        return tellPlan(context, planned(reads, maps, options.routed));
    }
    const auto lists = kinds.settle(
        places, [&](const KnownMaps& maps) { return askedFor(context, maps, options, options.addresses); });
    std::vector<Values> values(places.size());
    places.run("read", [&](std::size_t place, const Orvane::Phy& phy) {
        PhyAccess access(context, phy, kinds.maps(kinds.of(place)), options.routed);
        const Outcome outcome = access.read(repeated(lists[kinds.of(place)], options.twice ? 2 : 1));
        if (hasAny(outcome.values))
            values[place] = outcome.values;
        outcome.check();
    });
    Report(context, options, places, values).print(kinds, lists);
    return places.finish("read");
}

} // namespace

void addRead(CLI::App& app, Context& context) {
    CLI::App& verb =
        addVerb(app, {"read", "Read registers",
                      "  orvane read OV0001:0 3 1.0x0002            PHY 3, MMD 1, register 2\n"
                      "  orvane read OV0001:0 3 1.2 1.3 31.0x8037   three registers in one round trip\n"
                      "  orvane read OV0001:0 3 3.0x20+16           16 registers from 0x20 on\n"
                      "  orvane read OV0001:0 3 3.0x20-0x2F --json\n"
                      "  orvane read OV0001:0 3 --c22 0+32\n"
                      "  orvane read OV0001:0 3 --ext32 0x80004000+4\n"
                      "  orvane read OV0001:0 3 --routed 11.0x1004  through the PHY's firmware\n"
                      "  orvane read OV0001:0 3 AN.STATUS --fields  by name, decoded\n"
                      "  orvane read OV0001:0 3 AN.STATUS.LINK --twice\n"
                      "  orvane read OV0001:0 3 'PCS.*' --map chip.json\n"
                      "  orvane read 'OV*:0' 0-3 1.2                four PHYs of every board\n"
                      "  orvane read @rack.txt 3 1.2 1.3            the devices that a file names\n"});
    auto options = std::make_shared<Options>();
    addRegisterOptions(verb, context, *options);
    verb.add_option(
            "ADDRESS", options->addresses,
            "MMD.REGISTER (with --c22 and --ext32 a number), FIRST+COUNT, FIRST-LAST, a name or a pattern")
        ->required()
        ->type_name("");
    verb.add_flag("--grid", options->grid, "Eight values in a line (the default for more than 16)");
    verb.add_flag("--twice", options->twice,
                  "Read twice in a row: what a latched bit held, and what it holds");
    addSideEffects(verb, context);
    addDryRun(verb, options->dryRun);
    addFormatOptions(verb, context);
    setAction(verb, context, options, run);
}

} // namespace OrvaneTool
