// The operations of a service as verbs, and their arguments' forms.
#include "tools/orvane/cli/Service.h"

#include "tools/orvane/board/Failures.h"
#include "tools/orvane/board/Numbers.h"

#include <cerrno>
#include <fmt/format.h>
#include <sstream>

namespace OrvaneTool {

namespace {

RecordForm formOf(const std::string& members) {
    std::istringstream words(members.empty() ? "operation" : members);
    RecordForm form;
    for (std::string word; words >> word;)
        form.members.push_back(word);
    return form;
}

} // namespace

ServiceCall::ServiceCall(Context& context, const ServiceOptions& options, std::string operation,
                         const char* members, Pace pace)
    : context_(context),
      options_(options),
      records_(context.records(formOf(members), pace)),
      target_(findTarget(context, options.device)),
      phy_(target_.port->phy(options.phy)),
      operation_(fmt::format("{}{}{}", operation, options.words.empty() ? "" : " ",
                             fmt::join(options.words, " "))) {}

std::string ServiceCall::word(std::size_t place, const char* fallback) const {
    return place < words().size() ? words()[place] : fallback;
}

Record ServiceCall::record(const char* kind) const {
    return std::move(Record(kind).device(target_.name).phy(options_.phy));
}

void ServiceCall::fail(const Orvane::Failure& failure, const std::string& cause) const {
    context_.interrupts().check();
    const bool thermal = operation_.compare(0, 8, "thermal ") == 0;
    const std::string known = thermal && failure.code() == -ENOTCONN
                                  ? fmt::format("the unit is not connected; 'orvane thermal connect {}' "
                                                "connects it",
                                                target_.name)
                                  : causeOf(failure);
    const std::string text =
        fmt::format("{}: {}: {}", target_.name, operation_, cause.empty() ? known : cause);
    if (failure.kind() == Orvane::FailureKind::InvalidArgument)
        throw UsageError(text);
    throw Failure(text, failure);
}

CLI::App& addService(CLI::App& app, const VerbText& text) {
    return addVerb(app, text);
}

void addServiceOptions(CLI::App& verb, Context& context, ServiceOptions& options) {
    addDevice(verb, options.device);
    verb.add_option("--phy", options.phy, "PHY whose session is used (0)")
        ->type_name("PHY")
        ->check(CLI::Range(0U, 127U).description(""));
    addFormatOptions(verb, context);
    addBoardOptions(verb, context);
}

void addOperation(CLI::App& service, Context& context, const Operation& operation) {
    CLI::App& verb = addVerb(service, {operation.name, operation.summary, ""});
    auto options = std::make_shared<ServiceOptions>();
    addServiceOptions(verb, context, *options);
    if (operation.most > 0) {
        CLI::Option* words = verb.add_option(operation.arguments, options->words, "")
                                 ->type_name("")
                                 ->expected(operation.least, operation.most);
        words->required(operation.least > 0);
    }
    if (operation.flag != nullptr) {
        const std::string text = operation.flag;
        verb.add_flag(text.substr(0, text.find(',')), options->flag, text.substr(text.find(',') + 1));
    }
    const std::string name = service.get_name() + " " + operation.name;
    setAction(verb, context, options,
              [name, run = operation.run, members = operation.members](Context& called,
                                                                       const ServiceOptions& given) {
                  ServiceCall call(called, given, name, members);
                  run(call);
                  if (!*members)
                      call.putDone();
                  return kSuccess;
              });
}

Pairs pairsOf(const std::vector<std::string>& words, bool loneAllowed) {
    Pairs pairs;
    for (const std::string& word : words) {
        const std::size_t sign = word.find('=');
        const bool lone = sign == std::string::npos;
        if (lone && !loneAllowed)
            throw UsageError(fmt::format("'{}' has no level: it is LINE=0 or LINE=1", word));
        pairs.names.push_back(numberAs<unsigned char>(word.substr(0, sign), 255, "the line"));
        pairs.levels.push_back(lone ? std::uint8_t{0}
                                    : numberAs<unsigned char>(word.substr(sign + 1), 1, "the level"));
        pairs.lonely.push_back(lone ? 1 : 0);
    }
    return pairs;
}

std::string bytesText(const std::vector<unsigned char>& bytes) {
    std::string text;
    for (const unsigned char byte : bytes)
        text += fmt::format("{}0x{:02X}", text.empty() ? "" : " ", byte);
    return text;
}

} // namespace OrvaneTool
