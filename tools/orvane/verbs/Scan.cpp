// orvane scan: which PHYs, or devices of an I2C bus, answer.
#include "tools/orvane/board/DeviceNames.h"
#include "tools/orvane/board/Identifier.h"
#include "tools/orvane/board/Places.h"
#include "tools/orvane/cli/RegisterOptions.h"
#include "tools/orvane/names/KnownMaps.h"
#include "tools/orvane/output/Errors.h"
#include "tools/orvane/output/RecordSink.h"
#include "tools/orvane/verbs/Verbs.h"

#include <algorithm>
#include <fmt/format.h>

namespace OrvaneTool {
namespace {

// Those that are no reserved addresses of I2C.
constexpr unsigned kFirstOfBus = 0x03;
constexpr unsigned kLastOfBus = 0x77;

struct Options : RegisterOptions {
    int bus = -1; // of I2C; -1: PHYs
    unsigned session = 0;
};

// What is at an address.
struct Answer {
    std::string device;
    unsigned address = 0;
    std::string sign = "--"; // in the grid
    std::string identifier{};
    std::string name{};
};

class Scan {
public:
    Scan(Context& context, const Options& options) : context_(context), options_(options) {}

    int run() {
        Places places(context_, options_.device, addresses(), options_.jobs);
        places.find();
        std::vector<std::vector<Answer>> answers(places.size());
        places.run("scan", [&](std::size_t place, const Orvane::Phy& phy) {
            if (options_.bus >= 0)
                answers[place] = devicesOf(phy);
            else
                answers[place].push_back(phyAt(phy));
        });
        for (std::size_t place = 0; place < answers.size(); ++place)
            for (Answer& each : answers[place]) {
                each.device = places.device(place);
                nameIt(each);
                all_.push_back(each);
            }
        print();
        return places.finish("scan");
    }

private:
    // The PHYs that are asked; of an I2C bus the one whose session is used.
    std::string addresses() const {
        if (options_.bus >= 0)
            return std::to_string(options_.session);
        if (!options_.phy.empty())
            return options_.phy;
        const std::vector<std::string> names = deviceNames(options_.device, context_.settings().aliases);
        const bool smbus = std::all_of(names.begin(), names.end(), [](const std::string& name) {
            return !isPattern(name) && takenApart(name).port >= 10;
        });
        return smbus ? fmt::format("{}-{}", kFirstOfBus, kLastOfBus) : "0-31";
    }

    Answer phyAt(const Orvane::Phy& phy) {
        Answer answer;
        answer.address = phy.id();
        try {
            if (const auto identifier = identifierIfThere(phy, context_.within())) {
                answer.identifier = *identifier;
                answer.sign = fmt::format("{:02x}", answer.address);
            }
        } catch (const Orvane::Failure& failure) {
            if (failure.kind() != Orvane::FailureKind::Refused)
                throw;
            answer.sign = "UU"; // somebody else has it
        }
        return answer;
    }

    // By a read of one byte.
    std::vector<Answer> devicesOf(const Orvane::Phy& phy) {
        std::vector<Answer> answers;
        for (unsigned address = kFirstOfBus; address <= kLastOfBus; ++address) {
            Answer& answer = answers.emplace_back();
            answer.address = address;
            try {
                phy.i2c().read(static_cast<std::uint8_t>(options_.bus), address, 0, 1,
                               context_.within().once());
                answer.sign = fmt::format("{:02x}", address);
            } catch (const Orvane::Failure& failure) {
                if (failure.kind() != Orvane::FailureKind::BoardError)
                    throw;
            }
        }
        return answers;
    }

    // By the maps that describe such PHYs.
    void nameIt(Answer& answer) {
        if (answer.identifier.empty())
            return;
        const auto [entry, isNew] = names_.emplace(answer.identifier, "");
        if (isNew) {
            const auto number = static_cast<std::uint32_t>(std::stoul(answer.identifier, nullptr, 16));
            KnownMaps maps(context_);
            maps.identify(number);
            for (const Orvane::RegisterMap& map : maps.all())
                if (entry->second.empty() && map.describes(number) && map.name() != "ieee8023")
                    entry->second = map.name();
        }
        answer.name = entry->second;
    }

