// orvane dump: many registers into files.
#include "tools/orvane/board/DumpFile.h"
#include "tools/orvane/board/Identifier.h"
#include "tools/orvane/names/FieldTable.h"
#include "tools/orvane/names/Gaps.h"
#include "tools/orvane/names/Kinds.h"
#include "tools/orvane/names/PhyAccess.h"
#include "tools/orvane/names/RegisterRecord.h"
#include "tools/orvane/output/Errors.h"
#include "tools/orvane/output/Progress.h"
#include "tools/orvane/verbs/Verbs.h"

#include <algorithm>
#include <atomic>
#include <filesystem>
#include <fmt/format.h>
#include <set>
#include <system_error>

namespace OrvaneTool {
namespace {

constexpr std::size_t kLongestBlock = 256; // that grows in the file at a time

const RecordForm kDumps{{"file", "registers"}, {}};

struct Options : RegisterOptions {
    std::vector<std::string> ranges;
    std::string file;
    bool force = false;
    bool strict = false;
};

// A dump is of one space, and has each register once.
void check(const std::vector<Asked>& list) {
    std::set<Register> seen;
    for (const Asked& each : list) {
        if (each.reg.space != list.front().reg.space)
            throw UsageError(fmt::format("a dump is of one register space: {} is of {}, {} of {}",
                                         list.front().reg.text(), nameOf(list.front().reg.space),
                                         each.reg.text(), nameOf(each.reg.space)));
        if (!seen.insert(each.reg).second)
            throw UsageError(fmt::format("the ranges name {} more than once", each.reg.text()));
    }
}

// One PHY's registers, read block by block.
class Reading {
public:
    Reading(Context& context, PhyAccess access, const std::vector<Asked>& list)
        : context_(context), access_(access), list_(list) {}

    // Gives `take` what was read, from register `done` on and without a hole; `told` how far it is. Goes on,
    // where `rides`, through the absence of the board, up to a minute. Throws what ends it otherwise.
    template <class Take, class Told>
    void run(std::size_t done, bool rides, const Take& take, const Told& told) {
        while (done < list_.size()) {
            told(done);
            const std::size_t count = std::min(kLongestBlock, list_.size() - done);
            const auto first = list_.begin() + static_cast<std::ptrdiff_t>(done);
            const Outcome outcome = access_.read({first, first + static_cast<std::ptrdiff_t>(count)});
            const std::vector<std::uint32_t> values = upToAHole(outcome);
            if (!values.empty()) {
                endGap();
                take(done, values);
                done += values.size();
            }
            if (outcome.problem)
                bear(outcome, rides);
        }
    }

    const Gaps& gaps() const { return gaps_; }

private:
    static std::vector<std::uint32_t> upToAHole(const Outcome& outcome) {
        std::vector<std::uint32_t> values;
        for (const std::optional<std::uint32_t>& each : outcome.values) {
            if (!each)
                break;
            values.push_back(*each);
        }
        return values;
    }

    void bear(const Outcome& outcome, bool rides) {
        constexpr std::chrono::seconds kPatience{60};
        try {
            outcome.check();
        } catch (const Orvane::Failure& failure) {
            if (!gaps_.isOpen())
                since_ = std::chrono::steady_clock::now();
            if (!rides || !isAway(failure) || std::chrono::steady_clock::now() - since_ > kPatience)
                throw;
            gaps_.note(failure);
            context_.interrupts().sleep(std::chrono::milliseconds(100));
        }
    }

    void endGap() {
        if (const std::optional<Gap> gap = gaps_.close()) {
            context_.console.err.print("orvane: dump: {}\n", gap->text());
            context_.console.err.flushIfPossible();
        }
    }

    Context& context_;
    PhyAccess access_;
    const std::vector<Asked>& list_;
    Gaps gaps_;
    std::chrono::steady_clock::time_point since_;
};

std::vector<Register> registersOf(const std::vector<Asked>& list, std::size_t from, std::size_t count) {
    std::vector<Register> registers;
    for (std::size_t i = from; i < from + count; ++i)
        registers.push_back(list[i].reg);
    return registers;
}

// What several PHYs have in common.
class Dumping {
public:
    Dumping(Context& context, const Options& options, Places& places, const Kinds& kinds,
            const std::vector<std::vector<Asked>>& lists)
        : context_(context), options_(options), places_(places), kinds_(kinds), lists_(lists) {}

