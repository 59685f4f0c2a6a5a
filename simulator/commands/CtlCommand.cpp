// Words to requests, answers to tables.
#include "simulator/commands/CtlCommand.h"

#include "ov_sys/Interface/foundation/Utf8.h"
#include "simulator/control/ControlSocket.h"
#include "simulator/script/ActionText.h"
#include "simulator/script/FaultTable.h"

#include <algorithm>
#include <array>
#include <CLI/CLI.hpp>
#include <cstdio>
#include <filesystem>
#include <string_view>

namespace OrvaneSim {
namespace {

constexpr int kDone = 0;
constexpr int kRefused = 1;
constexpr int kNoLab = 2;

constexpr const char* kExamples = R"(
Faults also take procedure=P, program=P, count=N (-1: every call) and probability=0..1.
Members without a name are taken in the order shown; numbers may be decimal or 0x...

Examples:
  orvane-sim ctl all list                          boards and addresses
  orvane-sim ctl OV0001 lose-reply 3               the next three replies are lost
  orvane-sim ctl OV0001 delay 250 procedure=mdio_read count=-1
  orvane-sim ctl 10.83.0.1 result code=-16 program=mdio probability=0.1 count=-1
  orvane-sim ctl OV0001 set 0x1E0001 0xCAFE phy=3  MMD 30 register 1 of PHY 3
  orvane-sim ctl OV0001 get 0x1E0001 phy=3
  orvane-sim ctl OV0001 move 10.83.0.9             the same board at another address
  orvane-sim ctl all clear                         no faults any more

Exit status: 0 done, 1 refused by the lab, 2 no lab reached or wrong words.)";

std::string helpLine(const std::string& name, const std::string& members, const std::string& effect) {
    const std::string words = "  " + name + (members.empty() ? "" : " " + members);
    const std::string gap =
        words.size() < 36 ? std::string(36 - words.size(), ' ') : "\n" + std::string(36, ' ');
    return words + gap + effect + "\n";
}

std::string verbs() {
    std::string text = "\nLook:\n";
    for (const QueryForm& form : queryForms())
        text += helpLine(form.name, form.members, form.effect);
    text += "\nDo:\n";
    for (const ActionForm& form : actionForms())
        text += helpLine(form.name, form.members, form.effect);
    text += "\nFaults, met by the next calls:\n";
    for (const FaultForm& form : faultForms()) {
        std::string members;
        if (form.valueName)
            members = std::string(form.valueName) + "=" + std::to_string(form.fallback);
        if (form.kind == Fault::Kind::ReplyBody)
            members = "hex=BYTES";
        text += helpLine(form.name, members, form.effect);
    }
    return text;
}

template <class Forms>
void addNames(const Forms& forms, std::string& words) {
    for (const auto& form : forms)
        words += std::string(words.empty() ? "" : " ") + form.name;
}

std::vector<std::string> unnamed(const std::string& verb) {
    for (const QueryForm& form : queryForms())
        if (verb == form.name)
            return {form.unnamed.begin(), form.unnamed.end()};
    return unnamedMembers(verb);
}

// The request as an object; the lab looks at what the members say.
Json requestOf(const CtlCommand& command) {
    Json request{{"board", command.board}, {"action", command.verb}};
    const auto names = unnamed(command.verb);
    std::size_t next = 0;
    for (const std::string& word : command.members) {
        const std::size_t equals = word.find('=');
        std::string name = word.substr(0, equals);
        std::string value = equals == std::string::npos ? word : word.substr(equals + 1);
        if (equals == std::string::npos) {
            if (next == names.size())
                throw std::invalid_argument("\"" + word + "\" has no place in " + command.verb);
            name = names[next++];
        }
        if (request.contains(name))
            throw std::invalid_argument("\"" + name + "\" is said twice");
        if (name == "file")
            value = std::filesystem::absolute(value); // the lab may have another working folder
        request[name] = value;
    }
    return request;
}

// A text of the lab in which nothing can speak to the terminal: the bytes of control characters become \xNN.
std::string visible(std::string_view text) {
    std::string shown;
    while (!text.empty()) {
        const Orvane::Utf8Character next = Orvane::firstCharacter(text);
        const std::string_view bytes = text.substr(0, std::max<std::size_t>(next.bytes, 1));
        const bool control = next.code < 0x20 || (next.code >= 0x7F && next.code < 0xA0);
        if (next.bytes > 0 && !control)
            shown += bytes;
        else
            for (const char byte : bytes) {
                std::array<char, 8> escape{};
                std::snprintf(escape.data(), escape.size(), "\\x%02x", static_cast<unsigned char>(byte));
                shown += escape.data();
            }
        text.remove_prefix(bytes.size());
    }
    return shown;
}

std::string cell(const Json& row, const std::string& column) {
    if (!row.contains(column))
        return "-";
    return visible(row[column].is_string() ? row[column].get<std::string>() : row[column].dump());
}

// Prints objects as a table, a column for each member that one of them has.
void printTable(const Json& rows) {
    std::vector<std::string> columns;
    for (const Json& row : rows)
        for (const auto& member : row.items())
            if (std::find(columns.begin(), columns.end(), member.key()) == columns.end())
                columns.push_back(member.key());
    std::vector<std::string> lines(rows.size() + 1);
    for (const std::string& column : columns) {
        std::size_t width = column.size();
        for (const Json& row : rows)
            width = std::max(width, cell(row, column).size());
        const auto add = [&](std::string& line, const std::string& text) {
            line += text + std::string(width - text.size() + 2, ' ');
        };
        add(lines[0], visible(column));
        for (std::size_t i = 0; i < rows.size(); ++i)
            add(lines[i + 1], cell(rows[i], column));
    }
    for (std::string& line : lines) {
        line.erase(line.find_last_not_of(' ') + 1);
        std::puts(line.c_str());
    }
}

void print(const CtlCommand& command, const Json& result) {
    if (command.json)
        std::puts(result.dump(-1, ' ', true).c_str()); // ASCII, so that no control character is left
    else if (command.verb == "get" && result.size() == 1)
        std::puts(cell(result[0], "value").c_str());
    else if (!result.empty())
        printTable(result);
}

} // namespace

std::string CtlCommand::words() {
    std::string words = "all";
    addNames(queryForms(), words);
    addNames(actionForms(), words);
    addNames(faultForms(), words);
    return words;
}

void CtlCommand::addTo(CLI::App& app) {
    app.add_option("BOARD", board, "Serial number or address of a board, or all")->required()->type_name("");
    app.add_option("VERB", verb, "What to do, see below")->required()->type_name("");
    app.add_option("MEMBERS", members, "MEMBER=VALUE, in the verb's order or by name")->type_name("");
    app.add_option("--control", controlPath,
                   "Socket of the lab (that of the lab this runs in, or the only one running)")
        ->type_name("FILE");
    app.add_flag("--json", json, "Print results as JSON");
    app.footer(verbs() + kExamples);
}

int CtlCommand::run() const {
    try {
        const Json request = requestOf(*this);
        const std::string path = controlPath.empty() ? findControlPath() : controlPath;
        const Json answer = parseJson(askControl(path, request.dump()));
        if (answer.value("ok", false)) {
            if (answer.contains("result"))
                print(*this, answer["result"]);
            return kDone;
        }
        std::fprintf(stderr, "orvane-sim: %s\n", visible(answer.value("error", "no reason given")).c_str());
        return kRefused;
    } catch (const std::exception& problem) {
        std::fprintf(stderr, "orvane-sim: %s\n", visible(problem.what()).c_str());
        return kNoLab;
    }
}

} // namespace OrvaneSim