    void print() const {
        if (context_.format() == Format::Text)
            printGrids();
        RecordForm form{{"identifier", "name", "bus", "target"}, {}};
        if (options_.bus < 0)
            form.columns = {
                {"device", "DEVICE"}, {"phy", "PHY", true}, {"identifier", "IDENTIFIER"}, {"name", "NAME"}};
        RecordSink& records = context_.records(form);
        for (const Answer& each : all_)
            if (each.sign != "--")
                records.put(recordOf(each));
    }

    Record recordOf(const Answer& answer) const {
        Record record("device");
        record.device(answer.device);
        if (options_.bus >= 0)
            return record.put("bus", options_.bus).put("target", answer.address);
        record.phy(answer.address);
        if (answer.identifier.empty())
            record.show("identifier", "in use");
        else
            record.put("identifier", {answer.identifier, std::stoul(answer.identifier, nullptr, 16)});
        return answer.name.empty() ? record : record.put("name", answer.name);
    }

    // Sixteen addresses in a line, for each device.
    void printGrids() const {
        Stream& out = context_.console.out;
        for (auto first = all_.begin(); first != all_.end();) {
            const auto last = std::find_if(first, all_.end(),
                                           [&](const Answer& each) { return each.device != first->device; });
            out.print("{}{}\n", first->device,
                      options_.bus < 0 ? "" : fmt::format(", I2C bus {}", options_.bus));
            out.write("     0  1  2  3  4  5  6  7  8  9  a  b  c  d  e  f\n");
            const unsigned lines = std::max_element(
                                       first, last,
                                       [](const Answer& a, const Answer& b) {
                                           return a.address < b.address;
                                       })->address /
                                       16 +
                                   1;
            for (unsigned line = 0; line < lines; ++line)
                printLine(first, last, line);
            first = last;
        }
    }

    template <class Iterator>
    void printLine(Iterator first, Iterator last, unsigned line) const {
        std::string text = fmt::format("{:02x}:", line * 16);
        for (unsigned address = line * 16; address < line * 16 + 16; ++address) {
            const auto found =
                std::find_if(first, last, [&](const Answer& each) { return each.address == address; });
            text += " " + (found == last ? std::string("  ") : found->sign);
        }
        context_.console.out.print("{}\n", text.substr(0, text.find_last_not_of(' ') + 1));
    }

    Context& context_;
    const Options& options_;
    std::vector<Answer> all_;
    std::map<std::string, std::string> names_; // of identifiers
};

int run(Context& context, const Options& options) {
    return Scan(context, options).run();
}

} // namespace

void addScan(CLI::App& app, Context& context) {
    CLI::App& verb = addVerb(
        app, {"scan", "Show which PHYs of a port answer, or which devices of an I2C bus",
              "  orvane scan OV0001:0\n"
              "  orvane scan 'OV*:0' 0-7 --map chip.json     PHYs 0 to 7 of every board, with names\n"
              "  orvane scan OV0001:0 --i2c 0\n"
              " A PHY is asked for its identifier, an I2C device for one byte. UU: somebody else has\n"
              " the PHY.\n"});
    auto options = std::make_shared<Options>();
    verb.add_option("DEVICE", options->device, "Devices: names, lists, ranges, patterns, @FILE")
        ->required()
        ->type_name("");
    CLI::Option* const phys =
        verb.add_option("PHY", options->phy, "PHY addresses (0-31, on SMBus ports 3-119)")->type_name("");
    verb.add_option("--i2c", options->bus, "The devices of this I2C bus instead")
        ->type_name("BUS")
        ->check(CLI::Range(0, 9).description(""))
        ->excludes(phys);
    verb.add_option("--phy", options->session, "PHY whose session is used for I2C (0)")
        ->type_name("PHY")
        ->check(CLI::Range(0U, 127U).description(""));
    addJobs(verb, options->jobs);
    addMapOptions(verb, context);
    addFormatOptions(verb, context);
    addBoardOptions(verb, context);
    setAction(verb, context, options, run);
}

} // namespace OrvaneTool