    // One PHY into one file, or onto the standard output.
    void one() {
        places_.run("dump", [&](std::size_t place, const Orvane::Phy& phy) {
            options_.file == "-" ? print(place, phy) : save(place, phy);
        });
    }

    // Each PHY into a file of its own in the folder. What is complete there is left alone.
    void all() {
        std::filesystem::create_directories(options_.file);
        places_.run("dump", [&](std::size_t place, const Orvane::Phy& phy) { saveInFolder(place, phy); });
        for (std::size_t place = 0; place < places_.size(); ++place)
            if (places_.isGood(place))
                putDump(place, fileOf(place));
        if (context_.format() == Format::Text)
            context_.console.out.print("{}: {} dumps{}\n", options_.file, dumps_ + old_,
                                       old_ > 0 ? fmt::format(", {} of them from before", old_) : "");
    }

    bool hadGaps() const { return gaps_; }

private:
    const std::vector<Asked>& listOf(std::size_t place) const { return lists_[kinds_.of(place)]; }
    const KnownMaps& mapsOf(std::size_t place) const { return kinds_.maps(kinds_.of(place)); }

    DumpHeader headerOf(std::size_t place, const Orvane::Phy& phy) {
        DumpHeader header = newHeader();
        header.device = places_.device(place);
        header.address = places_.address(place);
        header.phy = places_.phy(place);
        header.space = listOf(place).front().reg.space;
        header.identifier = identifierOf(phy, header.space, context_.within()).value_or("");
        std::vector<std::string> names;
        for (const Orvane::RegisterMap& map : mapsOf(place).all())
            names.push_back(map.name());
        header.maps = fmt::format("{}", fmt::join(names, ", "));
        header.ranges = fmt::format("{}", fmt::join(options_.ranges, " "));
        return header;
    }

    Reading reading(std::size_t place, const Orvane::Phy& phy) {
        return {context_, PhyAccess(context_, phy, mapsOf(place), options_.routed), listOf(place)};
    }

    void print(std::size_t place, const Orvane::Phy& phy) {
        RecordSink& records =
            context_.records(registerForm(true, withFields({"value"}, context_.fields), {}));
        Stream& out = context_.console.out;
        if (records.isText())
            out.write(headerOf(place, phy).text());
        const auto take = [&](std::size_t done, const std::vector<std::uint32_t>& values) {
            if (records.isText())
                out.write(valueLines(registersOf(listOf(place), done, values.size()), values));
            for (std::size_t i = 0; !records.isText() && i < values.size(); ++i)
                records.put(registerOf(place, done + i, values[i]));
            out.flushWhenFull();
        };
        Reading reads = reading(place, phy);
        reads.run(0, true, take, [](std::size_t) {});
        gaps_ = reads.gaps().count() > 0;
    }

    Record registerOf(std::size_t place, std::size_t at, std::uint32_t value) const {
        const Asked& asked = listOf(place)[at];
        Record record = registerRecord(places_.device(place), places_.phy(place), asked);
        record.put("value", value);
        if (context_.fields)
            putFields(record, asked, value);
        return record;
    }

    // Of a dump that is whole.
    void putDump(std::size_t place, const std::string& file) {
        Record record("dump");
        record.device(places_.device(place)).phy(places_.phy(place)).put("file", file);
        context_.records(kDumps).put(record.put("registers", listOf(place).size()));
    }

    void save(std::size_t place, const Orvane::Phy& phy) {
        const std::vector<Asked>& list = listOf(place);
        DumpWriter writer(options_.file, headerOf(place, phy), options_.force);
        const std::size_t resumedAt = std::min(writer.resumedAt(), list.size());
        FieldTable fields(context_.console.out);
        Reading reads = reading(place, phy);
        {
            ProgressBar bar(context_.console.err, "dump", list.size());
            const auto take = [&](std::size_t done, const std::vector<std::uint32_t>& values) {
                writer.add(registersOf(list, done, values.size()), values);
                for (std::size_t i = 0; context_.fields && i < values.size(); ++i)
                    fields.add(list[done + i], values[i]);
            };
            reads.run(resumedAt, true, take, [&](std::size_t done) { bar.show(done); });
        }
        writer.complete();
        gaps_ = reads.gaps().count() > 0;
        putDump(place, options_.file);
        if (context_.format() != Format::Text)
            return;
        fields.print(context_.console.out);
        context_.console.out.print(
            "{}: {} registers{}{}\n", options_.file, list.size(),
            resumedAt > 0 ? fmt::format(", {} of them from an earlier attempt", resumedAt) : "",
            reads.gaps().summary());
    }

    // dumps/OV0001-0-phy3.dump
    std::string fileOf(std::size_t place) const {
        std::string name = fmt::format("{}-phy{}.dump", places_.device(place), places_.phy(place));
        for (char& each : name)
            if (each == ':' || each == '/')
                each = '-';
        return (std::filesystem::path(options_.file) / name).string();
    }

    void saveInFolder(std::size_t place, const Orvane::Phy& phy) {
        const std::string file = fileOf(place);
        const DumpHeader header = headerOf(place, phy);
        if (!options_.force && stateOf(file, header) == DumpState::Complete) {
            ++old_;
            return;
        }
        DumpWriter writer(file, header, options_.force);
        const std::vector<Asked>& list = listOf(place);
        reading(place, phy)
            .run(
                std::min(writer.resumedAt(), list.size()), false,
                [&](std::size_t done, const std::vector<std::uint32_t>& values) {
                    writer.add(registersOf(list, done, values.size()), values);
                },
                [](std::size_t) {});
        writer.complete();
        ++dumps_;
    }

    Context& context_;
    const Options& options_;
    Places& places_;
    const Kinds& kinds_;
    const std::vector<std::vector<Asked>>& lists_;
    std::atomic<std::size_t> dumps_{0};
    std::atomic<std::size_t> old_{0};
    bool gaps_ = false;
};

// Whether the output is a folder with a file for each PHY.
bool isFolder(const Options& options, const Places& places) {
    const bool folder = std::filesystem::is_directory(options.file) || options.file.back() == '/';
    if (!places.isOne() && !folder && (options.file == "-" || std::filesystem::exists(options.file)))
        throw UsageError(fmt::format("dumps of several PHYs go into a folder: {} is none", options.file));
    return folder || !places.isOne();
}

int run(Context& context, const Options& options) {
    Kinds kinds(context);
    Places places = options.places(context);
    const bool folder = isFolder(options, places);
    const auto lists = kinds.settle(places, [&](const KnownMaps& maps) {
        std::vector<Asked> list = askedFor(context, maps, options, options.ranges);
        check(list);
        return list;
    });
    Dumping dumping(context, options, places, kinds, lists);
    folder ? dumping.all() : dumping.one();
    const int status = places.finish("dump");
    return dumping.hadGaps() && options.strict ? kFailed : status;
}

} // namespace

void addDump(CLI::App& app, Context& context) {
    CLI::App& verb = addVerb(
        app, {"dump", "Save the values of many registers in files",
              "  orvane dump OV0001:0 3 1.0+4096 -o before.dump\n"
              "  orvane dump OV0001:0 3 1.0-0xFF 3.0-0xFF 30.0xC000+256 -o all.dump\n"
              "  orvane dump OV0001:0 3 'PCS.**' AN -o names.dump   what is safe to read of them\n"
              "  orvane dump 'OV*:0' 0-19 1.0+256 -o dumps/         a file for each PHY of each board\n"
              " A dump that was broken off goes on where it stopped when it is asked for again.\n"});
    auto options = std::make_shared<Options>();
    addRegisterOptions(verb, context, *options);
    verb.add_option("RANGES", options->ranges,
                    "Registers: ADDRESS, FIRST+COUNT, FIRST-LAST, names or patterns")
        ->required()
        ->type_name("");
    verb.add_option("-o,--output", options->file,
                    "The file, for several PHYs the folder; '-': standard output")
        ->required()
        ->type_name("FILE");
    verb.add_flag("--force", options->force, "Overwrite the file");
    verb.add_flag("--strict", options->strict, "Status 1 when the board was away meanwhile");
    addSideEffects(verb, context);
    addFormatOptions(verb, context);
    setAction(verb, context, options, run);
}

} // namespace OrvaneTool
